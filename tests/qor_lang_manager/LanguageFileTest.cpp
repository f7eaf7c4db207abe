#include "LanguageTestSupport.h"

#include "framework/errors/CEndOfStreamError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace lang_test;
using qor_lang::CLanguageFileWriter;

// The descriptive items of a file read from memory: its tag ("invalid" for an invalid id), native
// name and sub-name, English name and sub-name, application id and second string, comment, author.
std::string described(const Bytes& bytes)
{
    const auto file = readFile(bytes);
    const std::u16string tag = file->getLanguage().getTag();
    std::string out = file->getLanguage().isValid() ? std::string(tag.begin(), tag.end()) : "invalid";
    for (const auto& item :
         {file->getNativeName(), file->getNativeSubName(), file->getEnglishName(), file->getEnglishSubName(),
          file->getAppId(), file->getAppString2(), file->getComment(), file->getAuthor()})
        out += "|" + utf8(item);
    return out;
}

// A file with every item.
CLanguageFileWriter frenchCanadian(bool withAuthor = true)
{
    CLanguageFileWriter writer;
    writer.setLanguage(u"fr-CA", u"français", u"Canada (Québec)");
    writer.setApplication(u"MyApp", u"second");
    writer.setComment(u"Traduit à la main");
    writer.addExtra(u"QOR_LANG_TOOL", u"lc 2.1");
    if (withAuthor)
        writer.setAuthor(u"Émilie Tremblay");
    writer.setVersion(7);
    writer.addString(u"menu.file", u"Fichier");
    writer.addString(u"menu.edit", u"Édition");
    return writer;
}

TEST(LanguageFile, DescriptiveItemsReadBack)
{
    const Bytes apid = chunk("apid", counted(u"App") + counted(u""));
    const Bytes rsid = chunk("RSID", counted(u"IDR_1"));
    // The English names come from the code table, not from the file.
    const std::string all = "fr-CA|français|Canada (Québec)|French|Canada|MyApp|second|Traduit à la main|";
    const std::pair<Bytes, std::string> cases[] = {
        {written(frenchCanadian(false)), all},
        {written(frenchCanadian()), all + "Émilie Tremblay"},
        // Native name N = 1 (empty); sub-name N = 7 whose last unit is '?', not zero. The application
        // id N = 0 is absent, and only its count is consumed. A comment count running past its chunk
        // takes the bytes that follow it: the next chunk's id. Of two pairs with one key, the later.
        {container(chunk("lang", counted(u"fr-CA") + counted(u"") + u32(7) +
                                     Bytes{'Q', 0, 'u', 0, 0xE9, 0, 'b', 0, 'e', 0, 'c', 0, '?', 0}) +
                   chunk("apid", counted(std::nullopt) + counted(u"two")) + chunk("cmnt", u32(3)) +
                   chunk(std::string("h\0i\0", 4), Bytes{}) +
                   chunk("xdid", u32(2) + counted(u"QOR_LANG_AUTHOR") + counted(u"Bob") + counted(u"QOR_LANG_AUTHOR") +
                                     counted(u"Ann"))),
         "fr-CA||Québec|French|Canada||two|hi|Ann"},
        // "lang" must come before every chunk but "RSID"; the other chunks are searched from the start.
        {container(apid + langChunk(u"de-DE", u"Deutsch") + chunk("cmnt", counted(u"note"))), "invalid|||||App||note|"},
        {container(rsid + rsid + langChunk(u"de-DE", u"Deutsch") + apid), "de-DE|Deutsch||German|Germany|App|||"},
        // A tag needs its country part. An unknown country makes the id invalid, but the language it
        // found keeps its English name.
        {container(langChunk(u"fr", u"français", u"France") + apid), "invalid|français|France|||App|||"},
        {container(langChunk(u"de-XX")), "invalid|||German|||||"},
    };
    for (const auto& [file, expected] : cases)
        EXPECT_EQ(described(file), expected);
}

struct Span {
    std::string id;
    size_t data, end;
};

TEST(LanguageFile, FileCutAnywhereFailsOrReadsOnlyWholeChunks)
{
    const Bytes good = written(frenchCanadian());
    std::vector<Span> spans; // the chunks, whose sizes are all small
    for (size_t at = 16; at < good.size(); at = spans.back().end)
        spans.push_back({std::string(good.begin() + long(at), good.begin() + long(at + 4)), at + 12,
                         at + 12 + (good[at + 4] | size_t(good[at + 5]) << 8)});
    ASSERT_EQ(spans.size(), 6u);
    ASSERT_EQ(spans.back().id, "STMP");

    for (size_t cut = 0; cut < 8; ++cut)
        EXPECT_ANY_THROW(readFile(Bytes(good.begin(), good.begin() + long(cut)))) << "magic cut at " << cut;
    for (size_t cut = 16; cut < good.size(); ++cut) {
        SCOPED_TRACE("cut at " + std::to_string(cut));
        const Bytes prefix(good.begin(), good.begin() + long(cut));
        size_t at = 0;
        while (spans[at].end <= cut)
            ++at;
        if (cut >= spans[at].data && spans[at].id != "STMP") {
            EXPECT_THROW(readFile(prefix), kore::CEndOfStreamError);
            continue;
        }
        // A cut header ends the walk: that chunk and all after it are missing, which is no error.
        auto whole = [&](const char* id) {
            return std::any_of(spans.begin(), spans.begin() + long(at), [&](const Span& s) { return s.id == id; });
        };
        EXPECT_EQ(described(prefix),
                  std::string(whole("lang") ? "fr-CA|français|Canada (Québec)|French|Canada" : "invalid||||") +
                      (whole("apid") ? "|MyApp|second" : "||") + (whole("cmnt") ? "|Traduit à la main" : "|") +
                      (whole("xdid") ? "|Émilie Tremblay" : "|"));

        // Its strings are another matter: a file cut anywhere has lost some, so it is damaged.
        EXPECT_THROW(readTexts(prefix), kore::CException);
    }
    EXPECT_EQ(readTexts(good), (Texts{{u"menu.file", u"Fichier"}, {u"menu.edit", u"Édition"}}));
}

TEST(LanguageFile, CountsBeyondTheFileFailAtOnceWithoutAllocating)
{
    const Bytes lang = langChunk(u"de-DE");
    // Items: a tag N = 0xFFFFFFFF, comment N = 2^31 and one unit too many, xdid M = 0xFFFFFFFF and
    // M = 2 with one pair. Strings: data M = 0xFFFFFFFF, an entry's key N = 0xFFFFFFFF.
    const std::pair<Bytes, bool> cases[] = {
        {container(chunk("lang", u32(0xFFFFFFFF) + counted(u"x"))), false},
        {container(lang + chunk("cmnt", u32(0x80000000))), false},
        {container(lang + chunk("cmnt", u32(3) + Bytes{'a', 0, 0, 0})), false},
        {container(lang + chunk("xdid", u32(0xFFFFFFFF))), false},
        {container(lang + chunk("xdid", u32(2) + counted(u"k") + counted(u"v"))), false},
        {container(lang + chunk("STMP", chunk("data", u32(0xFFFFFFFF)))), true},
        {container(lang + chunk("STMP", chunk("data", u32(1) + u32(0) + u32(0xFFFFFFFF)))), true},
    };
    int n = 0;
    for (const auto& [file, strings] : cases) {
        SCOPED_TRACE("case " + std::to_string(n++));
        const auto start = std::chrono::steady_clock::now();
        const size_t largest = [&] {
            CAllocationWatch probe(0, 1 << 20);
            if (strings)
                EXPECT_THROW(readTexts(file), kore::CException);
            else
                EXPECT_THROW(readFile(file), kore::CEndOfStreamError);
            return probe.largest();
        }();
        EXPECT_LT(largest, 1u << 16);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }
}

TEST(LanguageFile, ChunkSizesThatWouldWrapEndTheWalkAndAnStmpWithoutDataIsPassedOver)
{
    const Bytes lang = langChunk(u"de-DE", u"Deutsch");
    const Bytes withoutData = chunk("STMP", chunk("note", counted(u"x")));
    EXPECT_EQ(readTexts(container(lang + stmpChunk({{u"a", u"1"}}) + withoutData)), (Texts{{u"a", u"1"}}));
    EXPECT_EQ(readTexts(container(lang + withoutData)), Texts());
    const Bytes apid = chunk("apid", counted(u"App") + counted(u""));
    for (const uint64_t size :
         {~0ull, ~0ull - 11, 1ull << 63, (1ull << 63) - 1, (1ull << 63) - 12, (1ull << 63) - 40}) {
        SCOPED_TRACE(size);
        const Bytes file = container(lang + chunk("junk", size, counted(u"j")) + apid + stmpChunk({{u"k", u"v"}}));
        EXPECT_EQ(described(file), "de-DE|Deutsch||German|Germany||||") << "nothing after the chunk is reached";
        EXPECT_EQ(readTexts(file), Texts());

        const Bytes nested = container(lang + chunk("STMP", chunk("junk", size, Bytes{}) + chunk("data", u32(0))) +
                                       stmpChunk({{u"k", u"v"}}));
        EXPECT_EQ(readTexts(nested), (Texts{{u"k", u"v"}})) << "the nested walk ends; the next STMP still counts";
    }
}

} // namespace
