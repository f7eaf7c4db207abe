// A request for a plural form (key U+0005 count) through the localizer, on tables as a language
// file loads them: the form picked by the file's own rule, else its language's, else gettext's
// default, with no allocation beyond the answer's copy. (The exports' tests check the wiring.)
#include "LanguageTestSupport.h"
#include "PluralModels.h"

#include "qor_lang_manager/PluralLookup.h"
#include "qor_lang_manager/PluralRule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

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

// The answer to `key` (default "D"), and how many allocations it took on this thread.
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

TEST(PluralLookup, AnswersTheFormOfTheRightRuleAndAllocatesOnlyTheAnswer)
{
    using namespace plural_model;
    CLocalizerGuard localizer;
    qor_lang::installPluralLookup();
    const struct {
        const char16_t* tag;
        const char16_t* ownRule;
        std::u16string forms;
        unsigned long (*model)(unsigned long);
    } rows[] = {
        {u"ru-RU", nullptr, u"файл\0файла\0файлов"s, slavic}, // the language's rule
        {u"ar-EG", nullptr, u"zero\0one\0two\0few\0many\0"s, arabic}, // an empty form answers the default
        {u"fr-FR", u"nplurals=2; plural=(n > 1);", u"un\0plusieurs"s, // the file's own rule wins
         [](unsigned long n) -> unsigned long { return n > 1; }},
        {u"de-DE", u"nplurals=3; plural=n%100/10%3;", u"a\0b\0c"s, // uses / and %
         [](unsigned long n) -> unsigned long { return n % 100 / 10 % 3; }},
        {u"ja-JP", nullptr, u"個"s, [](unsigned long) -> unsigned long { return 0; }},
        {u"ace-ID", nullptr, u"one\0other"s, notOne}, // no rule anywhere: gettext's default
        {u"pl-PL", u"nplurals=9; plural=0;", u"plik\0pliki"s, polish}, // a bad own rule: the language's; form 2 missing
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.tag, row.tag + std::char_traits<char16_t>::length(row.tag)));
        auto writer = languageWriter(row.tag, u"App", {{u"item\u0005", row.forms}, {u"item", u"singular"}});
        if (row.ownRule)
            writer.addExtra(std::u16string(qor_lang::kPluralFormsExtra), row.ownRule);
        chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(written(writer)));
        kore::CStringLocalizer::instance()->setTexts({qor_lang::CLanguageFile::readTexts(*stream, nullptr)});
        std::vector<std::u16string> forms(1);
        for (char16_t c : row.forms)
            c ? forms.back().push_back(c) : void(forms.emplace_back());
        ask(countKey(0)); // the first look-up of a thread may set up the thread's reader slot
        for (unsigned long n = 0; n <= 1200; ++n) {
            const unsigned long form = row.model(n);
            const auto [answer, allocations] = ask(countKey(n));
            ASSERT_EQ(answer, form < forms.size() && !forms[form].empty() ? forms[form] : u"D") << n;
            ASSERT_EQ(allocations, 1u) << n;
        }
        EXPECT_EQ(ask(u"item").first, u"singular") << "plain look-ups are untouched";
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
