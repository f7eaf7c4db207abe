#include "ChildProcess.h"
#include "FrameworkTest.h"

#include "framework/objects/CGlobalObjFactory.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace kore_test {

using CService = CMortal;

std::atomic<int> g_slowCreations{0};
CGlobalObjFactory* g_nestedFactory = nullptr;
int g_failures = 0;

// Racing first requests get one object from one creation. A creator re-enters the creation lock
// on its own thread; the inner service is complete first, so it must outlive the outer one. Keys
// run against creation order: the map order must not decide the order of destruction. A failed
// creation leaves its key absent and the lock free.
TEST(GlobalObjFactory, OneCreationPerKeyNestedAndFailedCreationsAndDeathInReverseOrder)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    const auto createSlowly = +[] {
        ++g_slowCreations;
        // Widens the window in which a second thread can arrive while the first is still creating.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return make<CService>(1);
    };
    std::vector<CService*> seen(8);
    std::vector<std::thread> threads;
    for (CService*& s : seen)
        threads.emplace_back([&] { s = factory->getOrCreate<CService>(42, createSlowly).get(); });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(g_slowCreations.load(), 1);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen[0]), 8);

    g_nestedFactory = factory.get();
    const auto createOuter = +[] {
        P<CService>& inner = g_nestedFactory->getOrCreate<CService>(
            20, +[] { return make<CService>(2); });
        return make<CService>(100 + inner->id);
    };
    const auto createFailingOnce = +[] {
        if (g_failures++ == 0)
            throw std::runtime_error("first attempt fails");
        return make<CService>(3);
    };
    EXPECT_EQ(factory->getOrCreate<CService>(10, createOuter)->id, 102);
    EXPECT_THROW(factory->getOrCreate<CService>(30, createFailingOnce), std::runtime_error);
    EXPECT_EQ(factory->getServiceCount(), 3u);
    std::thread([&] { EXPECT_EQ(factory->getOrCreate<CService>(30, createFailingOnce)->id, 3); }).join();
    EXPECT_EQ(factory->getOrCreate<CService>(20, createFailingOnce)->id, 2) << "already there: no creation";
    CService::dead.clear();
    factory = nullptr;
    EXPECT_EQ(CService::dead, (std::vector<int>{3, 102, 2, 1}));
}

std::atomic<bool> g_outerCreating{false}, g_innerAsked{false};

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
    static std::atomic<int> outer{0}, inner{0};
    std::thread([] { outer = CGlobalObjFactory::accessor<CService, &createOuterAskingInner>()->id; }).detach();
    std::thread([] {
        while (!g_outerCreating)
            std::this_thread::yield();
        g_innerAsked = true;
        inner = CGlobalObjFactory::accessor<CService, &createInner>()->id;
    }).detach();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while ((outer == 0 || inner == 0) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (outer == 0 || inner == 0) {
        // The hung threads cannot be joined; end the program so the failure is reported now.
        std::fprintf(stderr, "accessors deadlocked: nested creation against a first call\n");
        std::fflush(stderr);
        std::_Exit(1);
    }
    EXPECT_EQ(inner.load(), 21);
    EXPECT_EQ(outer.load(), 41);
}

// The use after unload must end in the debugger break itself, not in any other crash.
TEST(GlobalObjFactoryDeathTest, UseAfterUnloadStopsInTheDebugger)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
#if defined(_WIN32)
    const auto breakpoint = ::testing::ExitedWithCode(static_cast<int>(0x80000003)); // EXCEPTION_BREAKPOINT
#else
    const auto breakpoint = ::testing::KilledBySignal(SIGTRAP);
#endif
    EXPECT_EXIT(
        {
            CGlobalObjFactory::instance();
            CGlobalObjFactory::unload();
            std::fprintf(stderr, "unloaded\n");
            CGlobalObjFactory::instance();
        },
        breakpoint, "unloaded");
}

// A host that unloads the library must get every service destroyed then, newest first, not
// only at its own exit.
TEST(GlobalObjFactoryUnload, UnloadingTheLibraryDestroysItsServicesInReverseOrder)
{
    static std::vector<int> destroyed;
    CModule module(QOR_TEST_FACTORY_MODULE);
    auto create = reinterpret_cast<int (*)(void (*)(int))>(module.symbol("qorTestCreateServices"));
    ASSERT_NE(create, nullptr);
    EXPECT_EQ(create([](int id) { destroyed.push_back(id); }), 4);
    EXPECT_TRUE(destroyed.empty());
    module.unload();
    // Created 1, 3 (inside 4's creation), 4, 2.
    EXPECT_EQ(destroyed, (std::vector<int>{2, 4, 3, 1}));
}

} // namespace kore_test
