// The process's ANSI code page: decoding one byte at a time through the platform, encoding
// through the C runtime under the current locale.
#include "framework/CodePage.h"

#include <windows.h>

#include <climits>
#include <cstdlib>

namespace kore::platform {

uint32_t codePageDecode(uint8_t byte)
{
    wchar_t wide = 0;
    const char narrow = static_cast<char>(byte);
    if (MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, &narrow, 1, &wide, 1) != 1)
        return 0;
    return static_cast<uint16_t>(wide);
}

uint32_t codePageEncode(uint32_t ch, uint8_t* out)
{
    if (ch > 0xFFFF)
        return 0;
    char buffer[MB_LEN_MAX];
    const int n = std::wctomb(buffer, static_cast<wchar_t>(ch));
    if (n <= 0 && ch != 0)
        return 0;
    const int size = n <= 0 ? 1 : n;
    for (int i = 0; i < size; ++i)
        out[i] = static_cast<uint8_t>(buffer[i]);
    return static_cast<uint32_t>(size);
}

uint32_t codePageMaxCharSize()
{
    return static_cast<uint32_t>(MB_CUR_MAX);
}

} // namespace kore::platform
