#pragma once

#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CString.h"

namespace kore {

// A string in Latin-1.
class CLatin1String : public TTypedString<CLatin1CharEncoding, char> {
public:
    using TTypedString::TTypedString;
};

} // namespace kore
