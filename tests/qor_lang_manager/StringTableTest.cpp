// Which text a language answers for a key is decided by the file's string table order. The
// loader works it out without building that table; these tests hold its answers against the
// table built literally (StringTableModel.h).

#include "LanguageTestSupport.h"
#include "StringTableModel.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace {

using namespace lang_test;

struct Entry {
    std::optional<std::u16string> key;
    std::optional<std::u16string> text;
};
using Chunk = std::vector<Entry>;

// A language file whose "STMP" chunks hold these "data" chunks, and what the literal table
// answers for it.
struct File {
    Bytes bytes;
    Texts expected;
};

File languageFile(const std::vector<Chunk>& chunks)
{
    CStringTableModel model;
    Bytes area = langChunk(u"de-DE");
    for (const Chunk& entries : chunks) {
        model.beginChunk();
        Bytes data = u32(static_cast<uint32_t>(entries.size()));
        for (const Entry& e : entries) {
            for (const Bytes& part :
                 {u32(7), counted(e.key), counted(e.text), counted(u"third"), counted(std::nullopt)})
                data.insert(data.end(), part.begin(), part.end());
            model.insert(e.key.value_or(u""), e.text.value_or(u""));
        }
        area = area + chunk("STMP", chunk("data", data));
    }
    return {container(area), chunks.empty() ? Texts() : model.answers()};
}

std::u16string numbered(const char16_t* prefix, uint32_t n)
{
    const std::string digits = std::to_string(n);
    return prefix + std::u16string(digits.begin(), digits.end());
}

TEST(StringTable, OfEntriesWithOneKeyTheTableOrderDecidesAcrossDoublings)
{
    // Two entries of "dup" with fillers between and after: the winner flips with every doubling
    // that follows them (after 801, 1601, 3201 entries from 1000 buckets). An earlier chunk of 801
    // entries leaves 2000 buckets behind.
    const struct {
        uint32_t before, between, after;
        const char16_t* winner;
    } cases[] = {{0, 0, 798, u"first"},   {0, 0, 799, u"second"},   {0, 800, 0, u"first"},
                 {0, 0, 1598, u"second"}, {0, 0, 1599, u"first"},   {0, 799, 1, u"second"},
                 {0, 1598, 1, u"second"}, {801, 0, 1598, u"first"}, {800, 0, 1598, u"second"}};
    for (const auto& c : cases) {
        std::vector<Chunk> chunks(c.before ? 2 : 1);
        for (uint32_t i = 0; i < c.before; ++i)
            chunks[0].push_back({numbered(u"z", i), u"x"});
        Chunk& entries = chunks.back();
        entries.push_back({u"dup", u"first"});
        for (uint32_t i = 0; i < c.between; ++i)
            entries.push_back({numbered(u"a", i), u"x"});
        entries.push_back({u"dup", u"second"});
        for (uint32_t i = 0; i < c.after; ++i)
            entries.push_back({numbered(u"b", i), u"x"});
        const File file = languageFile(chunks);
        SCOPED_TRACE(std::to_string(c.before) + "/" + std::to_string(c.between) + "/" + std::to_string(c.after));
        ASSERT_EQ(file.expected.at(u"dup"), c.winner) << "the model itself";
        EXPECT_EQ(readTexts(file.bytes).at(u"dup"), c.winner);
    }
}

TEST(StringTable, AnswersAsTheLiteralTableOnRandomFiles)
{
    std::mt19937 random(20261124);
    auto below = [&](uint32_t n) { return std::uniform_int_distribution<uint32_t>(0, n - 1)(random); };
    for (int round = 0; round < 60; ++round) {
        // Up to three "data" chunks: earlier ones leave their buckets behind for the last.
        std::vector<Chunk> chunks(1 + below(3));
        for (Chunk& entries : chunks) {
            const uint32_t count = below(4) == 0 ? below(20) : below(3400);
            // A small pool of keys makes duplicates, some of them many times over.
            const uint32_t pool = 1 + count / (1 + below(4));
            for (uint32_t i = 0; i < count; ++i) {
                Entry e{numbered(u"k.", below(pool)), numbered(u"t", i)};
                if (below(50) == 0)
                    e.key = below(2) ? std::nullopt : std::optional<std::u16string>(u"");
                if (below(20) == 0)
                    e.text = below(2) ? std::nullopt : std::optional<std::u16string>(u"");
                entries.push_back(e);
            }
        }
        const File file = languageFile(chunks);
        ASSERT_EQ(readTexts(file.bytes), file.expected) << "round " << round;
    }
}

} // namespace
