#include "FrameworkTest.h"

#include "framework/containers/TSimpleHashTable.h"

#include <utility>

namespace {

using namespace kore_test;

// Keys hash to one of three values: three long chains, where only full comparison tells keys apart.
struct CollidingTraits : TSimpleHashKeyTraits<int> {
    static uint32_t hash(int key) { return static_cast<uint32_t>(key % 3); }
};

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
