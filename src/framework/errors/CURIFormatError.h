#pragma once

#include "framework/errors/CURIError.h"

namespace kore {

// URI text that cannot be parsed.
class CURIFormatError : public CURIError {
public:
    explicit CURIFormatError(const IURI* uri);
    // For text that never became a URI object.
    explicit CURIFormatError(const CStringArg& uriText);
    P<CException> clone() const override;

private:
    CURIFormatError(const IURI* uri, const CStringArg& uriText);
};

} // namespace kore
