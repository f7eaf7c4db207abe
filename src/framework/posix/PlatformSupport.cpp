#include "framework/PlatformSupport.h"

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

} // namespace kore::platform
