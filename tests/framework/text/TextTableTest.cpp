#include "FrameworkTest.h"

#include "framework/text/CTextTable.h"

#include <map>
#include <string>
#include <unordered_map>
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

void add(CTextTable::CBuilder& builder, const std::u16string& k, const std::u16string& text, uint32_t rank = 0)
{
    builder.addCopy(k.data(), uint32_t(k.size()), text.data(), uint32_t(text.size()), rank);
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

    // Keys that share a bucket are kept in key order there and searched; a hostile set of keys that
    // all collide costs a logarithmic search, not a scan.
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
    for (const auto* keys : {&crowded, &others})
        for (const std::u16string& k : *keys)
            add(builder, k, expected[k] = u"text of " + k, 5);
    // Duplicates: a higher rank wins whenever it comes; of equal ranks, the later.
    add(builder, crowded[3], expected[crowded[3]] = u"higher", 9);
    add(builder, crowded[3], u"lower", 1);
    add(builder, others[2], expected[others[2]] = u"later", 5);
    add(builder, u"", expected[u""] = u"empty key");

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
    std::unordered_map<uint64_t, int> seen; // tag and top bit (the bucket of two entries) to key
    seen.reserve(1 << 18);
    for (int n = 100000;; ++n) {
        const uint64_t h = hashOf(key(n));
        const auto [other, fresh] = seen.emplace((h & 0xFFFFFFFFu) | (h >> 63 << 32), n);
        if (fresh)
            continue;
        CTextTable::CBuilder builder;
        add(builder, key(other->second), u"first");
        add(builder, key(n), u"second");
        const P<CTextTable> table = builder.build();
        EXPECT_EQ(table->getCount(), 2u);
        EXPECT_EQ(find(*table, key(other->second)) + find(*table, key(n)), u"firstsecond") << n;
        break;
    }
}

} // namespace
