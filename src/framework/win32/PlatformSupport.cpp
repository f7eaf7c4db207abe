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

} // namespace kore::platform
