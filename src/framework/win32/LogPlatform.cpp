#include "framework/log/LogPlatform.h"

#include "framework/text/IString.h"

#include <cstdio>
#include <string>

#include <windows.h>

namespace kore::platform {

void writeDebuggerOutput(const char16_t* line, uint32_t)
{
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    OutputDebugStringW(reinterpret_cast<const wchar_t*>(line));
}

std::FILE* openLogFile(const IString& path, bool append)
{
    const std::u16string wide = path.toU16();
    return _wfopen(reinterpret_cast<const wchar_t*>(wide.c_str()), append ? L"ab" : L"wb");
}

} // namespace kore::platform
