// The readers against what msgfmt and Qt's lconvert do with the same catalogue, their errors, every
// prefix of a good file, the writers read back, plural entries through the language file, i18next's
// suffixes and Qt TS contexts.
#include "../../framework/TempFolder.h"
#include "CatalogueTestSupport.h"

#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "qor_lang_manager/CLanguageFile.h"

#include <cinttypes>
#include <cstdlib>

using namespace qorlang;
using namespace qorlang_test;

namespace {

Catalogue read(const std::string& path, const std::string& bytes, const char16_t* i18nextTag = u"ru-RU",
               QtContext mode = QtContext::Auto)
{
    Catalogue c = readCatalogueBytes(path, bytes, mode);
    if (formatOf(path) == Format::Json)
        joinI18nextPlurals(c, i18nextTag);
    return c;
}

// A translator's document as its tool wrote it, from documents/ beside this test.
Catalogue document(const std::string& name, const char16_t* i18nextTag = u"ru-RU", QtContext mode = QtContext::Auto)
{
    const std::string path = QORLANG_DATA "/documents/" + name;
    return read(path, readFileBytes(path), i18nextTag, mode);
}

const char kRule[] =
    "nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);";
const std::string kPluralPo =
    std::string("msgid \"\"\nmsgstr \"\"\n\"Language: ru_RU\\n\"\n\"Plural-Forms: ") + kRule +
    "\\n\"\n\n#, c-format\nmsgid \"%d file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"%d файл\"\n"
    "msgstr[1] \"%d файла\"\nmsgstr[2] \"%d файлов\"\n\nmsgctxt \"menu\"\nmsgid \"Open\"\nmsgstr \"Открыть\"\n";
const Lines kPluralLines{"%d file = %d файл [%d файл|%d файла|%d файлов] / %d files", "menu␄Open = Открыть"};

} // namespace

TEST(Formats, PoEntriesReadAsMsgfmtReadsThem)
{
    const std::pair<std::string, std::string> cases[] = {
        {"msgid \"Open\"\nmsgstr \"Öffnen\"\n", "Open = Öffnen"},
        {"msgctxt \"menu\"\nmsgid \"Open\"\nmsgstr \"Ö\"\n", "menu␄Open = Ö"},
        {"msgctxt \"\"\nmsgid \"Open\"\nmsgstr \"Ö\"\n", "␄Open = Ö"}, // an empty context still counts
        {"msgid \"a file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"eine\"\nmsgstr[1] \"%d\"\n",
         "a file = eine [eine|%d] / %d files"},
        {"#, c-format, fuzzy\nmsgid \"x\"\nmsgstr \"y\"\n", "x = (fuzzy) y"},
        {"#, fuzzyish\nmsgid \"x\"\nmsgstr \"y\"\n", "x = y"},
        {"#~ msgid \"old\"\n#~ msgstr \"alt\"\n", "old = (obsolete) alt"},
        {"#~ msgid \"a file\"\n#~ msgid_plural \"%d files\"\n#~ msgstr[0] \"eine\"\n#~ msgstr[1] \"%d\"\n",
         "a file = (obsolete) eine [eine|%d] / %d files"},
        {"msgid \"\"\n\"one \"\n  \"two\"\nmsgstr \"eins\"\n\"zwei\"\n", "one two = einszwei"},
        {"msgid \"\\t\\\"\\\\\\n\\101\\x42\\a\"\nmsgstr \"x\"\n", "\t\"\\\nAB\a = x"},
        {"msgid \"a\"\r\nmsgstr \"b\"\r\n", "a = b"},
        // System-dependent segments take this C library's spelling, in c-format texts only.
        {"#, c-format\nmsgid \"%<PRIu64> of %<PRIuMAX>\"\nmsgstr \"%<PRIu64>/%<PRIbogus>\"\n",
         "%" PRIu64 " of %" PRIuMAX " = %" PRIu64 "/%<PRIbogus>"},
        {"msgid \"%<PRIu64>\"\nmsgstr \"x\"\n", "%<PRIu64> = x"}};
    for (const auto& [po, expected] : cases) {
        SCOPED_TRACE(po);
        const Catalogue c =
            readPo("t.po", "\xEF\xBB\xBFmsgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n" + po);
        EXPECT_EQ(linesOf(c), Lines{expected});
        // msgfmt's line of an entry: its first keyword, after the comments.
        ASSERT_EQ(c.entries.size(), 1u);
        EXPECT_EQ(c.entries[0].line, 4 + (po.rfind("#,", 0) == 0 ? 1 : 0));
    }

    const Catalogue c = readPo("t.po", "# Russian translation\n# of the demo\nmsgid \"\"\nmsgstr \"\"\n"
                                       "\"Last-Translator: Ivan <i@example.org>\\n\"\n\"Language: ru_RU\\n\"\n"
                                       "\"X-Qorlang-Application: demo\\n\"\n\"X-Qorlang-Version: 7\\n\"\n"
                                       "\nmsgid \"a\"\nmsgstr \"\"\n");
    EXPECT_EQ(c.language, u"ru_RU");
    EXPECT_EQ(c.languageLine, 3);
    EXPECT_EQ(c.author, u"Ivan <i@example.org>");
    EXPECT_EQ(c.comment, u"Russian translation\nof the demo");
    EXPECT_EQ(c.appId, u"demo");
    EXPECT_EQ(c.version, 7u);
    ASSERT_EQ(c.entries.size(), 1u);
    EXPECT_FALSE(c.entries[0].usable(true)); // untranslated
    // A template's placeholder author is no author.
    EXPECT_FALSE(readPo("t.po", "msgid \"\"\nmsgstr \"Last-Translator: FULL NAME <EMAIL@ADDRESS>\\n\"\n").author);
    EXPECT_EQ(readPo("ru.po", kPluralPo).pluralForms, decodeUtf8(kRule));
}

TEST(Formats, PoCataloguesInTheirOwnCharsets)
{
    // Real catalogues of this machine as shipped (ISO-8859-2, ISO-8859-8, EUC-JP) or converted by
    // msgconv (KOI8-R) read as their UTF-8 forms do; tests/tools/qorlang/charsets/regenerate.sh.
    for (const char* language : {"cs", "he", "ja", "ru"}) {
        SCOPED_TRACE(language);
        const Catalogue encoded = readCatalogue(QORLANG_DATA "/charsets/" + std::string(language) + ".po");
        const Catalogue utf8 = readCatalogue(QORLANG_DATA "/charsets/" + std::string(language) + ".utf8.po");
        EXPECT_EQ(linesOf(encoded), linesOf(utf8));
        EXPECT_EQ(encoded.author, utf8.author);
        ASSERT_GE(encoded.entries.size(), 3u);
        EXPECT_TRUE(std::any_of(encoded.entries.begin(), encoded.entries.end(), [](const Entry& e) {
            return std::any_of(e.text.begin(), e.text.end(), [](char16_t c) { return c > 0x7F; });
        }));
    }
}

// TS and XLIFF as lconvert writes them from a PO catalogue (documents/lconvert-ru.*), XLIFF 2.0, and i18next JSON.
TEST(Formats, TsXliffAndJsonReadAsTheirToolsWriteThem)
{
    const Catalogue ts = document("lconvert-ru.ts");
    EXPECT_EQ(ts.language, u"ru_RU");
    EXPECT_EQ(ts.author, u"Ivan");
    EXPECT_EQ(linesOf(ts),
              (Lines{"menu␄Open = Открыть", "Plain = Просто", "a file = %d файл [%d файл|%d файла] / a file",
                     "%d file = %d файл [%d файл|%d файла|%d файлов] / %d files", "Fuzzy = (fuzzy) Нечётко",
                     "Old = (obsolete) Старое", "\r\nline\a\n =  ", "MainWindow|verb␄Open = Открывать",
                     "MainWindow|␄Close = Закрыть"}));

    // Lines end in LF, so the CR inside the first source is the text's own.
    const Catalogue xliff = document("lconvert-ru.xlf");
    EXPECT_EQ(xliff.language, u"ru-RU"); // the file's target language before lconvert's copy of the PO header
    EXPECT_EQ(linesOf(xliff), (Lines{"\r\nbotched\r\n = \aсбой a b", "menu␄Open = Открыть",
                                     "files␄%u file = %u файл [%u файл|%u файла|%u файлов] / %u files",
                                     "Fuzzy = (fuzzy) Нечётко", "Old = (obsolete) Старое",
                                     "Untranslated = ", "MainWindow|␄Close = Закрыть", "app.title = Заголовок"}));
    EXPECT_EQ(xliff.entries[0].line, 5);
    EXPECT_EQ(xliff.entries[7].line, 23);

    const Catalogue xliff2 = document("de.xlf");
    EXPECT_EQ(xliff2.language, u"de-DE");
    EXPECT_EQ(linesOf(xliff2), (Lines{"menu.open = Öffnen\nnow", "Two  parts = (fuzzy) Zwei  Teile",
                                      "%d file = %d файл [%d файл|%d файла] / %d files", "menu␄Open = Открыть"}));

    // i18next: nested objects give dotted keys; a language's plural suffixes join into one entry.
    const Catalogue json = document("i18next-de.json", u"");
    EXPECT_EQ(linesOf(json, true), (Lines{"count = 5", "ctx␄k = हिन्दी", "flat.key = x", "item_one = {{count}} Datei",
                                          "menu.close = Schließen", "menu.file.open = Öffnen",
                                          "missing = ", "on = true", "steps.0 = eins", "steps.1.deep = zwei"}));
    EXPECT_FALSE(json.language);
}

TEST(Formats, I18nextSuffixesFollowTheLanguagesCategories)
{
    const std::tuple<const char16_t*, std::string, Lines> cases[] = {
        // Russian's "other" (fractions only) stays a key of its own; i18next has no plural source.
        {u"ru-RU",
         R"({"%d file_one": "%d файл", "%d file_few": "%d файла", "%d file_many": "%d файлов",
             "%d file_other": "%d файла", "menu\u0004Open": "Открыть"})",
         {"%d file = %d файл [%d файл|%d файла|%d файлов] / %d file", "%d file_other = %d файла",
          "menu␄Open = Открыть"}},
        // Croatian has Russian's rule but calls its last form "other".
        {u"hr-HR",
         R"({"n_one": "1", "n_few": "2", "n_many": "M", "n_other": "5"})",
         {"n = 1 [1|2|5] / n", "n_many = M"}},
        {u"ar-EG",
         R"({"n_other": "o", "n_many": "m", "n_few": "f", "n_two": "t", "n_one": "1", "n_zero": "0"})",
         {"n = 0 [0|1|t|f|m|o] / n"}},
        {u"ja-JP", R"({"n_other": "件"})", {"n = 件 [件] / n"}},
        // A lone "_other" is a key where the language has more forms; a missing form is empty.
        {u"en-US",
         R"({"show_other": "x", "n_other": "files", "n_zero": "none"})",
         {"n_other = files", "n_zero = none", "show_other = x"}},
        {u"ru-RU", R"({"n_many": "M", "n_one": "1", "n_zero": "0"})", {"n = 1 [1||M] / n", "n_zero = 0"}},
        {u"xx-YY", R"({"n_one": "a", "n_other": "b"})", {"n = a [a|b] / n"}}, // unknown: English's forms
    };
    for (const auto& [tag, json, expected] : cases)
        EXPECT_EQ(linesOf(read("x.json", json, tag), true), expected) << json;
}

TEST(Formats, ErrorsNameFileAndLine)
{
    // A trailing "..." compares the start of the message only.
    const std::pair<std::string, std::string> cases[] = {
        {"msgstr \"x\"\n", "t.po:1: msgstr without msgid"},
        {"msgid \"a\"\nmsgid \"b\"\nmsgstr \"\"\n", "t.po:2: msgid without msgstr before this line"},
        {"msgid \"a\nmsgstr \"\"\n", "t.po:1: string not terminated on its line"},
        {"msgid \"a\"\nmsgstr[1] \"x\"\n", "t.po:2: msgstr[1] in an entry without msgid_plural"},
        {"msgid \"a\"\nmsgid_plural \"b\"\nmsgstr \"x\"\n", "t.po:3: an entry with msgid_plural needs..."},
        {"msgid \"a\"\nmsgstr \"x\"\nmsgtext \"y\"\n", "t.po:3: unknown keyword 'msgtext'"},
        {"msgid \"a\" b\nmsgstr \"x\"\n", "t.po:1: unexpected text after the string"},
        {"\n\nmsgid \"a\\q\"\nmsgstr \"x\"\n", "t.po:3: unknown escape \\q"},
        {"msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=NO-SUCH\\n\"\n",
         "t.po:1: charset NO-SUCH is not known to this system's converter; convert the file with msgconv "
         "--to-code=UTF-8"},
        {"msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=EUC-JP\\n\"\n\nmsgid \"a\"\nmsgstr \"\xA4\"\n",
         "t.po:4: not valid EUC-JP; the header's Content-Type must name the file's real charset"},
        {"msgid \"a\"\nmsgstr \"\xC3\"\n", "t.po:2: not valid UTF-8..."},
        {"\"x\"\n", "t.po:1: a string continues nothing"},
        {"<TS>\n<context>\n</TS>", "t.ts:2: not well-formed XML..."},
        {"<xliff/>", "t.ts:1: not a Qt TS document (no <TS> root)"},
        {"<TS/>", "t.xlf:1: not an XLIFF document (no <xliff> root)"},
        {"{\n \"a\": \"b\",\n \"c\": \n}\n", "t.json:4: not valid JSON: ..."},
        {"[\"a\"]", "t.json: an i18next file is one JSON object of texts"},
        {"{\"a\": 1.5}", "t.json: the value of \"a\" is not a text"},
        {"{\"a\": \"\xE0\x80\"}", "t.json: not valid UTF-8"}};
    for (const auto& [bytes, expected] : cases) {
        const std::string path = expected.substr(0, expected.find(':'));
        const std::string error = errorOf([&] { readCatalogueBytes(path, bytes); });
        const bool prefix = expected.ends_with("...");
        EXPECT_EQ(prefix ? error.substr(0, expected.size() - 3) : error,
                  prefix ? expected.substr(0, expected.size() - 3) : expected)
            << bytes;
    }
}

TEST(Formats, EveryPrefixOfAGoodFileReadsOrFailsCleanly)
{
    // A clean error or a catalogue with no entry the whole file lacks, never a crash or a read past
    // the end (the sanitizer build watches), for each documents/cut.*. The XML and JSON readers refuse every cut before the
    // document's end; the PO reader refuses a cut inside a string.
    for (const std::string path : {"cut.po", "cut.txt", "cut.json", "cut.ts", "cut.xlf"}) {
        SCOPED_TRACE(path);
        const std::string whole = readFileBytes(QORLANG_DATA "/documents/" + path);
        const size_t entries = readCatalogueBytes(path, whole).entries.size();
        ASSERT_GT(entries, 0u);
        size_t refused = 0;
        for (size_t n = 0; n < whole.size(); ++n) {
            try {
                EXPECT_LE(readCatalogueBytes(path, whole.substr(0, n)).entries.size(), entries) << n;
            } catch (const kore::CException&) {
                ++refused;
            }
        }
        const Format format = formatOf(path);
        const bool wellFormed = format == Format::Json || format == Format::Ts || format == Format::Xliff;
        EXPECT_GE(refused, wellFormed ? whole.size() : format == Format::Po ? 1 : 0);
    }

    // A language file cut anywhere is refused: its string table is the last chunk.
    Catalogue c = readText("t.txt", "@tag=de-DE\n@author=A\none=eins\ntwo=zwei\n");
    c.appId = u"app";
    const std::vector<uint8_t> whole = compileLanguageFile(c, {});
    EXPECT_EQ(linesOf(readQorlang("app-de-DE.qorlang", whole)), (Lines{"one = eins", "two = zwei"}));
    for (size_t n = 0; n < whole.size(); ++n)
        EXPECT_NE(errorOf([&] {
                      readQorlang("app-de-DE.qorlang", {whole.begin(), whole.begin() + long(n)});
                  }),
                  "(no error)")
            << n;
}

// What decompile writes must read back unchanged in every format, and msgfmt --check must accept the PO.
TEST(Formats, WrittenFilesReadBack)
{
    Catalogue c = describedCatalogue("w");
    c.entries = {{u"plain", u"einfach"},
                 {u"menu\x04Open", u"Öffnen"},
                 {u"Qt|verb\x04Open", u"Öffnen"},
                 {u"Qt|\u0004Close", u"Schließen"},
                 {u"|odd\x04x", u"y"},
                 {u"ctx\x04x", u"<b>&amp;</b> \"q\""},
                 {u"\x04no context name", u"leer"},
                 {u"\nleading and trailing\n", u"\nvorn und hinten\n"},
                 {u"quote \" backslash \\ tab \t bell \a", u"x \" y \\ z \t \a"},
                 {u"long\nmulti\nline", u"lang\nmehr\nzeilig"},
                 {u"𝄞 and 日本", u"non-BMP 𝄞"},
                 {u"a", u"x"},
                 {u"a.b", u"y"},
                 {u"@other", u"z"},
                 {u"  spaces  ", u"\n"},
                 {u"\abell\r\n", u"\x1b[1m\r"}};
    std::string po;
    for (const char* path : {"w.ts", "w.xlf", "w.json", "w.po"}) {
        SCOPED_TRACE(path);
        if (formatOf(path) == Format::Po) {
            // msgfmt refuses a text that begins or ends with a line break its source lacks (the last
            // two); PO alone keeps what merge leaves behind: obsolete entries, plural ones among them.
            c.entries.resize(c.entries.size() - 2);
            c.entries.push_back({u"ctx\x04gone\nfor good", u"weg\nfür immer", 0, true, true});
            c.entries.push_back({u"%d old file",
                                 u"%d alte Datei",
                                 0,
                                 false,
                                 true,
                                 true,
                                 true,
                                 u"%d old files",
                                 {u"%d alte Datei", u"%d alte Dateien"}});
        }
        const std::string text = writeCatalogue(c, formatOf(path));
        const Catalogue back = readCatalogueBytes(path, text);
        // TS groups messages by Qt context name, so compare without the order.
        EXPECT_EQ(linesOf(back, true), linesOf(c, true)) << text;
        EXPECT_EQ(descriptionOf(back), descriptionOf(c));
        po = text;
    }
#ifndef _WIN32
    if (std::system("command -v msgfmt >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "msgfmt not installed";
    const kore_test::CTempFolder folder;
    folder.writeFile("w.po", po);
    EXPECT_EQ(std::system(("msgfmt --check -o /dev/null '" + folder.utf8("w.po") + "'").c_str()), 0) << po;
#endif
}

TEST(Formats, PluralEntriesThroughTheLanguageFileAndEveryWriter)
{
    Catalogue c = readPo("ru.po", kPluralPo);
    c.appId = u"app";
    const std::vector<uint8_t> bytes = compileLanguageFile(c, {});
    // tr finds the first form; the forms entry holds all of them and the plural source.
    const auto answer = answersOf(bytes);
    EXPECT_EQ(answer(u"%d file"), u"%d файл");
    EXPECT_EQ(answer(u"%d file\x05"), std::u16string(u"%d файл\0%d файла\0%d файлов", 26));
    std::u16string third;
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(bytes));
    qor_lang::CLanguageFile::readEntries(
        *stream, nullptr, [&](const std::u16string& key, const std::u16string&, const std::u16string& t) {
            if (key == u"%d file\x05")
                third = t;
        });
    EXPECT_EQ(third, u"%d files");

    const Catalogue back = readQorlang("app-ru-RU.qorlang", bytes);
    EXPECT_EQ(linesOf(back, true), kPluralLines);
    EXPECT_EQ(back.pluralForms, c.pluralForms);
    for (const char* path : {"x.po", "x.ts", "x.xlf", "x.json"}) {
        const std::string text = writeCatalogue(back, formatOf(path));
        SCOPED_TRACE(text);
        Catalogue again = read(path, text);
        if (formatOf(path) == Format::Json)
            again.entries[0].pluralSource = u"%d files"; // i18next keeps none
        EXPECT_EQ(linesOf(again, true), kPluralLines);
        EXPECT_EQ(again.pluralForms, c.pluralForms);
    }
}

TEST(Formats, QtContextNamesEnterTheKeysAsChosen)
{
    // The README's style (key-like sources under a grouping name), lupdate's output for
    // qor_lang2::tr("app.title", "My App") and tr("Open file"), and Qt's own texts with contexts.

    const std::pair<QtContext, Lines> cases[] = {
        {QtContext::Keep,
         {"Dialog|verb␄Open = 開ける", "MainWindow|short␄menu.quit = 終了", "MainWindow|␄app.title = 題名",
          "qor_lang2|My App␄app.title = アプリ", "qor_lang2|␄Open file = 開く"}},
        {QtContext::Drop,
         {"Open file = 開く", "app.title = アプリ", "app.title = 題名", "short␄menu.quit = 終了",
          "verb␄Open = 開ける"}},
        {QtContext::Auto,
         {"Dialog|verb␄Open = 開ける", "Open file = 開く", "app.title = アプリ", "app.title = 題名",
          "short␄menu.quit = 終了"}}};
    for (const auto& [mode, expected] : cases)
        EXPECT_EQ(linesOf(document("lupdate-ja.ts", u"", mode), true), expected) << int(mode);
    // A TS file the tool wrote compiles to the keys it was written from.
    Catalogue kept = describedCatalogue("ja.ts");
    kept.entries = document("lupdate-ja.ts", u"", QtContext::Keep).entries;
    EXPECT_EQ(linesOf(readTs("again.ts", writeTs(kept))), linesOf(kept));
    for (std::u16string_view key : {u"app.title", u"menu.file-open_2", u"a.b.c"})
        EXPECT_TRUE(looksLikeKey(key)) << encodeUtf8(key);
    for (std::u16string_view text : {u"title", u"Open file", u"e.g. this", u"end.", u".start", u"a..b", u""})
        EXPECT_FALSE(looksLikeKey(text)) << encodeUtf8(text);
}
