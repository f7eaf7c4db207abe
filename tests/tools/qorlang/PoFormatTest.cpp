// The PO reader against what msgfmt does with the same text, and the writer against msgfmt --check.
#include "../../framework/TempFolder.h"
#include "CatalogueTestSupport.h"

#include <cinttypes>
#include <cstdlib>

using namespace qorlang;
using namespace qorlang_test;

namespace {

const char* const kHeader = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";

struct ReadCase {
    const char* name;
    std::string po;
    std::u16string key;
    std::u16string text;
    bool fuzzy = false;
    bool obsolete = false;
    bool plural = false;
};

} // namespace

TEST(PoFormat, ReadsEntriesAsMsgfmtDoes)
{
    const std::string pri = PRIu64; // what the C library puts in place of <PRIu64>
    const ReadCase cases[] = {
        {"plain", "msgid \"Open\"\nmsgstr \"Öffnen\"\n", u"Open", u"Öffnen"},
        {"context joins the key", "msgctxt \"menu\"\nmsgid \"Open\"\nmsgstr \"Ö\"\n", u"menu\x04Open", u"Ö"},
        {"empty context still counts", "msgctxt \"\"\nmsgid \"Open\"\nmsgstr \"Ö\"\n", u"\x04Open", u"Ö"},
        {"plural answers the first form",
         "msgid \"a file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"eine\"\nmsgstr[1] \"%d\"\n", u"a file", u"eine",
         false, false, true},
        {"fuzzy among other flags", "#, c-format, fuzzy\nmsgid \"x\"\nmsgstr \"y\"\n", u"x", u"y", true},
        {"no-fuzzy is not fuzzy", "#, fuzzyish\nmsgid \"x\"\nmsgstr \"y\"\n", u"x", u"y"},
        {"obsolete", "#~ msgid \"old\"\n#~ msgstr \"alt\"\n", u"old", u"alt", false, true},
        {"obsolete plural",
         "#~ msgid \"a file\"\n#~ msgid_plural \"%d files\"\n#~ msgstr[0] \"eine\"\n#~ msgstr[1] \"%d\"\n", u"a file",
         u"eine", false, true, true},
        {"continued strings", "msgid \"\"\n\"one \"\n  \"two\"\nmsgstr \"eins\"\n\"zwei\"\n", u"one two", u"einszwei"},
        {"escapes", "msgid \"\\t\\\"\\\\\\n\\101\\x42\\a\"\nmsgstr \"x\"\n", u"\t\"\\\nAB\a", u"x"},
        {"CR LF line ends", "msgid \"a\"\r\nmsgstr \"b\"\r\n", u"a", u"b"},
        {"system-dependent segment in c-format",
         "#, c-format\nmsgid \"%<PRIu64> of %<PRIuMAX>\"\nmsgstr \"%<PRIu64>/%<PRIbogus>\"\n",
         std::u16string(u"%") + std::u16string(pri.begin(), pri.end()) + u" of %" +
             [] {
                 std::string m = PRIuMAX;
                 return std::u16string(m.begin(), m.end());
             }(),
         std::u16string(u"%") + std::u16string(pri.begin(), pri.end()) + u"/%<PRIbogus>"},
        {"segment kept outside c-format", "msgid \"%<PRIu64>\"\nmsgstr \"x\"\n", u"%<PRIu64>", u"x"},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        const Catalogue catalogue = readPo("t.po", std::string("\xEF\xBB\xBF") + kHeader + c.po);
        ASSERT_EQ(catalogue.entries.size(), 1u);
        const Entry& e = catalogue.entries[0];
        EXPECT_EQ(e.key, c.key);
        EXPECT_EQ(e.text, c.text);
        EXPECT_EQ(e.fuzzy, c.fuzzy);
        EXPECT_EQ(e.obsolete, c.obsolete);
        EXPECT_EQ(e.plural, c.plural);
        // msgfmt's line of an entry: its first keyword, after the comments.
        EXPECT_EQ(e.line, 4 + (c.po.rfind("#,", 0) == 0 ? 1 : 0));
    }
}

TEST(PoFormat, HeaderGivesTheDescriptiveData)
{
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
}

TEST(PoFormat, ErrorsNameFileAndLine)
{
    const std::pair<std::string, std::string> cases[] = {
        {"msgstr \"x\"\n", "t.po:1: msgstr without msgid"},
        {"msgid \"a\"\nmsgid \"b\"\nmsgstr \"\"\n", "t.po:2: msgid without msgstr"},
        {"msgid \"a\nmsgstr \"\"\n", "t.po:1: string not terminated"},
        {"msgid \"a\"\nmsgstr[1] \"x\"\n", "t.po:2: msgstr[1] in an entry without msgid_plural"},
        {"msgid \"a\"\nmsgid_plural \"b\"\nmsgstr \"x\"\n", "t.po:3: an entry with msgid_plural needs"},
        {"msgid \"a\"\nmsgstr \"x\"\nmsgtext \"y\"\n", "t.po:3: unknown keyword 'msgtext'"},
        {"msgid \"a\" b\nmsgstr \"x\"\n", "t.po:1: unexpected text after the string"},
        {"\n\nmsgid \"a\\q\"\nmsgstr \"x\"\n", "t.po:3: unknown escape \\q"},
        {"msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=NO-SUCH\\n\"\n",
         "t.po:1: charset NO-SUCH is not known to this system's converter; convert the file with msgconv "
         "--to-code=UTF-8"},
        {"msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=EUC-JP\\n\"\n\nmsgid \"a\"\nmsgstr \"\xA4\"\n",
         "t.po:4: not valid EUC-JP; the header's Content-Type must name the file's real charset"},
        {"msgid \"a\"\nmsgstr \"\xC3\"\n", "t.po:2: not valid UTF-8"},
        {"\"x\"\n", "t.po:1: a string continues nothing"},
    };
    for (const auto& [po, expected] : cases) {
        SCOPED_TRACE(po);
        const std::string error = errorOf([&] { readPo("t.po", po); });
        EXPECT_EQ(error.rfind(expected, 0), 0u) << error;
    }
}

TEST(PoFormat, Latin1CatalogueIsRead)
{
    const Catalogue c = readPo("t.po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=ISO-8859-1\\n\"\n\n"
                                       "msgid \"a\"\nmsgstr \"\xE9t\xE9\"\n");
    ASSERT_EQ(c.entries.size(), 1u);
    EXPECT_EQ(c.entries[0].text, u"été");
}

// What decompile writes must read back unchanged, and msgfmt --check must accept it.
TEST(PoFormat, WrittenFileReadsBackAndPassesMsgfmtCheck)
{
    Catalogue c = describedCatalogue("w.po");
    c.entries = {
        {u"plain", u"einfach"},
        {u"menu\x04Open", u"Öffnen"},
        {u"\nleading and trailing\n", u"\nvorn und hinten\n"},
        {u"quote \" backslash \\ tab \t bell \a", u"x \" y \\ z \t \a"},
        {u"long\nmulti\nline", u"lang\nmehr\nzeilig"},
        {u"𝄞 and 日本", u"non-BMP 𝄞"},
        {u"ctx\x04gone\nfor good", u"weg\nfür immer", 0, true, true}, // what merge leaves behind
        {u"%d old file",
         u"%d alte Datei",
         0,
         false,
         true,
         true,
         true,
         u"%d old files",
         {u"%d alte Datei", u"%d alte Dateien"}},
    };
    const std::string po = writePo(c);
    const Catalogue back = readPo("w.po", po);
    EXPECT_EQ(back.language, u"de_DE");
    expectSameDescription(back, c);
    EXPECT_EQ(pairsOf(back), pairsOf(c));
    EXPECT_EQ(back.entries.back().forms, c.entries.back().forms);

#ifndef _WIN32
    if (std::system("command -v msgfmt >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "msgfmt not installed";
    const kore_test::CTempFolder folder;
    folder.writeFile("w.po", po);
    EXPECT_EQ(std::system(("msgfmt --check -o /dev/null '" + folder.utf8("w.po") + "'").c_str()), 0) << po;
#endif
}

TEST(PoFormat, RealCataloguesInTheirOwnCharsets)
{
    // Real catalogues of this machine as shipped (ISO-8859-2, ISO-8859-8, EUC-JP) or converted by
    // msgconv (KOI8-R) read as their UTF-8 forms do; tests/tools/qorlang/charsets/regenerate.sh.
    for (const char* language : {"cs", "he", "ja", "ru"}) {
        SCOPED_TRACE(language);
        const std::string folder = QORLANG_CHARSETS "/";
        const Catalogue encoded = readCatalogue(folder + language + ".po");
        const Catalogue utf8 = readCatalogue(folder + language + ".utf8.po");
        EXPECT_EQ(qorlang_test::pairsOf(encoded), qorlang_test::pairsOf(utf8));
        EXPECT_EQ(encoded.author, utf8.author);
        ASSERT_GE(encoded.entries.size(), 3u);
        EXPECT_TRUE(std::any_of(encoded.entries.begin(), encoded.entries.end(), [](const Entry& e) {
            return std::any_of(e.text.begin(), e.text.end(), [](char16_t c) { return c > 0x7F; });
        }));
    }
}
