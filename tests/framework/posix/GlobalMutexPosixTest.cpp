#include "../FrameworkTest.h"
#include "framework/CException.h"
#include "framework/posix/CGlobalMutexImpl.h"

#include <cstring>
#include <random>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kore_test {
using kore::posix::CGlobalMutexImpl;

namespace {

std::string freshName(const char* what)
{
    std::random_device random;
    return std::string("qor_test_") + what + "_" + std::to_string(random()) + std::to_string(random());
}

// Creates the shared-memory object of `name` with `size` bytes of `fill`, as a process that died
// before initialising it, or a program that is not ours, would leave it.
void plantObject(const std::string& name, size_t size, unsigned char fill)
{
    const std::string systemName = CGlobalMutexImpl::systemName(name.c_str());
    int fd = shm_open(systemName.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(fd, 0);
    std::string bytes(size, static_cast<char>(fill));
    ASSERT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(size));
    close(fd);
}

bool usable(const std::string& name)
{
    P<IMutex> mutex = make<CGlobalMutexImpl>(name.c_str());
    if (!mutex->tryLock(0))
        return false;
    mutex->unlock();
    return true;
}

} // namespace

TEST(PosixGlobalMutex, SystemNameEscapesAndDropsTheWindowsNamespace)
{
    EXPECT_EQ(CGlobalMutexImpl::systemName("app.lock"), "/kore.mutex.app.lock");
    EXPECT_EQ(CGlobalMutexImpl::systemName("Global\\app"), "/kore.mutex.app");
    EXPECT_EQ(CGlobalMutexImpl::systemName("Local\\app"), "/kore.mutex.app");
    EXPECT_EQ(CGlobalMutexImpl::systemName("a/b%c"), "/kore.mutex.a%2Fb%25c");
    EXPECT_EQ(CGlobalMutexImpl::systemName(u"\u00e4\u20ac"), "/kore.mutex.\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(CGlobalMutexImpl::systemName(std::string(240, 'x').c_str()).size(), 12u + 240u);
}

TEST(PosixGlobalMutex, OverlongAndEmptyNamesAreRejected)
{
    // The limit counts the escaped form: 80 slashes are 240 bytes, 81 are too many.
    const std::string names[] = {std::string(241, 'x'), std::string(81, '/'), "Global\\", "Local\\"};
    EXPECT_NO_THROW(CGlobalMutexImpl::systemName(std::string(80, '/').c_str()));
    for (const std::string& name : names) {
        try {
            make<CGlobalMutexImpl>(name.c_str());
            ADD_FAILURE() << "accepted " << name;
        } catch (const CException& e) {
            EXPECT_EQ(e.getDescription()->toUTF8(), "Error createing global mutex " + name);
        }
    }
}

TEST(PosixGlobalMutex, NamespacePrefixesReachTheSameMutex)
{
    const std::string name = freshName("namespace");
    P<IMutex> global = make<CGlobalMutexImpl>(("Global\\" + name).c_str());
    P<IMutex> plain = make<CGlobalMutexImpl>(name.c_str());
    global->lock();
    bool got = true;
    std::thread([&] { got = plain->tryLock(0); }).join();
    EXPECT_FALSE(got);
    global->unlock();
    CGlobalMutexImpl::removeSystemName(name.c_str());
}

TEST(PosixGlobalMutex, ObjectsLeftUninitialisedByADeadCreatorAreInitialisedByTheNextOpener)
{
    for (size_t size : {size_t(0), size_t(4096)}) {
        const std::string name = freshName("half_made");
        plantObject(name, size, 0);
        EXPECT_TRUE(usable(name)) << "size " << size;
        CGlobalMutexImpl::removeSystemName(name.c_str());
    }
}

TEST(PosixGlobalMutex, ForeignObjectsOfTheNameAreRefusedAndLeftAlone)
{
    for (size_t size : {size_t(8), size_t(4096)}) {
        const std::string name = freshName("foreign");
        plantObject(name, size, 0xA5);
        EXPECT_THROW(make<CGlobalMutexImpl>(name.c_str()), CException) << "size " << size;
        int fd = shm_open(CGlobalMutexImpl::systemName(name.c_str()).c_str(), O_RDONLY, 0);
        ASSERT_GE(fd, 0);
        unsigned char first = 0;
        EXPECT_EQ(read(fd, &first, 1), 1);
        EXPECT_EQ(first, 0xA5);
        close(fd);
        CGlobalMutexImpl::removeSystemName(name.c_str());
    }
}

} // namespace kore_test
