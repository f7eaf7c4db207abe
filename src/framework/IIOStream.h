#pragma once

#include "framework/IInStream.h"
#include "framework/IOutStream.h"

namespace kore {

// A stream that is read and written.
class IIOStream : public virtual IInStream, public virtual IOutStream {
};

} // namespace kore
