#include "ModuleLoader.h"
#include "framework/PlatformSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace kore_test {

namespace {
std::vector<int> g_destroyed;
void recordDestroyed(int id)
{
    g_destroyed.push_back(id);
}
} // namespace

// A host that unloads the library must get every service destroyed then, newest first, not
// only at its own exit.
TEST(GlobalObjFactoryUnload, UnloadingTheLibraryDestroysItsServicesInReverseOrder)
{
    g_destroyed.clear();
    CModule module(QOR_TEST_FACTORY_MODULE);
    ASSERT_TRUE(module.isLoaded());
    using Create = int (*)(void (*)(int));
    auto create = reinterpret_cast<Create>(module.symbol("qorTestCreateServices"));
    ASSERT_NE(create, nullptr);
    EXPECT_GE(create(&recordDestroyed), 4);
    EXPECT_TRUE(g_destroyed.empty());
    module.unload();
    // Created 1, 3 (inside 4's creation), 4, 2.
    EXPECT_EQ(g_destroyed, (std::vector<int>{2, 4, 3, 1}));
}

TEST(PlatformSupport, SleepWaitsAtLeastRoughlyTheTime)
{
    const auto start = std::chrono::steady_clock::now();
    kore::platform::sleepMilliseconds(30);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(25));
}

} // namespace kore_test
