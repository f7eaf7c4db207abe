#pragma once

#include "framework/objects/IBase.h"

namespace kore {

// Objects with an order among their own kind.
class IComparable : public virtual IBase {
public:
    // Negative, zero or positive as this object orders before, with or after `other`.
    virtual int32_t compareTo(const IComparable& other) const = 0;
};

} // namespace kore
