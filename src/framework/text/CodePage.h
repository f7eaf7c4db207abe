#pragma once
// The platform's 8-bit code page, as the code-page encoding needs it (win32/ and posix/ each
// implement these).

#include <cstdint>

namespace kore::platform {

// The code point of one byte; 0 when the code page does not map it.
uint32_t codePageDecode(uint8_t byte);
// Writes the code page's form of `ch` (at most codePageMaxCharSize() bytes) to `out`; returns
// the number of bytes, 0 when the code page cannot represent `ch`.
uint32_t codePageEncode(uint32_t ch, uint8_t* out);
uint32_t codePageMaxCharSize();

} // namespace kore::platform
