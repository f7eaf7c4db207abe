#include "framework/PlatformSupport.h"

#include <sys/mman.h>

#include <csignal>
#include <ctime>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds)
{
    timespec ts{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&ts, &ts) != 0) {}
}

void debugBreak()
{
    std::raise(SIGTRAP);
}

void* allocatePages(std::size_t bytes) noexcept
{
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        return nullptr;
    // Large blocks are filled at once (a language's strings): huge pages spare thousands of page
    // faults. Only a hint; where the system does not give them, small pages serve.
    constexpr std::size_t kHugePage = std::size_t(2) << 20;
    if (bytes >= kHugePage)
        madvise(pages, bytes, MADV_HUGEPAGE);
    return pages;
}

void freePages(void* pages, std::size_t bytes) noexcept
{
    if (pages)
        munmap(pages, bytes);
}

void setBinaryStandardStreams()
{
    // POSIX streams never translate line ends.
}

std::vector<std::string> getArgumentsUTF8(int argc, char** argv)
{
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
}

} // namespace kore::platform
