#pragma once

#include "framework/errors/CError.h"

namespace kore {

// An attempt to change something read-only.
class CReadOnlyError : public CError {
public:
    explicit CReadOnlyError(const CStringArg& objectDescription);
    P<CException> clone() const override;
};

} // namespace kore
