#pragma once

#include "framework/errors/CURIError.h"

namespace kore {

// A URI whose scheme is not supported.
class CURITypeNotSupportedError : public CURIError {
public:
    explicit CURITypeNotSupportedError(const IURI* uri);
    // For text that never became a URI object.
    explicit CURITypeNotSupportedError(const CStringArg& uriText);
    P<CException> clone() const override;

private:
    CURITypeNotSupportedError(const IURI* uri, const CStringArg& uriText);
};

} // namespace kore
