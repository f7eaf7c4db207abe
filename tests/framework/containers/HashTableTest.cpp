#include "FrameworkTest.h"

#include "framework/containers/TSimpleHashTable.h"

#include <utility>

namespace {

using namespace kore_test;

// Keys hash to one of three values: three long chains, where only full comparison tells keys apart.
struct CollidingTraits : TSimpleHashKeyTraits<int> {
    static uint32_t hash(int key) { return static_cast<uint32_t>(key % 3); }
};

// Integer keys that hash to themselves, counting every hash and full comparison.
struct CountingTraits : TSimpleHashKeyTraits<int> {
    static inline int hashes = 0, comparisons = 0;
    static uint32_t hash(int key)
    {
        ++hashes;
        return static_cast<uint32_t>(key);
    }
    static bool equals(int stored, int key)
    {
        ++comparisons;
        return stored == key;
    }
};

// The first insertion creates 10 buckets; an insertion that brings the count to load x buckets
// grows them by the factor, at least by one bucket, truncated; a replacement never rehashes.
// Rehashing reuses the stored hashes and reverses the nodes that land together; keys are compared
// only when their stored hashes match.
TEST(SimpleHashTable, GrowthRuleStoredHashesAndChainOrder)
{
    const struct {
        double load, factor;
        int inserts;
        std::vector<uint32_t> sizes;
    } rows[] = {{0.5, 2.0, 5, {0, 10, 20}}, {1.0, 1.0, 12, {0, 10, 11, 12, 13}}, {0.75, 1.5, 8, {0, 10, 15}}};
    for (const auto& row : rows) {
        auto t = make<TSimpleHashTable<int, int>>(row.load, row.factor);
        std::vector<uint32_t> sizes{t->getBucketCount()};
        for (int i = 0; i < row.inserts; ++i) {
            t->set(i, i);
            t->set(i, -i);
            if (sizes.back() != t->getBucketCount())
                sizes.push_back(t->getBucketCount());
        }
        EXPECT_EQ(sizes, row.sizes) << row.load << " " << row.factor;
    }
    auto truncated = make<TSimpleHashTable<int, int>>(0.75, 1.5);
    for (int i = 0; i < 3; ++i)
        truncated->rehash();
    EXPECT_EQ(truncated->getBucketCount(), 22u); // 0, 10, 15, 22.5

    auto t = make<TSimpleHashTable<int, int, CountingTraits>>(1.0, 1.1);
    const auto keysInOrder = [&] {
        std::vector<int> keys;
        t->forEach([&](int key, int&) { keys.push_back(key); });
        return keys;
    };
    for (int key : {1, 111, 5, 21}) // 111 and 21 land in bucket 1 of 10, in front of 1
        t->set(key, key * 10);
    EXPECT_EQ(keysInOrder(), (std::vector<int>{21, 111, 1, 5}));
    CountingTraits::comparisons = 0;
    EXPECT_EQ(*t->find(1), 10);
    EXPECT_EQ(t->find(31), nullptr);
    EXPECT_EQ(CountingTraits::comparisons, 1) << "keys are compared only when the stored hashes match";
    CountingTraits::hashes = 0;
    t->rehash(); // 11 buckets: 1 and 111 land together again, in reverse order
    EXPECT_EQ(t->getBucketCount(), 11u);
    EXPECT_EQ(CountingTraits::hashes, 0) << "keys must not be hashed again";
    EXPECT_EQ(keysInOrder(), (std::vector<int>{1, 111, 5, 21}));
    for (int key : {1, 111, 5, 21})
        EXPECT_EQ(*t->find(key), key * 10);
}

TEST(SimpleHashTable, KeysStayDistinctAndValuesAreReleasedByReplaceRemoveClearAndDestruction)
{
    std::vector<P<CObject>> values;
    auto t = make<TSimpleHashTable<int, P<CObject>, CollidingTraits>>();
    for (int i = 0; i < 50; ++i)
        t->set(i, values.emplace_back(make<CObject>()));
    t->set(0, nullptr);
    EXPECT_TRUE(t->remove(25));
    EXPECT_FALSE(t->remove(25));
    EXPECT_EQ(t->find(25), nullptr);
    EXPECT_EQ(t->getCount(), 49u);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(i == 25 ? nullptr : t->find(i)->get(), i == 0 || i == 25 ? nullptr : values[i].get()) << i;
        EXPECT_EQ(values[i]->getRefCount(), i == 0 || i == 25 ? 1 : 2) << i;
    }
    const uint32_t buckets = t->getBucketCount();
    t->clear();
    for (const P<CObject>& v : values)
        EXPECT_EQ(v->getRefCount(), 1);
    EXPECT_EQ(t->getCount(), 0u);
    EXPECT_EQ(t->getBucketCount(), buckets);
    t->set(9, values[9]);
    t = nullptr;
    EXPECT_EQ(values[9]->getRefCount(), 1);

    // String keys compare exactly, by code point, across encodings.
    auto strings = make<TSimpleHashTable<P<IString>, int>>();
    for (const auto& [key, value] : {std::pair{"Grüße", 1}, {"grüße", 2}, {"Grüß", 3}})
        strings->set(CString::fromUTF8(key), value);
    EXPECT_FALSE(strings->set(make<CUTF16String>(u"Grüß"), 30));
    // clang-format off
    const std::pair<P<IString>, int> lookups[] = {{make<CUTF16String>(u"Grüße"), 1},
        {make<CLatin1String>("Gr\xfc\xdf" "e"), 1}, {make<CUTF32String>(U"grüße"), 2}, {CString::fromUTF8("GRÜSSE"), 0},
        {CString::fromUTF8("Grüß"), 30}};
    // clang-format on
    for (const auto& [key, value] : lookups)
        EXPECT_EQ(strings->find(*key) ? *strings->find(*key) : 0, value) << key->toUTF8();
    EXPECT_EQ(strings->getCount(), 3u);
    EXPECT_THROW(strings->set(nullptr, 0), CInvalidArgError);
    EXPECT_THROW((TSimpleHashTable<int, int>(0.0, 2.0)), CInvalidArgError);
    EXPECT_THROW((TSimpleHashTable<int, int>(0.75, std::numeric_limits<double>::quiet_NaN())), CInvalidArgError);
}

} // namespace
