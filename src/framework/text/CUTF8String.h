#pragma once

#include "framework/text/CString.h"
#include "framework/text/CUTF8CharEncoding.h"

namespace kore {

// A string in UTF-8.
class CUTF8String : public TTypedString<CUTF8CharEncoding, char> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
