// Plural forms through the exported look-up: a host asks for key + U+0005 + decimal(n) and gets
// form formFor(n) of the entry key + U+0005 under the rule of the file that holds it. Which rule
// a file has is PluralLookupTest's business; here the wiring and the keys.
#include "../PluralModels.h"
#include "ExportTestSupport.h"

namespace {

using namespace export_test;
using namespace plural_model;
using namespace std::string_literals;

std::u16string countKey(const std::u16string& key, unsigned long n)
{
    return key + u'\u0005' + u16(std::to_string(n));
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
