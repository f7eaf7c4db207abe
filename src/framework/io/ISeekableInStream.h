#pragma once

#include "framework/io/IInStream.h"
#include "framework/io/ISeekable.h"

namespace kore {

class ISeekableInStream : public virtual IInStream, public virtual ISeekable {};

} // namespace kore
