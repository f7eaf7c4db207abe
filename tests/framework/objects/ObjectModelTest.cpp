#include "FrameworkTest.h"

#include "framework/objects/CInstanceWrapper.h"
#include "framework/objects/CObject.h"
#include "framework/objects/PC.h"
#include "framework/objects/PFrail.h"

namespace kore_test {

struct IFirst : virtual IBase {
    virtual int first() const = 0;
};
struct ISecond : virtual IBase {
    virtual int second() const = 0;
};

struct CCounted : CObject, IFirst {
    static inline int destroyed = 0;
    ~CCounted() override { ++destroyed; }
    int first() const override { return 1; }
    P<CCounted> child;
    PFrail<CCounted> next;
    int value = 0;
};

struct CBoth : CObject, IFirst, ISecond {
    explicit CBoth(int value = 10) : value(value) {}
    int first() const override { return value; }
    int second() const override { return value + 10; }
    int value;
};

// Answers castQuery as configured: refuse, redirect, or offer candidates.
struct CQuerying : CObject, IFirst {
    bool refuse = false;
    const IBase* redirect = nullptr;
    const CCastCandidate* candidates = nullptr;
    int first() const override { return 99; }
    bool castQuery(const std::type_info&, const IBase*& r, const CCastCandidate*& c) const override
    {
        r = redirect;
        c = candidates;
        return !refuse;
    }
};

TEST(ObjectModel, CountingOwnershipSafeAssignmentFrailPointersAndThreads)
{
    CCounted::destroyed = 0;
    auto* raw = new CCounted;
    P<CCounted> owner = P<CCounted>::adopt(raw);
    {
        P<CCounted> copy = owner;
        PC<CCounted> constant = owner;
        EXPECT_EQ(raw->getRefCount(), 3);
    }
    owner = owner;
    EXPECT_EQ(raw->getRefCount(), 1);
    // An instance wrapper keeps it alive when no pointer is left.
    IInstanceWrapper* wrapper = new CInstanceWrapper(raw);
    owner.reset();
    EXPECT_EQ(CCounted::destroyed, 0);
    wrapper->deleteThis();
    EXPECT_EQ(CCounted::destroyed, 1);
    // The only reference to the child is held by the parent: assigning the child over the
    // parent must keep the child alive.
    P<CCounted> p = make<CCounted>();
    p->child = make<CCounted>();
    p = p->child;
    EXPECT_EQ(CCounted::destroyed, 2);
    EXPECT_EQ(p->getRefCount(), 1);

    // During destruction the count is parked far below zero (where it stays), so that a pointer
    // taken and dropped there cannot destroy the object a second time.
    static int32_t seen = 0;
    struct CResurrecting : CObject {
        ~CResurrecting() override
        {
            P<CResurrecting> self(this);
            seen = self->getRefCount();
        }
    };
    make<CResurrecting>();
    EXPECT_EQ(seen, -999999);

    // Frail pointers never touch the count, strong ones do, and both keep what they hold.
    owner = make<CCounted>();
    raw = owner.get();
    {
        PFrail<CCounted> frail(raw, kFrail), assigned, strong(raw);
        assigned = PFrail<CCounted>(frail);
        PFrail<CCounted> copy = strong;
        EXPECT_EQ(std::pair(raw->getRefCount(), assigned.isStrong()), std::pair(3, false));
        copy = frail; // takes over the frail flag and drops the strong reference it had
        EXPECT_EQ(raw->getRefCount(), 2);
    }
    EXPECT_EQ(raw->getRefCount(), 1);
    PFrail<CCounted> defaulted;
    EXPECT_TRUE(defaulted.isStrong() && !defaulted);

    // A chain whose nodes own the next one only through a strong frail pointer: walking it by
    // assignment frees each node as the walk leaves it, after its successor was taken.
    for (const bool moving : {false, true}) {
        SCOPED_TRACE(moving ? "move" : "copy");
        CCounted::destroyed = 0;
        PFrail<CCounted> cur(new CCounted); // the node's first reference...
        cur->release(); // ...handed over to the pointer
        for (CCounted* tail = cur.get(); tail->value < 3; tail = tail->next.get()) {
            tail->next = PFrail<CCounted>(new CCounted);
            tail->next->release();
            tail->next->value = tail->value + 1;
        }
        for (int i = 1; i < 4; ++i) {
            cur = moving ? std::move(cur->next) : cur->next;
            ASSERT_EQ(cur->value, i);
            EXPECT_EQ(cur->getRefCount(), 1);
            EXPECT_EQ(CCounted::destroyed, i);
        }
        cur.reset();
        EXPECT_EQ(CCounted::destroyed, 4);
    }
}

TEST(ObjectModel, CastFindsInterfacesAsCastQueryDirectsAndNamesBothTypesWhenItCannot)
{
    EXPECT_EQ(cast<IFirst>(static_cast<const IBase*>(nullptr)), nullptr);
    P<CBoth> both = make<CBoth>();
    EXPECT_EQ(both->toString()->toUTF8(), "class kore_test::CBoth object");
    P<ISecond> sibling = cast<ISecond>(static_cast<const IBase*>(static_cast<IFirst*>(both.get())));
    EXPECT_EQ(sibling->second(), 20);
    EXPECT_EQ(both->getRefCount(), 2) << "interfaces of one object share one count";

    P<CObject> plain = make<CObject>();
    EXPECT_EQ(tryCast<IFirst>(plain), nullptr);
    // The one cast text with both type names filled in; the error class's texts are ErrorsTest's.
    expectThrown<CCastError>([&] { cast<IFirst>(plain); },
                             [&](const CCastError& e) {
                                 const char* message =
                                     "Error casting a 'class kore::CObject' object to 'class kore_test::IFirst'.";
                                 EXPECT_EQ(e.getDescription()->toUTF8(), message);
                                 EXPECT_STREQ(e.what(), message);
                                 EXPECT_EQ(e.getObject().get(), static_cast<IBase*>(plain.get()));
                             });

    // castQuery may refuse, redirect or offer candidates.
    P<CQuerying> q = make<CQuerying>();
    q->refuse = true;
    EXPECT_EQ(tryCast<IFirst>(q), nullptr) << "not even to its own interface";
    q->refuse = false;
    P<CBoth> target = make<CBoth>();
    q->redirect = static_cast<IFirst*>(target.get());
    // The object implements IFirst itself, but a followed redirect wins; unfollowed, the object
    // itself is tried.
    EXPECT_EQ(cast<IFirst>(q)->first(), 10);
    EXPECT_EQ(tryCast<IFirst>(q, false)->first(), 99);
    // A redirect that cannot be cast is a failed cast, with no fallback to the object.
    P<CObject> dead = make<CObject>();
    q->redirect = dead.get();
    EXPECT_THROW(cast<IFirst>(q), CCastError);

    // The first candidate that can be cast wins, and a candidate's own redirect is not followed.
    P<CBoth> redirectTarget = make<CBoth>(30), second = make<CBoth>(10), third = make<CBoth>(50);
    q->redirect = static_cast<IFirst*>(redirectTarget.get());
    const CCastCandidate last{static_cast<ISecond*>(third.get()), nullptr};
    const CCastCandidate middle{static_cast<ISecond*>(second.get()), &last};
    const CCastCandidate first{static_cast<IFirst*>(q.get()), &middle};
    P<CQuerying> o = make<CQuerying>();
    o->candidates = &first;
    EXPECT_EQ(cast<ISecond>(o)->second(), 20);

    // Threads share one object, count it up and down and drop their last references at about the
    // same time: no count is lost, and exactly one of them destroys the object.
    CCounted::destroyed = 0;
    std::vector<std::thread> threads;
    std::atomic<int> ready{0};
    {
        P<CCounted> shared = make<CCounted>();
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&ready, mine = shared] {
                for (++ready; ready < 4;)
                    std::this_thread::yield();
                for (int i = 0; i < 20000; ++i) {
                    P<CCounted> copy = mine;
                    mine->addRef();
                    mine->release();
                }
            });
        }
        while (ready < 4)
            std::this_thread::yield();
    }
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(CCounted::destroyed, 1);
}

} // namespace kore_test
