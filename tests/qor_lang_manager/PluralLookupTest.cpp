// A request for a plural form (key U+0005 count) through the localizer, on tables as a language
// file loads them: the form picked by the file's own rule, else its language's, else gettext's
// default, with no allocation beyond the answer's copy. (WrapperExportsTest checks the exports' wiring.)
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
        CAllocationWatch counting(0);
        answer.reset(kore::CStringLocalizer::instance()->copyString(key.c_str(), u"D", &copy));
        allocations = counting.allocations();
    }
    return {answer.get(), allocations};
}

std::u16string countKey(unsigned long n, const std::u16string& key = u"item")
{
    const std::string digits = std::to_string(n);
    return key + u"\u0005" + std::u16string(digits.begin(), digits.end());
}

kore::P<kore::CTextTable> tableOf(qor_lang::CLanguageFileWriter writer, const char16_t* ownRule)
{
    if (ownRule)
        writer.addExtra(std::u16string(qor_lang::kPluralFormsExtra), ownRule);
    return readTable(written(writer));
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
        kore::CStringLocalizer::instance()->setTexts({tableOf(
            languageWriter(row.tag, u"App", {{u"item\u0005", row.forms}, {u"item", u"singular"}}), row.ownRule)});
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

// Each table's entries follow that table's rule, also when two tables share a language; a table
// built without a rule (not from a language file) follows gettext's default. Keys that are no
// request for a form, and requests without an entry, answer as any miss does.
TEST(PluralLookup, TheRuleIsTheTablesAndOtherKeysAnswerTheDefault)
{
    CLocalizerGuard localizer;
    qor_lang::installPluralLookup();
    kore::CTextTable::CBuilder bare;
    const std::u16string key = u"bare\u0005", forms = u"one\0other"s;
    bare.addCopy(key.data(), uint32_t(key.size()), forms.data(), uint32_t(forms.size()), 0);
    const std::u16string abc = u"a\0b\0c"s;
    kore::CStringLocalizer::instance()->setTexts(
        {bare.build(), tableOf(languageWriter(u"ru-RU", u"A", {{u"a\u0005", abc}}), u"nplurals=3; plural=n%3;"),
         tableOf(languageWriter(u"ru-RU", u"B", {{u"item\u0005", abc}, {u"x\u0005\u0005", u"double\0mark"s}}),
                 nullptr)});
    const auto form = [](unsigned long f) { return std::u16string(1, char16_t(u'a' + f)); };
    for (unsigned long n = 0; n < 200; ++n) {
        EXPECT_EQ(ask(countKey(n, u"a")).first, form(n % 3)) << n;
        EXPECT_EQ(ask(countKey(n)).first, form(plural_model::slavic(n))) << n;
        EXPECT_EQ(ask(countKey(n, u"bare")).first, n == 1 ? u"one" : u"other") << n;
    }
    const std::pair<std::u16string, std::u16string> rows[] = {
        {u"item\u000599999999999999999999999", u"D"}, // no count a host can pass
        {u"item\u00054294967298", sizeof(unsigned long) == 8 ? u"c" : u"D"},
        {u"item\u0005x1", u"D"},
        {u"item\u00051x", u"D"},
        {u"item\u00050021", u"a"}, // leading zeros are still the number
        {u"item\u0005", u"a"}, // the entry itself, as stored: its forms up to the first U+0000
        {u"\u00051", u"D"},
        {u"other\u00053", u"D"},
        {u"x\u0005\u00052", u"mark"}, // the last mark counts
        {u"QOR_LANG_PLURAL_FORMS", u"D"},
    };
    for (const auto& [asked, expected] : rows)
        EXPECT_EQ(ask(asked).first, expected) << kore::CString::fromUTF16(asked)->toUTF8();
}

} // namespace
