// Case-insensitive equality of UTF-16 text that folds only A-Z, which is all the C runtime's
// wide case-insensitive comparison folds in the "C" locale. Language tags must match the same
// way whatever locale the host process has set.
#pragma once

#include <string_view>

namespace qor_lang {

constexpr char16_t foldAsciiCase(char16_t c) noexcept
{
    return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

constexpr bool equalsIgnoreAsciiCase(std::u16string_view a, std::u16string_view b) noexcept
{
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (foldAsciiCase(a[i]) != foldAsciiCase(b[i])) {
            return false;
        }
    }
    return true;
}

} // namespace qor_lang
