#pragma once
// The few operating-system calls that platform-neutral framework code needs; win32/ and posix/
// each implement them.

#include <cstdint>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds);
// Stops in an attached debugger; without one the process ends abnormally.
void debugBreak();

} // namespace kore::platform
