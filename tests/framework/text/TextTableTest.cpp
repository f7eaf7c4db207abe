#include "FrameworkTest.h"

#include "framework/text/CTextTable.h"

#include <map>
#include <string>
#include <vector>

namespace {

using namespace kore_test;

std::u16string key(int n)
{
    const std::string digits = "k" + std::to_string(n);
    return std::u16string(digits.begin(), digits.end());
}

uint64_t hashOf(const std::u16string& text)
{
    return CTextTable::hash(text.data(), uint32_t(text.size()));
}

std::u16string find(const CTextTable& table, const std::u16string& wanted)
{
    CTextTable::Text text;
    if (!table.find(wanted.data(), uint32_t(wanted.size()), hashOf(wanted), text))
        return u"<absent>";
    return std::u16string(reinterpret_cast<const char16_t*>(text.bytes), text.units);
}

TEST(TextTable, HashOfATerminatedKeyMeasuresItAndMatches)
{
    for (const std::u16string text : {u"", u"a", u"abc", u"abcd", u"abcde", u"\xD800 kore.CFileNotFoundError.Desc"}) {
        uint32_t units = 99;
        EXPECT_EQ(CTextTable::hashTerminated(text.c_str(), units), hashOf(text));
        EXPECT_EQ(units, text.size());
    }
    EXPECT_NE(hashOf(u"ab"), hashOf(u"ba"));
    EXPECT_NE(hashOf(u"a"), hashOf(std::u16string(u"a\0", 2)));
}

// Keys that share a bucket are kept in key order there and searched; a hostile set of keys that
// all collide costs a logarithmic search, not a scan.
TEST(TextTable, KeysThatShareABucketAreAllFoundAndDuplicatesKeepTheHighestRank)
{
    // 64 entries make 64 buckets: the top six bits of the hash choose one.
    std::vector<std::u16string> crowded;
    std::vector<std::u16string> others;
    for (int n = 0; crowded.size() < 48 || others.size() < 16; ++n) {
        std::u16string k = key(n);
        if ((hashOf(k) >> 58) == 0)
            crowded.push_back(k);
        else if (others.size() < 16)
            others.push_back(k);
    }
    const std::vector<std::u16string> absent(crowded.begin() + 40, crowded.end());
    crowded.resize(40);

    CTextTable::CBuilder builder;
    std::map<std::u16string, std::u16string> expected;
    for (const auto* keys : {&crowded, &others}) {
        for (const std::u16string& k : *keys) {
            const std::u16string text = u"text of " + k;
            builder.addCopy(k.data(), uint32_t(k.size()), text.data(), uint32_t(text.size()), 5);
            expected[k] = text;
        }
    }
    // Duplicates: a higher rank wins whenever it comes; of equal ranks, the later.
    const std::u16string higher = u"higher", lower = u"lower", later = u"later";
    builder.addCopy(crowded[3].data(), uint32_t(crowded[3].size()), higher.data(), 6, 9);
    builder.addCopy(crowded[3].data(), uint32_t(crowded[3].size()), lower.data(), 5, 1);
    builder.addCopy(others[2].data(), uint32_t(others[2].size()), later.data(), 5, 5);
    builder.addCopy(u"", 0, u"empty key", 9, 0);
    expected[crowded[3]] = higher;
    expected[others[2]] = later;
    expected[u""] = u"empty key";

    const P<CTextTable> table = builder.build();
    EXPECT_EQ(table->getCount(), expected.size());
    for (const auto& [k, text] : expected)
        EXPECT_EQ(find(*table, k), text);
    for (const std::u16string& k : absent)
        EXPECT_EQ(find(*table, k), u"<absent>") << "absent from a crowded bucket";

    std::map<std::u16string, std::u16string> listed;
    table->forEach([&](const uint8_t* k, uint32_t kUnits, const uint8_t* t, uint32_t tUnits) {
        listed[std::u16string(reinterpret_cast<const char16_t*>(k), kUnits)] =
            std::u16string(reinterpret_cast<const char16_t*>(t), tUnits);
    });
    EXPECT_EQ(listed, expected);

    const P<CTextTable> empty = CTextTable::CBuilder().build();
    EXPECT_EQ(find(*empty, u"k1"), u"<absent>");
}

// Keys of one length whose tags (the low half of the hash) agree and that share a bucket are still
// told apart by their units: both are kept and each finds its own text.
TEST(TextTable, KeysOfOneLengthAndTagStayApart)
{
    std::map<uint64_t, std::u16string> seen; // tag and top bit (the bucket of two entries) to key
    for (int n = 100000;; ++n) {
        const std::u16string k = key(n);
        const uint64_t h = hashOf(k);
        const auto [other, fresh] = seen.emplace((h & 0xFFFFFFFFu) | (h >> 63 << 32), k);
        if (fresh)
            continue;
        CTextTable::CBuilder builder;
        builder.addCopy(other->second.data(), 7, u"first", 5, 0);
        builder.addCopy(k.data(), 7, u"second", 6, 0);
        const P<CTextTable> table = builder.build();
        EXPECT_EQ(table->getCount(), 2u);
        EXPECT_EQ(find(*table, other->second) + find(*table, k), u"firstsecond");
        break;
    }
}

} // namespace
