#pragma once

#include "framework/IBase.h"

namespace kore {

// A resource location. Its toString() is the URI text.
class IURI : public virtual IBase {
public:
};

} // namespace kore
