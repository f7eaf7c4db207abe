// i18next JSON: the keys an i18next application looks up, and decompiled files read back.
#include "CatalogueTestSupport.h"

using namespace qorlang;
using namespace qorlang_test;

namespace {

std::string jsonError(const std::string& text)
{
    return errorOf([&] { readJson("de.json", text); });
}

} // namespace

TEST(JsonFormat, NestedObjectsGiveDottedKeys)
{
    const Catalogue c = readJson(
        "de.json", "\xEF\xBB\xBF{\"menu\": {\"file\": {\"open\": \"Öffnen\"}, \"close\": \"Schließen\"},\n"
                   " \"steps\": [\"eins\", {\"deep\": \"zwei\"}], \"item_one\": \"{{count}} Datei\",\n"
                   " \"missing\": null, \"count\": 5, \"on\": true, \"flat.key\": \"x\", \"ctx\\u0004k\": \"हिन्दी\"}");
    EXPECT_EQ(sorted(pairsOf(c)), (Pairs{{u"count", u"5"},
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
    EXPECT_EQ(jsonError("{\n \"a\": \"b\",\n \"c\": \n}\n").rfind("de.json:4: not valid JSON: ", 0), 0u)
        << jsonError("{\n \"a\": \"b\",\n \"c\": \n}\n");
    EXPECT_EQ(jsonError("[\"a\"]"), "de.json: an i18next file is one JSON object of texts");
    EXPECT_EQ(jsonError("{\"a\": 1.5}"), "de.json: the value of \"a\" is not a text");
    EXPECT_EQ(jsonError("{\"a\": \"\xE0\x80\"}"), "de.json: not valid UTF-8");
}

TEST(JsonFormat, WrittenFileReadsBack)
{
    Catalogue c = describedCatalogue("w.json");
    c.entries = {{u"a", u"x"}, {u"a.b", u"y"}, {u"ctx\x04key", u"tab\t bell\a quote\" slash\\ 𝄞"}, {u"@other", u"z"}};
    const Catalogue back = readJson("w.json", writeJson(c));
    EXPECT_EQ(sorted(pairsOf(back)), sorted(pairsOf(c)));
    expectSameDescription(back, c);
}
