#pragma once

#include "framework/text/CString.h"
#include "framework/text/CUTF8CharEncoding.h"

namespace kore {

// A string in the UTF-8 encoding class, which keeps its compatibility rule (see
// CUTF8CharEncoding): text with U+0800-U+0FFF or U+10000-U+3FFFF does not survive the trip. For
// text from outside use CString::fromUTF8.
class CUTF8String : public TTypedString<CUTF8CharEncoding, char> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
