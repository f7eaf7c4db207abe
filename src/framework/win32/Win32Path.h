#pragma once
// Text conversions between framework strings and the wide strings of the Win32 API.

#include "framework/objects/P.h"

#include <string>

namespace kore {
class IString;
}

namespace kore::win32 {

// A local path for the wide Win32 file functions; long paths get the "\\?\" prefix that
// lifts the MAX_PATH limit.
std::wstring toWin32Path(const IString& path);
std::wstring toWide(const IString& text);
P<IString> fromWide(const wchar_t* text, size_t length);
std::string utf8FromWide(const wchar_t* text, size_t length);

} // namespace kore::win32
