// The process's ANSI code page, in both directions. Encoding through the C runtime's wctomb would
// follow the runtime's locale instead, which a host that never calls setlocale leaves at "C"
// (Latin-1 bytes): "€" read from a Windows-1252 file could then not be written back.
#include "framework/CodePage.h"

#include <windows.h>

namespace kore::platform {

namespace {
// MB_PRECOMPOSED and the default-character test are refused for UTF-8 (CP_ACP may be 65001).
bool acpIsUTF8()
{
    static const bool utf8 = GetACP() == CP_UTF8;
    return utf8;
}
} // namespace

uint32_t codePageDecode(uint8_t byte)
{
    wchar_t wide = 0;
    const char narrow = static_cast<char>(byte);
    const DWORD flags = acpIsUTF8() ? 0 : MB_PRECOMPOSED;
    if (MultiByteToWideChar(CP_ACP, flags, &narrow, 1, &wide, 1) != 1)
        return 0;
    return static_cast<uint16_t>(wide);
}

uint32_t codePageEncode(uint32_t ch, uint8_t* out)
{
    if (ch > 0xFFFF || (ch >= 0xD800 && ch <= 0xDFFF))
        return 0;
    const wchar_t wide = static_cast<wchar_t>(ch);
    char buffer[8];
    BOOL usedDefault = FALSE;
    const bool utf8 = acpIsUTF8();
    // No best-fit: a character the page lacks is unencodable, not silently turned into another.
    const int n = WideCharToMultiByte(CP_ACP, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, &wide, 1, buffer,
                                      sizeof(buffer), nullptr, utf8 ? nullptr : &usedDefault);
    if (n <= 0 || usedDefault)
        return 0;
    for (int i = 0; i < n; ++i)
        out[i] = static_cast<uint8_t>(buffer[i]);
    return static_cast<uint32_t>(n);
}

uint32_t codePageMaxCharSize()
{
    static const uint32_t size = [] {
        CPINFO info{};
        return GetCPInfo(CP_ACP, &info) && info.MaxCharSize > 0 ? info.MaxCharSize : 1u;
    }();
    return size;
}

} // namespace kore::platform
