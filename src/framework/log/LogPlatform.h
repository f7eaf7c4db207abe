#pragma once
// The few operating-system calls that logging needs; win32/ and posix/ each implement them.

#include <cstdint>
#include <cstdio>

namespace kore {
class IString;
}

namespace kore::platform {

// Hands one finished trace line (UTF-16, NUL-terminated) to the platform's debugger output.
void writeDebuggerOutput(const char16_t* line, uint32_t length);
// Opens a log file for writing in binary mode, appending or truncating; null on failure.
std::FILE* openLogFile(const IString& path, bool append);

} // namespace kore::platform
