#pragma once

#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"

namespace kore {

// A string in UTF-16.
class CUTF16String : public TTypedString<CUTF16CharEncoding, char16_t> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
