#pragma once

#include "framework/errors/CURIError.h"

namespace kore {

// A failure of one file ("FileError").
class CFileError : public CURIError {
public:
    CFileError(const IURI* uri, const CStringArg& description);
    P<CException> clone() const override;

protected:
    CFileError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description);
};

} // namespace kore
