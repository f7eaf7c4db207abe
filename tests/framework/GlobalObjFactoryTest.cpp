#include "framework/CGlobalObjFactory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace kore_test {

using namespace kore;

class CService : public CObject {
public:
    explicit CService(int id, std::vector<int>* destroyedLog = nullptr) : m_id(id), m_log(destroyedLog) {}
    ~CService() override
    {
        if (m_log)
            m_log->push_back(m_id);
    }
    int id() const { return m_id; }

private:
    int m_id;
    std::vector<int>* m_log;
};

std::atomic<int> g_slowCreations{0};
P<CService> createSlowly()
{
    ++g_slowCreations;
    // Widen the window in which a second thread can arrive while the first is still creating.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return make<CService>(1);
}

TEST(GlobalObjFactory, RacingThreadsGetOneObjectFromOneCreation)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    constexpr int kThreads = 8;
    std::vector<CService*> seen(kThreads);
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            while (!go)
                std::this_thread::yield();
            seen[i] = factory->getOrCreate<CService>(42, &createSlowly).get();
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
P<CService> createInner()
{
    return make<CService>(2);
}
P<CService> createOuter()
{
    // Re-enters the creation lock on the same thread.
    P<CService>& inner = g_nestedFactory->getOrCreate<CService>(2, &createInner);
    return make<CService>(100 + inner->id());
}

TEST(GlobalObjFactory, CreatorMayAskForAnotherService)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    g_nestedFactory = factory.get();
    EXPECT_EQ(factory->getOrCreate<CService>(1, &createOuter)->id(), 102);
    EXPECT_EQ(factory->getServiceCount(), 2u);
}

std::vector<int> g_destroyed;
template <int N>
P<CService> createNumbered()
{
    return make<CService>(N, &g_destroyed);
}

TEST(GlobalObjFactory, ServicesDieInReverseOrderOfCreation)
{
    g_destroyed.clear();
    {
        P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
        // Keys deliberately ordered against creation order: the map order must not matter.
        factory->getOrCreate<CService>(30, &createNumbered<1>);
        factory->getOrCreate<CService>(10, &createNumbered<2>);
        factory->getOrCreate<CService>(20, &createNumbered<3>);
        factory->getOrCreate<CService>(10, &createNumbered<99>); // already there: no creation
    }
    EXPECT_EQ(g_destroyed, (std::vector<int>{3, 2, 1}));
}

int g_failures = 0;
P<CService> createFailingOnce()
{
    if (g_failures++ == 0)
        throw std::runtime_error("first attempt fails");
    return make<CService>(7);
}

TEST(GlobalObjFactory, FailedCreationLeavesTheKeyAbsentAndReleasesTheLock)
{
    P<CGlobalObjFactory> factory = make<CGlobalObjFactory>();
    EXPECT_THROW(factory->getOrCreate<CService>(5, &createFailingOnce), std::runtime_error);
    EXPECT_EQ(factory->getServiceCount(), 0u);
    std::thread other([&] { EXPECT_EQ(factory->getOrCreate<CService>(5, &createFailingOnce)->id(), 7); });
    other.join();
}

P<CService> createProcessService()
{
    return make<CService>(11);
}

TEST(GlobalObjFactory, AccessorRemembersTheProcessWideService)
{
    P<CService>& first = CGlobalObjFactory::accessor<CService, &createProcessService>();
    P<CService>& again = CGlobalObjFactory::accessor<CService, &createProcessService>();
    EXPECT_EQ(&first, &again);
    EXPECT_EQ(first->id(), 11);
    EXPECT_EQ(CGlobalObjFactory::getState(), CGlobalObjFactory::kReadyState);
    EXPECT_EQ(CGlobalObjFactory::getDeadMark(), 0u);
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
