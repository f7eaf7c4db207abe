#pragma once

#include "framework/errors/CException.h"

namespace kore {

// Allocation failure.
class COutOfmemoryException : public CException {
public:
    COutOfmemoryException();
    P<CException> clone() const override;
};

} // namespace kore
