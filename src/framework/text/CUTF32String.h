#pragma once

#include "framework/text/CString.h"
#include "framework/text/CUTF32CharEncoding.h"

namespace kore {

// A string in UTF-32.
class CUTF32String : public TTypedString<CUTF32CharEncoding, char32_t> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
