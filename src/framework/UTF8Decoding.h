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

// The UTF-8 bytes of `in`; unpaired surrogates are written as U+FFFD.
std::string encodeUTF8(std::u16string_view in);

} // namespace kore
