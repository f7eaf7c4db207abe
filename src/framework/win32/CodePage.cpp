// The code page as Windows programs of this framework have always seen it: decoding one byte at a
// time through the platform's ANSI code page, encoding through the C runtime's wctomb under the
// current locale. The two differ when the host never calls setlocale (the "C" locale writes only
// code points below 256); the framework keeps that asymmetry rather than guess a locale.
#include "framework/text/CodePage.h"

#include <windows.h>

#include <climits>
#include <cstdlib>

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
    char buffer[MB_LEN_MAX];
    const int n = std::wctomb(buffer, static_cast<wchar_t>(ch));
    if (n <= 0)
        return 0;
    for (int i = 0; i < n; ++i)
        out[i] = static_cast<uint8_t>(buffer[i]);
    return static_cast<uint32_t>(n);
}

uint32_t codePageMaxCharSize()
{
    return static_cast<uint32_t>(MB_CUR_MAX);
}

} // namespace kore::platform
