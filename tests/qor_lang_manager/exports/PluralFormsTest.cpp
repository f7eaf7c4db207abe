// Plural forms through the exported look-up: a host asks for key + U+0005 + decimal(n) and gets
// form formFor(n) of the entry key + U+0005 under the rule of the file that holds it.
#include "../PluralModels.h"
#include "ExportTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace export_test;
using namespace plural_model;
using namespace std::string_literals;

using Model = unsigned long (*)(unsigned long);

std::u16string countKey(const std::u16string& key, unsigned long n)
{
    return key + u'\u0005' + u16(std::to_string(n));
}

std::vector<std::u16string> split(const std::u16string& forms)
{
    std::vector<std::u16string> out(1);
    for (char16_t c : forms) {
        if (c == u'\0')
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

struct PluralForms : ::testing::Test {
    kore_test::CTempFolder folder;
    const std::u16string app = testName();

    void write(const std::string& sub, const std::u16string& appId, const std::u16string& tag, const char16_t* ownRule,
               const Strings& strings)
    {
        folder.makeFolder(sub);
        auto writer = languageWriter(tag, appId, strings);
        if (ownRule)
            writer.addExtra(u"QOR_LANG_PLURAL_FORMS", ownRule);
        writeLanguageFile(folder.path() / sub / (appId + u"-" + tag + u".qorlang"), writer);
    }
};

TEST_F(PluralForms, EachLanguageAnswersTheFormItsRuleGivesTheCount)
{
    const struct {
        const char16_t* tag;
        const char16_t* ownRule;
        std::u16string forms;
        Model model;
    } rows[] = {
        {u"ru-RU", nullptr, u"файл\0файла\0файлов"s, slavic}, // the CLDR rule of the language
        {u"ar-EG", nullptr, u"zero\0one\0two\0few\0many\0"s, arabic}, // an empty form answers the default
        {u"fr-FR", u"nplurals=2; plural=(n > 1);", u"un\0plusieurs"s, // the file's own rule wins
         [](unsigned long n) -> unsigned long { return n > 1; }},
        {u"ja-JP", nullptr, u"個"s, [](unsigned long) -> unsigned long { return 0; }},
        {u"ace-ID", nullptr, u"one\0other"s, notOne}, // no CLDR rule: gettext's default
        {u"pl-PL", u"nplurals=9; plural=0;", u"plik\0pliki"s, polish}, // a bad own rule: CLDR's; form 2 missing
    };
    for (const auto& row : rows)
        write("f", app, row.tag, row.ownRule, {{u"item\u0005", row.forms}, {u"item", u"singular"}});
    ASSERT_EQ(addFolder(folder.path() / "f", app), 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(utf8(row.tag));
        ASSERT_EQ(setLanguage(row.tag), 0);
        const auto forms = split(row.forms);
        for (unsigned long n = 0; n <= 1200; ++n) {
            const unsigned long form = row.model(n);
            const std::u16string expected = form < forms.size() && !forms[form].empty() ? forms[form] : u"D";
            ASSERT_EQ(localString(countKey(u"item", n), u"D"), expected) << "n=" << n;
        }
        EXPECT_EQ(localString(u"item", u"D"), u"singular") << "plain look-ups are untouched";
    }
}

// Keys that are no request for a form, and requests without an entry, answer as any miss does.
TEST_F(PluralForms, OtherKeysAnswerTheDefault)
{
    write("f", app, u"ru-RU", nullptr, {{u"item\u0005", u"a\0b\0c"s}, {u"x\u0005\u0005", u"double\0mark"s}});
    ASSERT_EQ(addFolder(folder.path() / "f", app), 0);
    ASSERT_EQ(setLanguage(u"ru-RU"), 0);
    const std::pair<std::u16string, std::u16string> rows[] = {
        {u"item\u0005" + u16("99999999999999999999999"), u"D"}, // no count a host can pass
        {u"item\u0005" + u16("4294967298"), sizeof(unsigned long) == 8 ? u"c" : u"D"},
        {u"item\u0005" + u16("x1"), u"D"},
        {u"item\u0005" + u16("1x"), u"D"},
        {u"item\u00050021", u"a"}, // leading zeros are still the number
        {u"item\u0005", u"a"}, // the entry itself, as stored: its forms up to the first U+0000
        {u"\u00051", u"D"},
        {u"other\u00053", u"D"},
        {u"x\u0005\u00052", u"mark"}, // the last mark counts
        {u"QOR_LANG_PLURAL_FORMS", u"D"},
    };
    for (const auto& [key, expected] : rows)
        EXPECT_EQ(localString(key, u"D"), expected) << utf8(key);
}

// Each file's entries follow that file's rule, also when two applications' files share a language.
TEST_F(PluralForms, TheRuleIsTheOneOfTheFileThatHoldsTheEntry)
{
    write("a", app + u"a", u"ru-RU", u"nplurals=3; plural=n%3;",
          {{u"a\u0005", u"0\0"
                        u"1\0"
                        u"2"s}});
    write("b", app + u"b", u"ru-RU", nullptr,
          {{u"b\u0005", u"0\0"
                        u"1\0"
                        u"2"s}});
    ASSERT_EQ(addFolder(folder.path() / "a", app + u"a"), 0);
    ASSERT_EQ(addFolder(folder.path() / "b", app + u"b"), 0);
    ASSERT_EQ(setLanguage(u"ru-RU"), 0);
    for (unsigned long n = 0; n < 200; ++n) {
        EXPECT_EQ(localString(countKey(u"a", n), u"D"), u16(std::to_string(n % 3))) << n;
        EXPECT_EQ(localString(countKey(u"b", n), u"D"), u16(std::to_string(slavic(n)))) << n;
    }
}

} // namespace
