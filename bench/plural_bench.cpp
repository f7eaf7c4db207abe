// Plural forms: what a rule costs to parse and to evaluate, and a plural request through the
// localizer (key U+0005 count, answered on the miss path) beside a plain hit on the same table.
// Run: build/linux-release/bench/plural_bench

#include "framework/text/CStringLocalizer.h"
#include "framework/text/CTextTable.h"
#include "qor_lang_manager/PluralLookup.h"
#include "qor_lang_manager/PluralRule.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

namespace {

using namespace std::string_literals;

const char* arabic()
{
    return qor_lang::findPluralRule("ar");
}

void BM_ParseArabicRule(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(qor_lang::PluralRule::parse(arabic()));
}
BENCHMARK(BM_ParseArabicRule);

void BM_FormForArabic(benchmark::State& state)
{
    const auto rule = qor_lang::PluralRule::parse(arabic());
    unsigned long n = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(rule->formFor(n++ % 1000));
}
BENCHMARK(BM_FormForArabic);

char16_t* copy(const void* text, std::size_t units)
{
    auto* out = new char16_t[units + 1];
    std::memcpy(out, text, units * 2);
    out[units] = 0;
    return out;
}

// A table of 1000 plain entries and one Arabic plural entry, as a loaded language holds them.
void loadTable()
{
    kore::CTextTable::CBuilder builder;
    for (int i = 0; i < 1000; ++i) {
        const std::string k = "key" + std::to_string(i);
        const std::u16string key(k.begin(), k.end());
        builder.addCopy(key.data(), uint32_t(key.size()), u"text", 4, 0);
    }
    const std::u16string forms = u"zero\0one\0two\0few\0many\0other"s, plural = u"item\u0005";
    builder.addCopy(plural.data(), uint32_t(plural.size()), forms.data(), uint32_t(forms.size()), 0);
    const std::string rule = arabic();
    qor_lang::setPluralRule(builder, std::u16string(rule.begin(), rule.end()));
    kore::CStringLocalizer::instance()->setTexts({builder.build()});
    qor_lang::installPluralLookup();
}

void BM_LookUpHit(benchmark::State& state)
{
    loadTable();
    for (auto _ : state)
        delete[] kore::CStringLocalizer::instance()->copyString(u"key500", u"default", &copy);
}
BENCHMARK(BM_LookUpHit);

void BM_LookUpPluralForm(benchmark::State& state)
{
    loadTable();
    for (auto _ : state)
        delete[] kore::CStringLocalizer::instance()->copyString(u"item\u0005"
                                                                "103",
                                                                u"default", &copy);
}
BENCHMARK(BM_LookUpPluralForm);

} // namespace

BENCHMARK_MAIN();
