#pragma once

#include "framework/errors/CError.h"

namespace kore {

// "Invalid volume id: <id>".
class CInvalidVolumeIDError : public CError {
public:
    explicit CInvalidVolumeIDError(const CStringArg& volumeId);
    P<CException> clone() const override;
};

} // namespace kore
