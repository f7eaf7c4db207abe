#pragma once

#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CString.h"

namespace kore {

// A string in the process code page.
class CCPString : public TTypedString<CCPCharEncoding, char> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
