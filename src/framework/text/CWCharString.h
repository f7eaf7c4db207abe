#pragma once

#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"

#include <type_traits>

namespace kore {

// A string of the platform's wchar_t: UTF-16 where wchar_t has 16 bits (Windows), UTF-32 where it
// has 32 (POSIX).
class CWCharString
    : public TTypedString<std::conditional_t<sizeof(wchar_t) == 2, CUTF16CharEncoding, CUTF32CharEncoding>, wchar_t> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
