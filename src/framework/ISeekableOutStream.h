#pragma once

#include "framework/IOutStream.h"
#include "framework/ISeekable.h"

namespace kore {

class ISeekableOutStream : public virtual IOutStream, public virtual ISeekable {
};

} // namespace kore
