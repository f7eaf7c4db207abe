#include "framework/CInstanceWrapper.h"
#include "framework/CObject.h"
#include "framework/CString.h"
#include "framework/Cast.h"
#include "framework/P.h"
#include "framework/PC.h"
#include "framework/PFrail.h"

#include <gtest/gtest.h>

#include <vector>

namespace kore_test {

using namespace kore;

class IFirst : public virtual IBase {
public:
    virtual int first() const = 0;
};

class ISecond : public virtual IBase {
public:
    virtual int second() const = 0;
};

// Counts constructions and destructions.
class CCounted : public CObject, public IFirst {
public:
    static inline int constructed = 0;
    static inline int destroyed = 0;

    CCounted() { ++constructed; }
    ~CCounted() override { ++destroyed; }
    int first() const override { return 1; }

    P<CCounted> child;
};

class CBoth : public CObject, public IFirst, public ISecond {
public:
    int first() const override { return 10; }
    int second() const override { return 20; }
};

// Answers castQuery as configured: refuse, redirect, or offer candidates.
class CQuerying : public CObject, public IFirst {
public:
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

class ObjectModel : public ::testing::Test {
protected:
    void SetUp() override
    {
        CCounted::constructed = 0;
        CCounted::destroyed = 0;
    }
};

TEST_F(ObjectModel, NewObjectIsOwnedByItsCreatorAndDiesOnce)
{
    auto* raw = new CCounted;
    EXPECT_EQ(raw->getRefCount(), 1);
    {
        P<CCounted> owner = P<CCounted>::adopt(raw);
        P<CCounted> copy = owner;
        EXPECT_EQ(raw->getRefCount(), 2);
    }
    EXPECT_EQ(CCounted::constructed, 1);
    EXPECT_EQ(CCounted::destroyed, 1);
}

TEST_F(ObjectModel, CountIsParkedFarBelowZeroDuringDestruction)
{
    static std::vector<int32_t> seen;
    seen.clear();
    struct CRecording : CObject {
        ~CRecording() override
        {
            seen.push_back(getRefCount());
            P<CRecording> self(this);
            seen.push_back(getRefCount());
            self.reset();
            seen.push_back(getRefCount());
        }
    };
    make<CRecording>();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0], CReferencable::kDestroyingCount);
    EXPECT_EQ(seen[1], CReferencable::kDestroyingCount + 1);
    EXPECT_EQ(seen[2], CReferencable::kDestroyingCount);
}

TEST_F(ObjectModel, AssignmentIsSafeForSelfAndForPointeesKeptAliveByTheOldOne)
{
    P<CCounted> p = make<CCounted>();
    CCounted* raw = p.get();
    p = p;
    EXPECT_EQ(raw->getRefCount(), 1);
    EXPECT_EQ(CCounted::destroyed, 0);

    // The only reference to the child is held by the parent: assigning the child over the
    // parent must keep the child alive.
    p->child = make<CCounted>();
    p = p->child;
    EXPECT_EQ(CCounted::destroyed, 1);
    EXPECT_EQ(p->getRefCount(), 1);
    EXPECT_EQ(p->first(), 1);
}

TEST_F(ObjectModel, PointersAreOnePointerWide)
{
    EXPECT_EQ(sizeof(P<CCounted>), sizeof(void*));
    EXPECT_EQ(sizeof(PC<CCounted>), sizeof(void*));
    EXPECT_LE(sizeof(PFrail<CCounted>), 2 * sizeof(void*));
}

TEST_F(ObjectModel, FrailPointersNeverTouchTheCountStrongOnesDo)
{
    P<CCounted> owner = make<CCounted>();
    CCounted* raw = owner.get();
    {
        PFrail<CCounted> frail(raw, kFrail);
        PFrail<CCounted> copy = frail;
        PFrail<CCounted> assigned;
        assigned = copy;
        EXPECT_FALSE(assigned.isStrong());
        EXPECT_EQ(raw->getRefCount(), 1);
    }
    EXPECT_EQ(raw->getRefCount(), 1);
    {
        PFrail<CCounted> strong(raw);
        PFrail<CCounted> copy = strong;
        EXPECT_EQ(raw->getRefCount(), 3);
        PFrail<CCounted> frail(raw, kFrail);
        copy = frail; // takes over the frail flag and drops the strong reference it had
        EXPECT_EQ(raw->getRefCount(), 2);
    }
    EXPECT_EQ(raw->getRefCount(), 1);
    PFrail<CCounted> defaulted;
    EXPECT_TRUE(defaulted.isStrong());
    EXPECT_FALSE(defaulted);
}

TEST_F(ObjectModel, ObjectsDescribeThemselvesByRunTimeClass)
{
    P<CObject> o = make<CObject>();
    EXPECT_EQ(o->toString()->toUTF8(), "class kore::CObject object");
    P<CBoth> both = make<CBoth>();
    EXPECT_EQ(both->toString()->toUTF8(), "class kore_test::CBoth object");
}

TEST_F(ObjectModel, CastFindsInterfacesAndNamesBothTypesWhenItCannot)
{
    EXPECT_EQ(cast<IFirst>(static_cast<const IBase*>(nullptr)), nullptr);
    EXPECT_EQ(tryCast<IFirst>(static_cast<const IBase*>(nullptr)), nullptr);

    P<CBoth> both = make<CBoth>();
    const IBase* base = static_cast<IFirst*>(both.get());
    EXPECT_EQ(cast<ISecond>(base)->second(), 20);

    P<CObject> plain = make<CObject>();
    EXPECT_EQ(tryCast<IFirst>(plain), nullptr);
    try {
        cast<IFirst>(plain);
        FAIL() << "expected CCastError";
    } catch (const CCastError& e) {
        EXPECT_EQ(e.getDescription()->toUTF8(),
                  "Error casting a 'class kore::CObject' object to 'class kore_test::IFirst'.");
        EXPECT_EQ(e.getGeneralDescription()->toUTF8(), "Cast error");
        EXPECT_STREQ(e.what(),
                     "Error casting a 'class kore::CObject' object to 'class kore_test::IFirst'.");
        EXPECT_EQ(e.getObject().get(), static_cast<IBase*>(plain.get()));
    }
}

TEST_F(ObjectModel, RefusingObjectCannotBeCastEvenToItsOwnInterface)
{
    P<CQuerying> q = make<CQuerying>();
    q->refuse = true;
    EXPECT_EQ(tryCast<IFirst>(q), nullptr);
    EXPECT_THROW(cast<IFirst>(q), CCastError);
}

TEST_F(ObjectModel, RedirectReplacesTheObjectWhenFollowed)
{
    P<CBoth> target = make<CBoth>();
    P<CQuerying> q = make<CQuerying>();
    q->redirect = static_cast<IFirst*>(target.get());

    // The object implements IFirst itself, but a followed redirect wins.
    EXPECT_EQ(cast<IFirst>(q)->first(), 10);
    EXPECT_EQ(tryCast<IFirst>(q, true)->first(), 10);
    // Without following, the object itself is tried.
    EXPECT_EQ(tryCast<IFirst>(q, false)->first(), 99);
    // A redirect that cannot be cast is a failed cast, with no fallback to the object.
    P<CObject> dead = make<CObject>();
    q->redirect = dead.get();
    EXPECT_THROW(cast<IFirst>(q), CCastError);
}

TEST_F(ObjectModel, CandidatesAreTriedInOrderWithoutFollowingTheirRedirects)
{
    P<CBoth> second = make<CBoth>();
    P<CQuerying> redirecting = make<CQuerying>();
    P<CBoth> redirectTarget = make<CBoth>();
    redirecting->redirect = static_cast<IFirst*>(redirectTarget.get());

    CCastCandidate last{static_cast<ISecond*>(second.get()), nullptr};
    CCastCandidate firstCandidate{static_cast<IFirst*>(redirecting.get()), &last};

    P<CObject> plain = make<CObject>();
    class CWithCandidates : public CObject {
    public:
        const CCastCandidate* list = nullptr;
        bool castQuery(const std::type_info&, const IBase*&, const CCastCandidate*& c) const override
        {
            c = list;
            return true;
        }
    };
    P<CWithCandidates> o = make<CWithCandidates>();
    o->list = &firstCandidate;
    // The redirecting candidate is cast as itself (its IFirst answers 99), not through its redirect.
    EXPECT_EQ(cast<IFirst>(o)->first(), 99);
    // ISecond: the first candidate lacks it, the second has it.
    EXPECT_EQ(cast<ISecond>(o)->second(), 20);
}

TEST_F(ObjectModel, InstanceWrapperKeepsItsObjectAlive)
{
    auto* raw = new CCounted;
    P<CCounted> owner = P<CCounted>::adopt(raw);
    IInstanceWrapper* wrapper = new CInstanceWrapper(raw);
    owner.reset();
    EXPECT_EQ(CCounted::destroyed, 0);
    EXPECT_EQ(raw->getRefCount(), 1);
    wrapper->deleteThis();
    EXPECT_EQ(CCounted::destroyed, 1);
}

} // namespace kore_test
