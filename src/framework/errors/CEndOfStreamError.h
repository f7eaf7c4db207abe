#pragma once

#include "framework/errors/CStreamError.h"

namespace kore {

// A read past the end of a stream.
class CEndOfStreamError : public CStreamError {
public:
    explicit CEndOfStreamError(const IURI* uri, const CStringArg& generalDescription = "");
    P<CException> clone() const override;
};

} // namespace kore
