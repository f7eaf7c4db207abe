// i18next JSON: the keys an i18next application looks up, and decompiled files read back.
#include "CatalogueTestSupport.h"
#include "Formats.h"

#include "framework/CException.h"
#include "framework/IString.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace qorlang;

namespace {

using Pairs = std::vector<std::pair<std::u16string, std::u16string>>;

Pairs pairs(const Catalogue& c)
{
    Pairs out;
    for (const Entry& e : c.entries)
        out.emplace_back(e.key, e.text);
    std::sort(out.begin(), out.end());
    return out;
}

std::string errorOf(const std::string& text)
{
    try {
        readJson("de.json", text);
    } catch (const kore::CException& e) {
        return e.getDescription()->toUTF8();
    }
    return "(no error)";
}

} // namespace

TEST(JsonFormat, NestedObjectsGiveDottedKeys)
{
    const Catalogue c = readJson("de.json", "\xEF\xBB\xBF{\"menu\": {\"file\": {\"open\": \"Öffnen\"}, \"close\": \"Schließen\"},\n"
                                            " \"steps\": [\"eins\", {\"deep\": \"zwei\"}], \"item_one\": \"{{count}} Datei\",\n"
                                            " \"missing\": null, \"count\": 5, \"on\": true, \"flat.key\": \"x\", \"ctx\\u0004k\": \"हिन्दी\"}");
    EXPECT_EQ(pairs(c), (Pairs{{u"count", u"5"},
                               {u"ctx\x04k", u"हिन्दी"},
                               {u"flat.key", u"x"},
                               {u"item_one", u"{{count}} Datei"},
                               {u"menu.close", u"Schließen"},
                               {u"menu.file.open", u"Öffnen"},
                               {u"missing", u""},
                               {u"on", u"true"},
                               {u"steps.0", u"eins"},
                               {u"steps.1.deep", u"zwei"}}));
    EXPECT_FALSE(c.language);
}

TEST(JsonFormat, ErrorsNameTheFile)
{
    EXPECT_EQ(errorOf("{\n \"a\": \"b\",\n \"c\": \n}\n").rfind("de.json:4: not valid JSON: ", 0), 0u) << errorOf("{\n \"a\": \"b\",\n \"c\": \n}\n");
    EXPECT_EQ(errorOf("[\"a\"]"), "de.json: an i18next file is one JSON object of texts");
    EXPECT_EQ(errorOf("{\"a\": 1.5}"), "de.json: the value of \"a\" is not a text");
    EXPECT_EQ(errorOf("{\"a\": \"\xE0\x80\"}"), "de.json: not valid UTF-8");
}

TEST(JsonFormat, WrittenFileReadsBack)
{
    Catalogue c = qorlang_test::describedCatalogue("w.json");
    c.entries = {{u"a", u"x"}, {u"a.b", u"y"}, {u"ctx\x04key", u"tab\t bell\a quote\" slash\\ 𝄞"}, {u"@other", u"z"}};
    const Catalogue back = readJson("w.json", writeJson(c));
    EXPECT_EQ(pairs(back), pairs(c));
    qorlang_test::expectSameDescription(back, c);
}
