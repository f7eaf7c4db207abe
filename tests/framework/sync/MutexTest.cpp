#include "ChildProcess.h"
#include "FrameworkTest.h"
#include "MutexTestSupport.h"

#include "framework/errors/CException.h"
#include "framework/sync/IMutex.h"
#include "framework/sync/IMutexFactory.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <thread>

namespace kore_test {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

namespace {

long long msSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

P<IMutex> globalMutex(const std::string& name)
{
    return createMutexFactory()->createGlobalMutex(name.c_str());
}

// Whether another thread can take the mutex right now (it lets go again at once).
bool otherThreadGets(IMutex& mutex)
{
    bool got = false;
    std::thread([&] {
        got = mutex.tryLock(0);
        if (got)
            mutex.unlock();
    }).join();
    return got;
}

fs::path fileFor(const std::string& name, const char* suffix)
{
    return fs::temp_directory_path() / (name + suffix);
}

// A name no other test run uses (CTest runs tests in parallel processes), removed with its files
// from the system afterwards.
class CTestName {
public:
    ~CTestName()
    {
        removeGlobalMutexName(m_name);
        std::error_code ignored;
        fs::remove(fileFor(m_name, ".held"), ignored);
        fs::remove(fileFor(m_name, ".count"), ignored);
    }
    const std::string& str() const { return m_name; }

private:
    const std::string m_name =
        "qor_test_" + std::to_string(std::random_device()()) + std::to_string(std::random_device()());
};

void expectRecursive(IMutex& mutex)
{
    mutex.lock();
    mutex.lock();
    ASSERT_TRUE(mutex.tryLock(0));
    mutex.unlock();
    mutex.unlock();
    EXPECT_FALSE(otherThreadGets(mutex)) << "released before the last unlock";
    mutex.unlock();
    EXPECT_TRUE(otherThreadGets(mutex)) << "still held after the last unlock";
}

// A child that takes the mutex (twice, so that a recursion count dies with it), reports it held
// and waits to be killed. Null when the child never got so far.
std::unique_ptr<CChildProcess> holdInChild(const std::string& name)
{
    auto child = std::make_unique<CChildProcess>("MutexChild.DISABLED_HoldUntilKilled", name);
    for (const auto start = Clock::now(); !fs::exists(fileFor(name, ".held"));) {
        if (msSince(start) > 20000)
            return nullptr;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return child;
}

} // namespace

// --- Children

TEST(MutexChild, DISABLED_HoldUntilKilled)
{
    const std::string name = childParameter();
    P<IMutex> mutex = globalMutex(name);
    mutex->lock();
    mutex->lock();
    std::ofstream(fileFor(name, ".held")) << "held";
    std::this_thread::sleep_for(std::chrono::seconds(20));
    ADD_FAILURE() << "the parent did not kill this child";
}

constexpr int kIncrementsPerChild = 200;

TEST(MutexChild, DISABLED_CountUnderLock)
{
    const std::string name = childParameter();
    const fs::path counter = fileFor(name, ".count");
    P<IMutex> mutex = globalMutex(name);
    for (int i = 0; i < kIncrementsPerChild; ++i) {
        CMutexLock guard(*mutex);
        int value = 0;
        std::ifstream(counter) >> value;
        std::ofstream(counter, std::ios::trunc) << value + 1;
    }
}

TEST(LocalMutex, IsRecursiveAndTryLockOnItHeldElsewhereFailsAtOnceWhateverTheTimeout)
{
    P<IMutex> mutex = createMutexFactory()->createMutex();
    expectRecursive(*mutex);
    mutex->lock();
    const auto start = Clock::now();
    bool got = true;
    std::thread([&] { got = mutex->tryLock(5000); }).join();
    EXPECT_FALSE(got);
    EXPECT_LT(msSince(start), 1000);
    mutex->unlock();
}

TEST(GlobalMutex, IsRecursiveAndHandlesOnOneNameShareOwnershipAndMayBeDroppedWhileHeld)
{
    CTestName name;
    P<IMutex> first = globalMutex(name.str());
    expectRecursive(*first);
    P<IMutex> second = globalMutex(name.str());
    CTestName other;
    P<IMutex> third = globalMutex(other.str());
    first->lock();
    EXPECT_FALSE(otherThreadGets(*second));
    ASSERT_TRUE(second->tryLock(0)) << "the owner must be able to recurse through another handle";
    first->unlock();
    first = nullptr;
    EXPECT_FALSE(otherThreadGets(*second));
    // Taking another global mutex meanwhile must not trip over anything the dropped handle left.
    third->lock();
    third->unlock();
    second->unlock();
    EXPECT_TRUE(otherThreadGets(*second));
}

TEST(GlobalMutex, NamesThatDifferOnlyInEscapableCharactersAreDifferentMutexes)
{
    CTestName base;
    P<IMutex> slash = globalMutex(base.str() + "/x");
    P<IMutex> escaped = globalMutex(base.str() + "%2Fx");
    CMutexLock guard(*slash);
    EXPECT_TRUE(otherThreadGets(*escaped));
    removeGlobalMutexName(base.str() + "/x");
    removeGlobalMutexName(base.str() + "%2Fx");
}

TEST(GlobalMutex, TryLockWaitsForAReleaseWithinTheTimeout)
{
    CTestName name;
    P<IMutex> mutex = globalMutex(name.str());
    std::atomic<bool> held{false};
    std::thread owner([&] {
        CMutexLock guard(*mutex);
        held = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    });
    while (!held)
        std::this_thread::yield();
    const auto start = Clock::now();
    EXPECT_TRUE(mutex->tryLock(5000));
    EXPECT_GE(msSince(start), 50);
    mutex->unlock();
    owner.join();
}

TEST(GlobalMutex, ThreadEndingWhileHoldingLeavesTheMutexToTheNextLockAndTryLock)
{
    CTestName name;
    P<IMutex> mutex = globalMutex(name.str());
    std::thread([&] {
        mutex->lock();
        mutex->lock();
    }).join();
    mutex->lock();
    EXPECT_FALSE(otherThreadGets(*mutex)) << "lock returned without owning the mutex";
    // The next thread waits for it, takes it and ends holding it; tryLock inherits it in turn.
    std::thread waiter([&] { mutex->lock(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    mutex->unlock();
    waiter.join();
    ASSERT_TRUE(mutex->tryLock(0));
    EXPECT_FALSE(otherThreadGets(*mutex));
    mutex->unlock();
}

TEST(GlobalMutex, RejectedNamesThrowTheCreationMessage)
{
    for (const std::u16string& name : {std::u16string(), std::u16string(u"qor_test_nul\0inside", 19),
                                       std::u16string(u"qor_test\\no\\such\\namespace")}) {
        const auto create = [&] {
            createMutexFactory()->createGlobalMutex(CStringArg(name.c_str(), static_cast<uint32_t>(name.size())));
        };
        std::u16string description;
        expectThrown<CException>(create, [&](const CException& e) { description = e.getDescription()->toU16(); });
        EXPECT_EQ(description, u"Error createing global mutex " + name) << name.size() << " units";
    }
}

// --- Global mutex across processes

// Held by another process, the mutex refuses a tryLock after its timeout; once that process is
// killed, the next lock or tryLock gets it.
TEST(GlobalMutex, AnotherProcessHoldsTheMutexUntilItIsKilled)
{
    for (bool byTryLock : {false, true}) {
        SCOPED_TRACE(byTryLock ? "tryLock" : "lock");
        CTestName name;
        P<IMutex> mutex = globalMutex(name.str());
        std::unique_ptr<CChildProcess> owner = holdInChild(name.str());
        ASSERT_TRUE(owner) << "the child never took the mutex";
        const auto start = Clock::now();
        EXPECT_FALSE(mutex->tryLock(300));
        const long long waited = msSince(start);
        EXPECT_GE(waited, 250);
        EXPECT_LT(waited, 3000);
        EXPECT_FALSE(mutex->tryLock(0));

        owner->kill();
        if (byTryLock)
            ASSERT_TRUE(mutex->tryLock(0));
        else
            mutex->lock();
        EXPECT_FALSE(otherThreadGets(*mutex));
        mutex->unlock();
        EXPECT_TRUE(otherThreadGets(*mutex));
    }
}

TEST(GlobalMutex, ProcessesCountingUnderTheLockLoseNoUpdate)
{
    // The children create the mutex of a fresh name at the same moment.
    CTestName name;
    CChildProcess first("MutexChild.DISABLED_CountUnderLock", name.str());
    CChildProcess second("MutexChild.DISABLED_CountUnderLock", name.str());
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    int value = 0;
    std::ifstream(fileFor(name.str(), ".count")) >> value;
    EXPECT_EQ(value, 2 * kIncrementsPerChild);
}

} // namespace kore_test
