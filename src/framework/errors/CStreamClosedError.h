#pragma once

#include "framework/errors/CStreamError.h"

namespace kore {

// Use of a stream that has been closed.
class CStreamClosedError : public CStreamError {
public:
    explicit CStreamClosedError(const IURI* uri, const CStringArg& generalDescription = "");
    P<CException> clone() const override;
};

} // namespace kore
