// What check and stats report: placeholders compared field by field, keys missing against a
// reference, keys defined twice with the text the library will answer, names and tags the library
// would not accept.
#include "Checks.h"
#include "Formats.h"
#include "Language.h"
#include "Unicode.h"

#include <gtest/gtest.h>

using namespace qorlang;

namespace {

Placeholders ph(std::vector<std::string> ordered, std::vector<std::string> named)
{
    return {std::move(ordered), std::move(named)};
}

Catalogue catalogue(const std::string& path, std::vector<Entry> entries, std::u16string language = u"de-DE")
{
    Catalogue c;
    c.path = path;
    c.language = std::move(language);
    c.languageLine = 1;
    c.entries = std::move(entries);
    return c;
}

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
        {u"no fields, 100%% sure, a lone %", ph({}, {})},
        {u"%s has %d of %-5.2f and %ld, %zu, %*d", ph({"%1$s", "%2$d", "%3$f", "%4$ld", "%5$zu", "%6$*d"}, {})},
        {u"%2$s before %1$d", ph({"%1$d", "%2$s"}, {})},
        {u"%d%% and %s%", ph({"%1$d", "%2$s"}, {})},
        {u"Hello %USER_NAME%, %d%", ph({"%1$d"}, {"%USER_NAME%"})},
        {u"{name} has {{count}} and {0}, not { spaced } or {}", ph({}, {"{0}", "{count}", "{name}"})},
        {u"%<PRIu64> stays unread", ph({}, {})},
        {u"{{val, number}} by {{- name}} in {{ x }}, not {{a b}}", ph({}, {"{name}", "{val}", "{x}"})}};
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

// The findings of catalogues without and with a reference, and the stats of two of them.
TEST(Checks, FindingsOfACatalogue)
{
    const std::u16string ru =
        u"nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);";
    const auto plural = [](int line, std::vector<std::u16string> forms) {
        Entry e{u"%d file " + std::u16string(1, char16_t(u'0' + line)), forms.front(), line, false, false, true, true};
        e.pluralSource = u"%d files";
        e.forms = std::move(forms);
        return e;
    };
    const auto withRule = [](Catalogue c, std::optional<std::u16string> rule) {
        c.pluralForms = std::move(rule);
        c.pluralFormsLine = 1;
        return c;
    };
    const Catalogue english = catalogue("en-US.txt",
                                        {{u"greet", u"Hello %s", 1},
                                         {u"count", u"%d files in {dir}", 2},
                                         {u"title", u"Title", 3},
                                         {u"only.ref", u"x", 4},
                                         {u"ratio", u"%d done", 5},
                                         {u"plain", u"Full", 6},
                                         {u"lit", u"50%", 7}},
                                        u"en-US");
    const Catalogue againstEnglish = catalogue("de-DE.txt", {{u"greet", u"Hallo %d", 1},
                                                             {u"count", u"{dir}: %d Dateien", 2},
                                                             {u"title", u"", 3},
                                                             {u"title", u"Titel", 5},
                                                             {u"ratio", u"%d %", 6},
                                                             {u"plain", u"Voll%", 7},
                                                             {u"lit", u"50%", 8},
                                                             {u"ok", u"100%%", 9}});
    const Catalogue po =
        catalogue("de.po",
                  {{u"%s of %d", u"%d von %s", 4, false, false, false, true},
                   {u"%s", u"%d", 5}, // not c-format: not compared
                   {u"one file", u"%d Datei", 7, false, false, true, true, u"%d files", {u"%d Datei", u"%d Dateien"}},
                   {u"fuzzy", u"unscharf", 9, true},
                   {u"untranslated", u"", 11}},
                  u"sr@latin");
    const std::tuple<Catalogue, const Catalogue*, std::vector<std::string>> cases[] = {
        // A lone % at the end is flagged only where the source does not end so; an error where
        // printf reads the text.
        {againstEnglish,
         &english,
         {"0 W key \"only.ref\" of the reference (line 4) has no translation here",
          "1 E key \"greet\": placeholders differ from the reference's text (line 1): missing %1$s, extra %1$d",
          "3 W key \"title\" has an empty text; the library treats it as missing",
          "5 E key \"title\" is defined 2 times (lines 3, 5); the library will answer \"Titel\"",
          "6 E key \"ratio\": the text ends in a lone %, which printf reads as the start of a field; write %% for a "
          "percent sign",
          "7 W key \"plain\": the text ends in a lone %, which printf reads as the start of a field; write %% for a "
          "percent sign",
          "9 W key \"ok\" is not in the reference (stale); qorlang merge marks it obsolete"}},
        {po,
         nullptr,
         {"0 W 1 untranslated and 1 fuzzy entries; compile leaves them out (fuzzy ones stay with --use-fuzzy)",
          "1 W the language \"sr@latin\" has the modifier @latin, and a language-COUNTRY tag cannot tell that "
          "variant from the language's usual one; give the tag to ship it under with --language",
          "4 E key \"%s of %d\": placeholders differ from the source text: missing %1$s %2$d, extra %1$d %2$s"}},
        // Each plural form against either source; the count against the catalogue's rule.
        {withRule(catalogue("ru.po",
                            {plural(2, {u"%d файл", u"%d файла", u"%s файлов"}), plural(3, {u"%d файл", u"%d файла"}),
                             plural(4, {u"%d файл", u"", u"%d файлов"})},
                            u"ru-RU"),
                  ru),
         nullptr,
         {"2 E key \"%d file 2\" form 2: placeholders differ from the source texts: missing %1$d, extra %1$s",
          "3 E key \"%d file 3\" has 2 plural forms, the rule \"" + encodeUtf8(ru) + "\" counts 3",
          "4 W key \"%d file 4\" form 1 is empty; the numbers that take it get the caller's default"}},
        // Not c-format: only {0} and {name} fields count; sources that are keys are not compared.
        {catalogue("de.ts", {{u"Hello {0}, {name}", u"Hallo {1}, {name}", 2},
                             {u"%s of {{count}}", u"%d von {count}", 3},
                             {u"app.title", u"{0}", 4}}),
         nullptr,
         {"2 E key \"Hello {0}, {name}\": placeholders differ from the source text: missing {0}, extra {1}"}},
        // Without a rule of its own the language's CLDR rule counts; a rule the library cannot read.
        {withRule(catalogue("ar.po", {plural(2, {u"%d", u"%d"})}, u"ar-EG"), std::nullopt),
         nullptr,
         {"2 E key \"%d file 2\" has 2 plural forms, the rule \"nplurals=6; plural=(n==0 ? 0 : n==1 ? 1 : n==2 ? 2 : "
          "n%100>=3 && n%100<=10 ? 3 : n%100>=11 && n%100<=99 ? 4 : 5);\" counts 6"}},
        {withRule(catalogue("ja.po", {plural(2, {u"%d"})}, u"ja-JP"), u"nplurals=9; plural=n;"),
         nullptr,
         {"1 E the plural rule \"nplurals=9; plural=n;\" is not one the library reads (nplurals=N; plural=EXPRESSION; "
          "with N from 1 to 6)"}},
        // Keys that qor_lang2::tr and trc never spell.
        {catalogue("ja.ts", {{u"MainWindow|\u0004Close", u"閉じる", 2}, {u"a\u0005b", u"x", 3}}, u"ja-JP"),
         nullptr,
         {"2 W key \"MainWindow||Close\" keeps the Qt context \"MainWindow\": qor_lang2::tr(\"Close\") does not find "
          "it (compile a TS file with --qt-context drop)",
          "3 W key \"a b\" holds U+0005, which marks plural forms: no call reaches it"}}};
    for (const auto& [c, reference, expected] : cases)
        EXPECT_EQ(messages(checkCatalogue(c, reference, nullptr)), expected) << c.path;

    const Stats s = statsOf(againstEnglish, &english);
    EXPECT_EQ(s.entries, 7u);
    EXPECT_EQ(s.translated, 7u);
    EXPECT_EQ(s.missing, 1u);
    EXPECT_DOUBLE_EQ(s.percent, 100.0 * 6 / 7); // the stale key counts for nothing
    const Stats p = statsOf(po, nullptr);
    EXPECT_EQ(p.entries, 5u);
    EXPECT_EQ(p.translated, 3u);
    EXPECT_EQ(p.fuzzy, 1u);
    EXPECT_DOUBLE_EQ(p.percent, 60.0);
}

TEST(Checks, LanguageFileNameTagAndDuplicates)
{
    // Two entries with one key: the library's table, not the file order, decides the answer.
    Catalogue c = catalogue("dir/demo-de-DE.qorlang", {{u"k", u"first"}, {u"k", u"second"}});
    c.appId = u"demo";
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

TEST(Checks, TagsAndFileNames)
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
}

TEST(Checks, LanguagesAsCataloguesWriteThem)
{
    // Bare languages take CLDR's likely country; scripts and variants have no two-part tag.
    const std::pair<std::u16string, std::string> cases[] = {{u"de", "de-DE"},
                                                            {u"PT", "pt-BR"},
                                                            {u"sr", "sr-RS"},
                                                            {u"ja", "ja-JP"},
                                                            {u"de_AT.UTF-8", "de-AT"},
                                                            {u"fr-CA", "fr-CA"},
                                                            {u"de_DE@euro", "de-DE"},
                                                            {u"sr@latin", "has the modifier @latin"},
                                                            {u"sr_RS@latin", "has the modifier @latin"},
                                                            {u"zh-Hant-TW", "names the script Hant"},
                                                            {u"sr_Latn", "names the script Latn"},
                                                            {u"es-419", "is not a language-COUNTRY tag"},
                                                            {u"xx", "has no country"},
                                                            {u"eo", "has no country"},
                                                            {u"", "is not a language-COUNTRY tag"}};
    for (const auto& [written, expected] : cases) {
        const TagChoice choice = tagFor(written);
        const std::string got = choice.tag ? std::string(choice.tag->begin(), choice.tag->end()) : choice.problem;
        EXPECT_NE(got.find(expected), std::string::npos) << got;
        EXPECT_EQ(choice.completed, written.size() == 2 && choice.tag.has_value()) << got;
    }
    EXPECT_EQ(tagOfFileName("my-app-de-AT.qorlang"), u"de-AT");
    EXPECT_EQ(tagOfFileName("de-AT.qorlang"), u"de-AT");
    EXPECT_EQ(tagOfFileName("app-de.qorlang"), std::nullopt);
    EXPECT_EQ(tagOfFileName("app-de-AT.po"), std::nullopt);
}
