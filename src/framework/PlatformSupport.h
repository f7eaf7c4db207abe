#pragma once
// The few operating-system calls that platform-neutral framework code needs; win32/ and posix/
// each implement them.

#include <cstddef>
#include <cstdint>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds);
// Stops in an attached debugger; without one the process ends abnormally.
void debugBreak();

// Memory straight from the operating system, given back to it by freePages: large blocks that
// come and go with every language switch must not stay behind in the heap. Null on failure.
void* allocatePages(std::size_t bytes) noexcept;
void freePages(void* pages, std::size_t bytes) noexcept;

} // namespace kore::platform
