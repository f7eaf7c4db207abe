#pragma once

#include "framework/objects/CObject.h"

namespace kore {

// The null variant: a value that is present and empty (JSON's null).
class CNull final : public CObject {
public:
    // "null".
    P<IString> toString() const override;
};

} // namespace kore
