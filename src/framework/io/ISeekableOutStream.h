#pragma once

#include "framework/io/IOutStream.h"
#include "framework/io/ISeekable.h"

namespace kore {

class ISeekableOutStream : public virtual IOutStream, public virtual ISeekable {};

} // namespace kore
