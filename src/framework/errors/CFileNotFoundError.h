#pragma once

#include "framework/errors/CFileError.h"

namespace kore {

// A file that does not exist.
class CFileNotFoundError : public CFileError {
public:
    explicit CFileNotFoundError(const IURI* uri);
    P<CException> clone() const override;
};

} // namespace kore
