#include "framework/log/LogPlatform.h"

#include "framework/log/Trace.h"
#include "framework/text/CUTF16String.h"
#include "framework/text/IString.h"

#include <cstdio>
#include <string>

namespace kore::platform {

void writeDebuggerOutput(const char16_t* line, uint32_t length)
{
    if (!isTraceEnabled())
        return;
    const std::string text = CUTF16String(line, length).toUTF8();
    // One write per line, so that lines from several threads do not interleave.
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

std::FILE* openLogFile(const IString& path, bool append)
{
    // "e": close on exec, so that child processes do not inherit the log file.
    return std::fopen(path.toUTF8().c_str(), append ? "abe" : "wbe");
}

} // namespace kore::platform
