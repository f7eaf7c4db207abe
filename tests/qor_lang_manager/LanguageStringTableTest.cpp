#include "qor_lang_manager/CLanguageStringTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using qor_lang::CLanguageStringEntry;
using qor_lang::CLanguageStringTable;

void insert(CLanguageStringTable& table, const std::u16string& key, const std::u16string& text)
{
    CLanguageStringEntry entry;
    entry.key = key;
    entry.text = text;
    table.insert(std::move(entry));
}

void insertFillers(CLanguageStringTable& table, int count)
{
    static int next = 0;
    for (int i = 0; i < count; ++i) {
        const std::string digits = std::to_string(next++);
        insert(table, u"filler." + std::u16string(digits.begin(), digits.end()), u"");
    }
}

// Texts of `key` in visiting order (the order in which a pack hands them to the localizer).
std::vector<std::u16string> visits(const CLanguageStringTable& table, const std::u16string& key)
{
    std::vector<std::u16string> texts;
    table.forEach([&](const CLanguageStringEntry& e) {
        if (e.key && *e.key == key)
            texts.push_back(*e.text);
    });
    return texts;
}

TEST(LanguageStringTable, HashIsTheFileFormatsOwn)
{
    // Worked by hand from h = h ^ ((h << 5) + (h >> 2, arithmetic) + c), 32 bits, from h = 0.
    EXPECT_EQ(CLanguageStringTable::hashKey(std::nullopt), 0u);
    EXPECT_EQ(CLanguageStringTable::hashKey(u""), 0u);
    EXPECT_EQ(CLanguageStringTable::hashKey(u"a"), 0x61u);
    EXPECT_EQ(CLanguageStringTable::hashKey(u"ab"), 0xCFBu);   // 0x61 ^ (0xC20 + 0x18 + 0x62)
    EXPECT_EQ(CLanguageStringTable::hashKey(u"été"), 0x3B035u);
    // Here h turns negative on the way: a logical shift would give 0xCD14DA2F.
    EXPECT_EQ(CLanguageStringTable::hashKey(u"abcdefg"), 0x0D14DA2Fu);
    EXPECT_EQ(CLanguageStringTable::hashKey(u"zzzzzzz"), 0xA8AA8813u);
}

TEST(LanguageStringTable, VisitsBucketsInOrderEachChainFromItsHead)
{
    CLanguageStringTable table;
    // Buckets of 1000: "ab" 323, "zzzzzzz" 243 (the hash taken unsigned), "a" 97.
    insert(table, u"ab", u"1");
    insert(table, u"zzzzzzz", u"2");
    insert(table, u"a", u"3");
    insert(table, u"a", u"4");
    std::u16string order;
    table.forEach([&](const CLanguageStringEntry& e) { order += *e.text; });
    EXPECT_EQ(order, u"4321");
    EXPECT_EQ(table.find(u"b"), nullptr);
}

TEST(LanguageStringTable, BucketsDoubleOncePastFourFifthsAndEachDoublingReversesEntriesThatShareABucket)
{
    const struct {
        int between, after, buckets;
        std::vector<std::u16string> visited;
    } cases[] = {
        {0, 798, 1000, {u"second", u"first"}},    // no doubling: the later one is visited first
        {0, 799, 2000, {u"first", u"second"}},    // one doubling after both turns the chain round
        {800, 0, 2000, {u"second", u"first"}},    // one between moves only the first; the second goes to the head
        {0, 1598, 2000, {u"first", u"second"}},
        {0, 1599, 4000, {u"second", u"first"}},   // two after both reverse twice
    };
    for (const auto& c : cases) {
        CLanguageStringTable table;
        EXPECT_EQ(table.getBucketCount(), 1000);
        insert(table, u"dup", u"first");
        insertFillers(table, c.between);
        insert(table, u"dup", u"second");
        insertFillers(table, c.after);
        EXPECT_EQ(table.getCount(), 2 + c.between + c.after);
        ASSERT_EQ(table.getBucketCount(), c.buckets) << table.getCount() << " entries";
        EXPECT_EQ(visits(table, u"dup"), c.visited) << c.between << "/" << c.after;
        EXPECT_EQ(*table.find(u"dup")->text, c.visited.front()) << "a look-up stops at the head";
        table.clear();
        EXPECT_EQ(table.getCount(), 0);
        EXPECT_EQ(table.getBucketCount(), c.buckets) << "clear keeps the buckets";
    }
}

} // namespace
