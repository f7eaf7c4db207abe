#include "FrameworkTest.h"

#include "framework/objects/CGlobalObjFactory.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace kore_test {

// Records its id when it dies.
struct CService : CObject {
    static inline std::vector<int> dead;
    explicit CService(int id) : id(id) {}
    ~CService() override { dead.push_back(id); }
    const int id;
};

std::atomic<int> g_slowCreations{0};

TEST(GlobalObjFactory, RacingThreadsGetOneObjectFromOneCreation)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    const auto createSlowly = +[] {
        ++g_slowCreations;
        // Widens the window in which a second thread can arrive while the first is still creating.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return make<CService>(1);
    };
    std::vector<CService*> seen(8);
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (CService*& s : seen) {
        threads.emplace_back([&] {
            while (!go)
                std::this_thread::yield();
            s = factory->getOrCreate<CService>(42, createSlowly).get();
        });
    }
    go = true;
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(g_slowCreations.load(), 1);
    for (CService* s : seen)
        EXPECT_EQ(s, seen[0]);
}

CGlobalObjFactory* g_nestedFactory = nullptr;

TEST(GlobalObjFactory, CreatorMayAskForAnotherService)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    g_nestedFactory = factory.get();
    // The outer creator re-enters the creation lock on the same thread.
    const auto createOuter = +[] {
        P<CService>& inner = g_nestedFactory->getOrCreate<CService>(
            2, +[] { return make<CService>(2); });
        return make<CService>(100 + inner->id);
    };
    EXPECT_EQ(factory->getOrCreate<CService>(1, createOuter)->id, 102);
    EXPECT_EQ(factory->getServiceCount(), 2u);
}

template <int N>
P<CService> createNumbered()
{
    return make<CService>(N);
}

TEST(GlobalObjFactory, ServicesDieInReverseOrderOfCreation)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    // Keys deliberately ordered against creation order: the map order must not matter.
    factory->getOrCreate<CService>(30, &createNumbered<1>);
    factory->getOrCreate<CService>(10, &createNumbered<2>);
    factory->getOrCreate<CService>(20, &createNumbered<3>);
    factory->getOrCreate<CService>(10, &createNumbered<99>); // already there: no creation
    CService::dead.clear();
    factory = nullptr;
    EXPECT_EQ(CService::dead, (std::vector<int>{3, 2, 1}));
}

int g_failures = 0;

TEST(GlobalObjFactory, FailedCreationLeavesTheKeyAbsentAndReleasesTheLock)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    const auto createFailingOnce = +[] {
        if (g_failures++ == 0)
            throw std::runtime_error("first attempt fails");
        return make<CService>(7);
    };
    EXPECT_THROW(factory->getOrCreate<CService>(5, createFailingOnce), std::runtime_error);
    EXPECT_EQ(factory->getServiceCount(), 0u);
    std::thread other([&] { EXPECT_EQ(factory->getOrCreate<CService>(5, createFailingOnce)->id, 7); });
    other.join();
}

// Accessors of the process-wide factory for the nested-creation race below.
std::atomic<bool> g_outerCreating{false};
std::atomic<bool> g_innerAsked{false};

P<CService> createInner()
{
    return make<CService>(21);
}

P<CService> createOuterAskingInner()
{
    g_outerCreating = true;
    while (!g_innerAsked)
        std::this_thread::yield();
    // Gives the other thread time to enter the inner accessor and wait for the creation lock.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return make<CService>(20 + CGlobalObjFactory::accessor<CService, &createInner>()->id);
}

// One thread's creator asks for a service whose first request a second thread is making at the
// same time: both must finish. A regression hangs, so the threads run detached and the test
// gives up after a generous wait instead of blocking the run.
TEST(GlobalObjFactory, NestedCreationDoesNotDeadlockAgainstAnotherFirstCall)
{
    struct Results {
        std::atomic<int> outer{0}, inner{0};
    };
    static Results results;
    std::thread([] { results.outer = CGlobalObjFactory::accessor<CService, &createOuterAskingInner>()->id; }).detach();
    std::thread([] {
        while (!g_outerCreating)
            std::this_thread::yield();
        g_innerAsked = true;
        results.inner = CGlobalObjFactory::accessor<CService, &createInner>()->id;
    }).detach();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while ((results.outer == 0 || results.inner == 0) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (results.outer == 0 || results.inner == 0) {
        // The hung threads cannot be joined; end the program so the failure is reported now.
        std::fprintf(stderr, "accessors deadlocked: nested creation against a first call\n");
        std::fflush(stderr);
        std::_Exit(1);
    }
    EXPECT_EQ(results.inner.load(), 21);
    EXPECT_EQ(results.outer.load(), 41);
}

TEST(GlobalObjFactoryDeathTest, UseAfterUnloadStopsInTheDebugger)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            CGlobalObjFactory::instance();
            CGlobalObjFactory::unload();
            CGlobalObjFactory::instance();
        },
        "");
}

} // namespace kore_test
