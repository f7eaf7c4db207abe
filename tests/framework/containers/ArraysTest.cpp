#include "FrameworkTest.h"

#include "framework/containers/TCleaningSimpleArray.h"
#include "framework/containers/TFrailArray.h"
#include "framework/containers/TSimpleArray.h"

#include <algorithm>
#include <stdexcept>

namespace {

using namespace kore_test;

using CItem = CMortal;

const auto isDead = [](int id) { return std::find(CItem::dead.begin(), CItem::dead.end(), id) != CItem::dead.end(); };

std::vector<int> ids(const TSimpleArray<P<CItem>>& a)
{
    std::vector<int> out;
    for (const P<CItem>& p : a)
        out.push_back(p->id);
    return out;
}

// Elements inserted from the array's own buffer survive the growth that frees it; removal and shrinking drop exactly the references of
// the elements they take out.
TEST(SimpleArray, GrowthBadPositionsAndReferences)
{
    auto b = make<TSimpleArray<int>>(16);
    const std::vector<int> many(40, 7);
    // Growth is linear, to the larger of need and grow step.
    std::vector<int32_t> capacities;
    b->insert(0, many.data(), 20);
    capacities.push_back(b->getCapacity());
    b->add(1);
    capacities.push_back(b->getCapacity());
    b->insert(0, many.data(), 40);
    capacities.push_back(b->getCapacity());
    EXPECT_EQ(capacities, (std::vector<int32_t>{20, 36, 61}));
    EXPECT_EQ((*b)[60], 1);
    const std::function<void()> bad[] = {[&] { (*b)[-1]; }, [&] { b->insert(62, 5); }, [&] { b->remove(60, 2); },
                                         [&] { b->setCapacity(-1); },
                                         [&] { b->insert(0, static_cast<const int*>(nullptr), 1); }};
    for (const auto& call : bad)
        EXPECT_THROW(call(), CInvalidArgError);
    EXPECT_EQ(b->getCount(), 61);
    EXPECT_NE(descriptionOf<CInvalidArgError>([&] { (*b)[65]; }).find("index 65"), std::string::npos);

    std::vector<P<CItem>> items;
    auto a = make<TSimpleArray<P<CItem>>>(1);
    for (int i = 0; i < 3; ++i)
        a->add(items.emplace_back(make<CItem>(i)));
    a->insert(0, (*a)[2]); // refers into the buffer that this very growth frees
    a->insert(1, a->data() + 2, 2);
    EXPECT_EQ(ids(*a), (std::vector<int>{2, 1, 2, 0, 1, 2}));
    a->insert(3, make<CItem>(7));
    a->remove(3);
    EXPECT_TRUE(isDead(7)) << "a removed element must drop its reference at once";
    a->remove(1, 2);
    EXPECT_EQ(ids(*a), (std::vector<int>{2, 0, 1, 2}));
    a->setCapacity(40);
    EXPECT_EQ(items[2]->getRefCount(), 3);
    a->setCapacity(2);
    EXPECT_EQ(ids(*a), (std::vector<int>{2, 0}));
    EXPECT_EQ(std::pair(items[2]->getRefCount(), items[1]->getRefCount()), std::pair(2, 1));
    a = nullptr;
    EXPECT_EQ(items[2]->getRefCount(), 1);
}

// Copy assignment throws for one marked value; moves never throw.
struct CFragile {
    static inline int poison = -1;
    int v = 0;
    CFragile() noexcept = default;
    CFragile(int v) noexcept : v(v) {}
    CFragile(const CFragile&) = default;
    CFragile(CFragile&&) noexcept = default;
    CFragile& operator=(CFragile&&) noexcept = default;
    CFragile& operator=(const CFragile& o)
    {
        if (o.v == poison)
            throw std::runtime_error("poisoned copy");
        v = o.v;
        return *this;
    }
};

// An element whose copy throws, in an insertion or a reallocation, leaves the array as it was.
TEST(SimpleArray, ThrowingAssignmentLeavesTheArrayUnchanged)
{
    auto a = make<TSimpleArray<CFragile>>(4);
    for (int i = 1; i <= 4; ++i)
        a->add(CFragile(i));
    const CFragile incoming[3] = {10, 11, 12};
    CFragile::poison = 11;
    EXPECT_THROW(a->insert(1, incoming, 3), std::runtime_error);
    const int32_t capacity = a->getCapacity(); // the growth itself succeeded and may stay
    CFragile::poison = 3;
    EXPECT_THROW(a->setCapacity(capacity * 2), std::runtime_error);
    CFragile::poison = -1;
    EXPECT_EQ(a->getCapacity(), capacity);
    std::vector<int> values;
    for (int i = 0; i < a->getCount(); ++i)
        values.push_back((*a)[i].v);
    EXPECT_EQ(values, (std::vector<int>{1, 2, 3, 4}));
}

TEST(CleaningSimpleArray, RemovalDuringAWalkEmptiesTheSlotAndCleansAfterwards)
{
    for (bool autoClean : {true, false}) {
        auto a = make<TCleaningSimpleArray<P<CItem>>>(10, autoClean);
        CItem::dead.clear();
        for (int i = -1; i < 4; ++i)
            a->add(make<CItem>(i));
        std::vector<int> seen;
        a->forEach([&](const P<CItem>& item) {
            seen.push_back(item->id);
            if (item->id == -1) {
                a->removeAt(0); // itself: the visit's copy keeps it alive
                EXPECT_FALSE(isDead(-1));
            } else if (item->id == 1) {
                a->removeAt(2); // itself
                a->removeAt(3); // the next one: must not be visited
                a->add(make<CItem>(9)); // waits for the next walk
            }
        });
        EXPECT_EQ(seen, (std::vector<int>{-1, 0, 1, 3}));
        EXPECT_TRUE(isDead(-1));
        EXPECT_EQ(a->getCount(), autoClean ? 3 : 6);
        a->clean();
        ASSERT_EQ(a->getCount(), 3);
        EXPECT_EQ(a->get(2)->id, 9);
    }
}

struct IListener : virtual IBase {
    virtual void onEvent(std::vector<int>& journal) = 0;
};

// Leaves its list before it dies, as every listener of a frail list must.
struct CListener : CObject, IListener {
    CListener(int id, TFrailArray<IListener>* list) : id(id), list(list) { list->add(this); }
    ~CListener() override { list->remove(this); }
    void onEvent(std::vector<int>& journal) override
    {
        journal.push_back(id);
        if (action)
            action();
    }
    int id;
    TFrailArray<IListener>* list;
    std::function<void()> action;
};

TEST(FrailArray, HoldsNoReferencesAndSurvivesListenersThatLeaveOrDieWhileCalled)
{
    auto list = make<TFrailArray<IListener>>();
    auto a = make<CListener>(1, list.get()), b = make<CListener>(2, list.get()), c = make<CListener>(3, list.get());
    EXPECT_EQ(a->getRefCount(), 1);
    EXPECT_FALSE(list->add(a.get())) << "a listener is registered once";
    EXPECT_THROW(list->add(nullptr), CInvalidArgError);
    // The first listener destroys the second one (which leaves the list) and adds a new one.
    P<CListener> late;
    a->action = [&] {
        b = nullptr;
        if (!late)
            late = make<CListener>(4, list.get());
    };
    for (const auto& expected : {std::vector<int>{1, 3}, std::vector<int>{1, 3, 4}}) {
        std::vector<int> journal;
        list->forEach([&](IListener& l) { l.onEvent(journal); });
        EXPECT_EQ(journal, expected);
    }
    EXPECT_TRUE(list->remove(c.get()));
    EXPECT_FALSE(list->contains(c.get()));
    EXPECT_TRUE(list->add(c.get()));
}

} // namespace
