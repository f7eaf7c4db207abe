// Look-ups as the exported string function makes them (wide key and default, one call per
// string), and language loads of 10,000 and 100,000 keys.
#include "framework/CString.h"
#include "framework/CStringLocalizer.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace kore;

constexpr int kTableKeys = 20000;

std::vector<std::u16string> makeKeys(int n, const char16_t* prefix)
{
    std::vector<std::u16string> keys;
    keys.reserve(n);
    for (int i = 0; i < n; ++i) {
        std::u16string key = prefix;
        for (char c : std::to_string(i))
            key += static_cast<char16_t>(c);
        keys.push_back(std::move(key));
    }
    return keys;
}

const std::vector<std::u16string>& tableKeys()
{
    static const std::vector<std::u16string> keys = makeKeys(kTableKeys, u"app.dialog.options.label.");
    return keys;
}

CStringLocalizer& filledLocalizer()
{
    static P<CStringLocalizer> localizer = [] {
        auto loc = make<CStringLocalizer>();
        for (const auto& key : tableKeys())
            loc->setString(key.c_str(), u"Ein übersetzter Text mittlerer Länge");
        return loc;
    }();
    return *localizer;
}

void BM_GetStringHit(benchmark::State& state)
{
    CStringLocalizer& loc = filledLocalizer();
    const auto& keys = tableKeys();
    size_t i = static_cast<size_t>(state.thread_index()) * 7919;
    for (auto _ : state) {
        P<IString> text = loc.getString(keys[i % keys.size()].c_str(), u"Default text");
        benchmark::DoNotOptimize(text.get());
        i += 31;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetStringHit)->Threads(1)->Threads(2)->UseRealTime();

void BM_GetStringMiss(benchmark::State& state)
{
    CStringLocalizer& loc = filledLocalizer();
    static const std::vector<std::u16string> missing = makeKeys(1000, u"app.dialog.options.absent.");
    size_t i = static_cast<size_t>(state.thread_index()) * 7919;
    for (auto _ : state) {
        P<IString> text = loc.getString(missing[i % missing.size()].c_str(), u"Default text");
        benchmark::DoNotOptimize(text.get());
        i += 31;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetStringMiss)->Threads(1)->Threads(2)->UseRealTime();

void BM_LoadLanguage(benchmark::State& state)
{
    const auto keys = makeKeys(static_cast<int>(state.range(0)), u"app.dialog.options.label.");
    for (auto _ : state) {
        auto loc = make<CStringLocalizer>();
        for (const auto& key : keys)
            loc->setString(key.c_str(), u"Ein übersetzter Text mittlerer Länge");
        benchmark::DoNotOptimize(loc.get());
        state.PauseTiming();
        loc = nullptr;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LoadLanguage)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
