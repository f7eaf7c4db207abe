#include "framework/PlatformSupport.h"

#include <windows.h>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds)
{
    Sleep(milliseconds);
}

void debugBreak()
{
    DebugBreak();
}

void* allocatePages(std::size_t bytes) noexcept
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void freePages(void* pages, std::size_t) noexcept
{
    if (pages)
        VirtualFree(pages, 0, MEM_RELEASE);
}

} // namespace kore::platform
