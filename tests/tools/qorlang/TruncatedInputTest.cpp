// Every reader on every prefix of a good file: a clean error or a catalogue, never a crash or a
// read past the end (the sanitizer build watches), and a language file cut anywhere is refused.
#include "Formats.h"

#include "framework/errors/CException.h"

#include <gtest/gtest.h>

using namespace qorlang;

namespace {

template <class Read>
void everyPrefix(const std::string& whole, const Read& read)
{
    for (size_t n = 0; n <= whole.size(); ++n) {
        try {
            read(whole.substr(0, n));
        } catch (const kore::CException&) {
        }
    }
}

} // namespace

TEST(TruncatedInput, SourceReadersFailCleanly)
{
    everyPrefix(
        "# c\nmsgid \"\"\nmsgstr \"Language: de_DE\\n\"\n\n#, fuzzy, c-format\nmsgctxt \"m\"\nmsgid \"a %<PRIu64>\"\n"
        "msgid_plural \"b\"\nmsgstr[0] \"\\x41\\101\"\nmsgstr[1] \"\"\n\n#~ msgid \"o\"\n#~ msgstr \"p\"\n",
        [](const std::string& s) { readPo("t.po", s); });
    everyPrefix("@tag=de-DE\n@version=12\nkey=text\\n\n", [](const std::string& s) { readText("t.txt", s); });
    everyPrefix("{\"@qorlang\": {\"version\": \"3\"}, \"a\": {\"b\": [\"\\u0041\\n\", null, 5]}, \"c\": \"ü\"}",
                [](const std::string& s) { readJson("t.json", s); });
    everyPrefix("<?xml version=\"1.0\"?>\n<TS language=\"de_DE\"><context><name>N</name><message numerus=\"yes\">"
                "<source>a<byte value=\"x7\"/> </source><comment>c</comment><translation type=\"unfinished\">"
                "<numerusform>x</numerusform></translation></message></context></TS>\n",
                [](const std::string& s) { readTs("t.ts", s); });
    everyPrefix(
        "<xliff version=\"1.2\"><file target-language=\"de-DE\"><body><group restype=\"x-gettext-plurals\">"
        "<trans-unit id=\"1\"><source>a\r\n</source><target state=\"new\"><ph ctype=\"x-ch-bel\">\\a</ph></target>"
        "</trans-unit></group></body></file></xliff>",
        [](const std::string& s) { readXliff("t.xlf", s); });
}

TEST(TruncatedInput, LanguageFileCutAnywhereIsRefused)
{
    Catalogue c = readText("t.txt", "@tag=de-DE\n@author=A\none=eins\ntwo=zwei\n");
    c.appId = u"app";
    const std::vector<uint8_t> whole = compileLanguageFile(c, {});
    EXPECT_EQ(readQorlang("app-de-DE.qorlang", whole).entries.size(), 2u);
    size_t refused = 0;
    for (size_t n = 0; n < whole.size(); ++n) {
        try {
            readQorlang("app-de-DE.qorlang", std::vector<uint8_t>(whole.begin(), whole.begin() + n));
        } catch (const kore::CException&) {
            ++refused;
        }
    }
    // The string table is the last chunk: a file cut inside it cannot be read whole.
    EXPECT_EQ(refused, whole.size());
}
