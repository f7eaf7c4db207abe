#include "framework/PlatformSupport.h"

#include "framework/win32/Win32Path.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <cwchar>

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

void setBinaryStandardStreams()
{
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

std::vector<std::string> getArgumentsUTF8(int, char**)
{
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!wide)
        return arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(win32::utf8FromWide(wide[i], std::wcslen(wide[i])));
    LocalFree(wide);
    return arguments;
}

} // namespace kore::platform
