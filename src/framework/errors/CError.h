#pragma once

#include "framework/errors/CException.h"

namespace kore {

// A failure with defaults for missing texts: "Error" and "Unspecified error".
class CError : public CException {
public:
    CError(const CStringArg& generalDescription, const CStringArg& description);
    P<CException> clone() const override;
};

} // namespace kore
