#include "framework/PlatformSupport.h"

#include <sys/mman.h>

#include <csignal>
#include <ctime>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds)
{
    timespec ts{static_cast<time_t>(milliseconds / 1000),
                static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&ts, &ts) != 0) {
    }
}

void debugBreak()
{
    std::raise(SIGTRAP);
}

void* allocatePages(std::size_t bytes) noexcept
{
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void freePages(void* pages, std::size_t bytes) noexcept
{
    if (pages)
        munmap(pages, bytes);
}

} // namespace kore::platform
