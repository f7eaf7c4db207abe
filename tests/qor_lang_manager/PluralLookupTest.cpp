// A request for a plural form (key U+0005 count) through the localizer, on tables as a language file
// loads them: the form its table's rule picks, with no allocation beyond the answer's copy.
#include "LanguageTestSupport.h"

#include "qor_lang_manager/PluralLookup.h"
#include "qor_lang_manager/PluralRule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using namespace lang_test;
using namespace std::string_literals;

char16_t* copy(const void* text, std::size_t units)
{
    auto* out = new char16_t[units + 1];
    std::memcpy(out, text, 2 * units);
    out[units] = 0;
    return out;
}

// The answer to `key`, and how many allocations it took on this thread.
std::pair<std::u16string, std::size_t> ask(const std::u16string& key)
{
    std::unique_ptr<char16_t[]> answer;
    std::size_t allocations = 0;
    {
        CAllocationFailure counting(0);
        answer.reset(kore::CStringLocalizer::instance()->copyString(key.c_str(), u"D", &copy));
        allocations = counting.allocations();
    }
    return {answer.get(), allocations};
}

std::u16string countKey(unsigned long n)
{
    const std::string digits = std::to_string(n);
    return u"item\u0005" + std::u16string(digits.begin(), digits.end());
}

// Against the rule the table was loaded with, parsed again for each count.
TEST(PluralLookup, AnswersTheFormOfTheLoadedRuleAndAllocatesOnlyTheAnswer)
{
    CLocalizerGuard localizer;
    qor_lang::installPluralLookup();
    const struct {
        const char16_t* tag;
        const char16_t* ownRule;
    } rows[] = {
        {u"ar-EG", nullptr}, // six forms from the CLDR table
        {u"ru-RU", nullptr},
        {u"fr-FR", u"nplurals=2; plural=(n > 1);"}, // the file's own
        {u"pl-PL", u"nplurals=9; plural=0;"}, // a bad own rule: the language's
        {u"ace-ID", nullptr}, // no rule anywhere: "n != 1"
        {u"de-DE", u"nplurals=3; plural=n%100/10%3;"}, // uses / and %
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.tag, row.tag + std::char_traits<char16_t>::length(row.tag)));
        auto writer = languageWriter(row.tag, u"App", {{u"item\u0005", u"f0\0f1\0f2\0f3\0f4\0f5"s}});
        if (row.ownRule)
            writer.addExtra(std::u16string(qor_lang::kPluralFormsExtra), row.ownRule);
        chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(written(writer)));
        kore::CStringLocalizer::instance()->setTexts({qor_lang::CLanguageFile::readTexts(*stream, nullptr)});
        const std::u16string ruleText =
            qor_lang::pluralRuleText(row.ownRule ? std::optional<std::u16string>(row.ownRule) : std::nullopt, row.tag);
        ask(countKey(0)); // the first look-up of a thread may set up the thread's reader slot
        for (unsigned long n = 0; n <= 300; ++n) {
            const auto rule = qor_lang::PluralRule::parse(std::string(ruleText.begin(), ruleText.end()));
            ASSERT_TRUE(rule);
            const auto [answer, allocations] = ask(countKey(n));
            ASSERT_EQ(answer, u"f" + std::u16string(1, char16_t(u'0' + rule->formFor(n)))) << n;
            ASSERT_EQ(allocations, 1u) << n;
        }
    }
}

// A table built without a rule (not from a language file) follows gettext's default.
TEST(PluralLookup, ATableWithoutARuleFollowsTheDefault)
{
    CLocalizerGuard localizer;
    qor_lang::installPluralLookup();
    kore::CTextTable::CBuilder builder;
    const std::u16string key = u"item\u0005", forms = u"one\0other"s;
    builder.addCopy(key.data(), uint32_t(key.size()), forms.data(), uint32_t(forms.size()), 0);
    kore::CStringLocalizer::instance()->setTexts({builder.build()});
    for (unsigned long n : {0ul, 1ul, 2ul, 21ul})
        EXPECT_EQ(ask(countKey(n)).first, n == 1 ? u"one" : u"other") << n;
}

} // namespace
