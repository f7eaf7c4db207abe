#include "FrameworkTest.h"

#include "framework/CGlobalObjFactory.h"

#include <atomic>
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
        P<CService>& inner = g_nestedFactory->getOrCreate<CService>(2, +[] { return make<CService>(2); });
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
