#pragma once
// The few operating-system calls that platform-neutral framework code needs; win32/ and posix/
// each implement them.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kore::platform {

void sleepMilliseconds(uint32_t milliseconds);
// Stops in an attached debugger; without one the process ends abnormally.
void debugBreak();

// Memory straight from the operating system, given back to it by freePages: large blocks that
// come and go with every language switch must not stay behind in the heap. Null on failure.
void* allocatePages(std::size_t bytes) noexcept;
void freePages(void* pages, std::size_t bytes) noexcept;

// For command-line tools. Standard input, output and error then carry bytes unchanged (Windows'
// C runtime would otherwise write every line feed as CR LF).
void setBinaryStandardStreams();
// The program's arguments after its name, in UTF-8. On Windows they come from the wide command
// line, so that file names outside the ANSI code page survive; elsewhere `argv` is used as it is.
std::vector<std::string> getArgumentsUTF8(int argc, char** argv);

} // namespace kore::platform
