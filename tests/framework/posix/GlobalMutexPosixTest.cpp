#include "../FrameworkTest.h"

#include "framework/errors/CException.h"
#include "framework/posix/CGlobalMutexImpl.h"

#include <random>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kore_test {

using kore::posix::CGlobalMutexImpl;

TEST(PosixGlobalMutex, SystemNameEscapesAndDropsTheWindowsNamespace)
{
    EXPECT_EQ(CGlobalMutexImpl::systemName("app.lock"), "/kore.mutex.app.lock");
    EXPECT_EQ(CGlobalMutexImpl::systemName("Global\\app"), "/kore.mutex.app");
    EXPECT_EQ(CGlobalMutexImpl::systemName("Local\\app"), "/kore.mutex.app");
    EXPECT_EQ(CGlobalMutexImpl::systemName("a/b%c"), "/kore.mutex.a%2Fb%25c");
    EXPECT_EQ(CGlobalMutexImpl::systemName(u"\u00e4\u20ac"), "/kore.mutex.\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(CGlobalMutexImpl::systemName(std::string(240, 'x').c_str()).size(), 12u + 240u);
    // The limit counts the escaped form: 80 slashes are 240 bytes, 81 are too many.
    EXPECT_NO_THROW(CGlobalMutexImpl::systemName(std::string(80, '/').c_str()));
    for (const std::string& name :
         {std::string(241, 'x'), std::string(81, '/'), std::string("Global\\"), std::string("Local\\")}) {
        EXPECT_EQ(descriptionOf<CException>([&] { make<CGlobalMutexImpl>(name.c_str()); }),
                  "Error createing global mutex " + name);
    }
}

// A shared-memory object of the mutex's name with `size` bytes of `fill` that a creator that
// died before initialising it (zeros), or a program that is not ours, left behind: the next
// opener initialises the first kind and refuses the second, leaving it alone.
TEST(PosixGlobalMutex, ObjectsLeftByADeadCreatorAreInitialisedAndForeignOnesRefused)
{
    for (const auto& [size, fill] : {std::pair<size_t, unsigned char>{0, 0}, {4096, 0}, {8, 0xA5}, {4096, 0xA5}}) {
        SCOPED_TRACE(testing::Message() << size << " bytes of " << int(fill));
        const std::string name = "qor_test_planted_" + std::to_string(std::random_device()());
        const std::string systemName = CGlobalMutexImpl::systemName(name.c_str());
        int fd = shm_open(systemName.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
        ASSERT_GE(fd, 0);
        const std::string bytes(size, static_cast<char>(fill));
        ASSERT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(size));
        close(fd);
        if (fill == 0) {
            P<IMutex> mutex = make<CGlobalMutexImpl>(name.c_str());
            const bool usable = mutex->tryLock(0);
            EXPECT_TRUE(usable);
            if (usable)
                mutex->unlock();
        } else {
            EXPECT_THROW(make<CGlobalMutexImpl>(name.c_str()), CException);
            fd = shm_open(systemName.c_str(), O_RDONLY, 0);
            unsigned char first = 0;
            EXPECT_EQ(read(fd, &first, 1), 1);
            EXPECT_EQ(first, 0xA5);
            close(fd);
        }
        CGlobalMutexImpl::removeSystemName(name.c_str());
    }
}

} // namespace kore_test
