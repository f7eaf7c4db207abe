// What check reports: placeholders compared field by field, and the names and tags the library would
// not accept. Findings of whole catalogues are in the tool's check session (tool/check/transcript).
#include "Checks.h"
#include "Formats.h"
#include "Language.h"
#include "Unicode.h"

#include <gtest/gtest.h>

using namespace qorlang;

namespace {

std::vector<std::string> messages(const std::vector<Finding>& findings)
{
    std::vector<std::string> out;
    for (const Finding& f : findings)
        out.push_back(std::to_string(f.line) + (f.error ? " E " : " W ") + f.message);
    return out;
}

} // namespace

TEST(Checks, PlaceholdersOfAText)
{
    const std::pair<std::u16string, Placeholders> cases[] = {
        {u"no fields, 100%% sure, a lone %", Placeholders{{}, {}}},
        {u"%s has %d of %-5.2f and %ld, %zu, %*d",
         Placeholders{{"%1$s", "%2$d", "%3$f", "%4$ld", "%5$zu", "%6$*d"}, {}}},
        {u"%2$s before %1$d", Placeholders{{"%1$d", "%2$s"}, {}}},
        {u"%d%% and %s%", Placeholders{{"%1$d", "%2$s"}, {}}},
        {u"Hello %USER_NAME%, %d%", Placeholders{{"%1$d"}, {"%USER_NAME%"}}},
        {u"{name} has {{count}} and {0}, not { spaced } or {}", Placeholders{{}, {"{0}", "{count}", "{name}"}}},
        {u"%<PRIu64> stays unread", Placeholders{{}, {}}},
        {u"{{val, number}} by {{- name}} in {{ x }}, not {{a b}}", Placeholders{{}, {"{name}", "{val}", "{x}"}}}};
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(std::string(text.begin(), text.end()));
        EXPECT_EQ(placeholdersOf(text).printf, expected.printf);
        EXPECT_EQ(placeholdersOf(text).named, expected.named);
    }
    // Reordering by number is a translator's right; reordering without numbers is not.
    EXPECT_EQ(placeholdersOf(u"%s of %d"), placeholdersOf(u"%2$d von %1$s"));
    EXPECT_EQ(describeDifference(placeholdersOf(u"%s %d"), placeholdersOf(u"%d %s")),
              "missing %1$s %2$d, extra %1$d %2$s");
    EXPECT_EQ(describeDifference(placeholdersOf(u"%s %d {a}"), placeholdersOf(u"%s {b}")),
              "missing %2$d {a}, extra {b}");
}

TEST(Checks, LanguageFileNameTagAndDuplicates)
{
    // Two entries with one key: the library's table, not the file order, decides the answer.
    Catalogue c;
    c.appId = u"demo";
    c.language = u"de-DE";
    c.languageLine = 1;
    c.entries = {{u"k", u"first"}, {u"k", u"second"}};
    std::vector<uint8_t> bytes = compileLanguageFile(c, {});
    EXPECT_EQ(answersOf(bytes)(u"k"), u"second"); // compile keeps one, the later
    c.entries = readQorlang("dir/demo-de-DE.qorlang", bytes).entries;
    ASSERT_EQ(c.entries.size(), 1u);

    const auto findings = [&](const std::string& path, std::u16string appId, std::u16string tag) {
        Catalogue file = c;
        file.path = path;
        file.appId = std::move(appId);
        file.language = std::move(tag);
        return messages(checkCatalogue(file, nullptr, &bytes));
    };
    EXPECT_TRUE(findings("dir/demo-de-DE.qorlang", u"demo", u"de-DE").empty());
    EXPECT_TRUE(findings("demo-de-DE.qorlang", u"demo-", u"DE-de").empty()); // "--" is read as "-"
    EXPECT_EQ(findings("dir/demo_de-DE.qorlang", u"demo", u"de-DE"),
              (std::vector<std::string>{
                  "0 E the library looks for this file under the name \"demo-de-DE.qorlang\", never under this one"}));
    EXPECT_EQ(findings("dir/demo-de.qorlang", u"demo", u"de"),
              (std::vector<std::string>{"1 E the language \"de\" is not a tag QOR_LANG2_setCurrentLanguage accepts (it "
                                        "needs language-COUNTRY, such as de-DE)"}));
}

TEST(Checks, TagsAndFileNamesAsTheLibraryAndCataloguesWriteThem)
{
    const std::pair<std::u16string, std::optional<std::u16string>> tags[] = {
        {u"ru_RU", u"ru-RU"},      {u"de-de", u"de-DE"},       {u"sr_RS@latin", std::nullopt},
        {u"de_DE@euro", u"de-DE"}, {u"pt_BR.UTF-8", u"pt-BR"}, {u"de", std::nullopt},
        {u"", std::nullopt},       {u"xx-YY", std::nullopt},   {u"de-DE-1996", std::nullopt}};
    for (const auto& [written, expected] : tags)
        EXPECT_EQ(normalisedTag(written), expected) << std::string(written.begin(), written.end());
    EXPECT_EQ(languageFileName(u"app", u"de-DE"), u"app-de-DE.qorlang");
    EXPECT_EQ(languageFileName(u"app-", u"de-DE"), u"app-de-DE.qorlang");
    EXPECT_EQ(languageFileName(u"a---", u"de-DE"), u"a--de-DE.qorlang");
    // Bare languages take CLDR's likely country; scripts and variants have no two-part tag.
    // Each row: what a catalogue says, a space, then the tag or a piece of the problem.
    for (const std::string_view row :
         {"de de-DE", "PT pt-BR", "sr sr-RS", "ja ja-JP", "de_AT.UTF-8 de-AT", "fr-CA fr-CA", "de_DE@euro de-DE",
          "xx has no country", "eo has no country", "sr@latin has the modifier @latin",
          "sr_RS@latin has the modifier @latin", "zh-Hant-TW names the script Hant", "sr_Latn names the script Latn",
          "es-419 is not a language-COUNTRY tag", " is not a language-COUNTRY tag"}) {
        const std::u16string written(row.begin(), row.begin() + row.find(' '));
        const TagChoice choice = tagFor(written);
        const std::string got = choice.tag ? std::string(choice.tag->begin(), choice.tag->end()) : choice.problem;
        EXPECT_NE(got.find(row.substr(row.find(' ') + 1)), std::string::npos) << got;
        EXPECT_EQ(choice.completed, written.size() == 2 && choice.tag.has_value()) << got;
    }
    EXPECT_EQ(tagOfFileName("my-app-de-AT.qorlang"), u"de-AT");
    EXPECT_EQ(tagOfFileName("de-AT.qorlang"), u"de-AT");
    EXPECT_EQ(tagOfFileName("app-de.qorlang"), std::nullopt);
    EXPECT_EQ(tagOfFileName("app-de-AT.po"), std::nullopt);
}
