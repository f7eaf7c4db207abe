#pragma once

#include "framework/errors/CInvalidObjectStateError.h"

namespace kore {

// An enumerator asked for more after its end.
class CEndOfEnumError : public CInvalidObjectStateError {
public:
    explicit CEndOfEnumError(const IBase* enumerator);
    P<CException> clone() const override;
};

} // namespace kore
