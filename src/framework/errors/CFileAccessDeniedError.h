#pragma once

#include "framework/errors/CFileError.h"

namespace kore {

// A file the process may not open.
class CFileAccessDeniedError : public CFileError {
public:
    explicit CFileAccessDeniedError(const IURI* uri);
    P<CException> clone() const override;
};

} // namespace kore
