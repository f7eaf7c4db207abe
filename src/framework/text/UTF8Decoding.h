#pragma once
// A complete, strict UTF-8 decoder into UTF-16 text, and its inverse. The framework's UTF-8
// strings reject every sequence led by 0xE0 or 0xF0 on purpose (a compatibility rule of theirs),
// which would silently drop whole scripts (Devanagari, Thai, emoji) from files read through
// them; readers and writers of UTF-8 files convert with these instead.

#include <cstddef>
#include <string>
#include <string_view>

namespace kore {

// Appends the text of `in` to `out` and returns true. Overlong forms, surrogates, code points
// above U+10FFFF and truncated or broken sequences make it return false with `errorOffset` (when
// given) at the first byte of the offending sequence; `out` then holds the text before it.
bool decodeUTF8(std::string_view in, std::u16string& out, size_t* errorOffset = nullptr);

// True when `in` is well-formed UTF-8 by the rules of decodeUTF8.
bool isValidUTF8(std::string_view in);

// Appends the text of `in` to `out`, skipping every byte that does not begin a well-formed
// sequence (the way strings read invalid bytes).
void decodeUTF8Lenient(std::string_view in, std::u16string& out);

// The UTF-8 bytes of `in`; unpaired surrogates are written as U+FFFD.
std::string encodeUTF8(std::u16string_view in);

// Appends the UTF-8 form of `cp` (at most U+10FFFF, not a surrogate) to `out`.
void appendUTF8(char32_t cp, std::string& out);

// Appends code point `cp` (at most U+10FFFF) to `out`: one unit, or a surrogate pair above U+FFFF.
inline void appendUTF16(char32_t cp, std::u16string& out)
{
    if (cp >= 0x10000) {
        out.push_back(static_cast<char16_t>(0xD800 | ((cp - 0x10000) >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 | ((cp - 0x10000) & 0x3FF)));
    } else {
        out.push_back(static_cast<char16_t>(cp));
    }
}

} // namespace kore
