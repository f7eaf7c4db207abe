#pragma once

#include "framework/errors/CError.h"

namespace kore {

// Text that does not parse ("Parse error").
class CParseError : public CError {
public:
    explicit CParseError(const CStringArg& description);
    P<CException> clone() const override;
};

} // namespace kore
