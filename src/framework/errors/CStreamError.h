#pragma once

#include "framework/errors/CURIError.h"

namespace kore {

// A failure of a stream, naming the stream's URI.
class CStreamError : public CURIError {
public:
    CStreamError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description);
    P<CException> clone() const override;
};

} // namespace kore
