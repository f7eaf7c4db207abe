#pragma once

#include "framework/IInStream.h"
#include "framework/ISeekable.h"

namespace kore {

class ISeekableInStream : public virtual IInStream, public virtual ISeekable {
};

} // namespace kore
