#pragma once

#include "framework/io/IInStream.h"
#include "framework/io/IOutStream.h"

namespace kore {

// A stream that is read and written.
class IIOStream : public virtual IInStream, public virtual IOutStream {};

} // namespace kore
