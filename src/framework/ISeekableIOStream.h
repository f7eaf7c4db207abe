#pragma once

#include "framework/IIOStream.h"
#include "framework/ISeekableInStream.h"
#include "framework/ISeekableOutStream.h"

namespace kore {

class ISeekableIOStream : public virtual IIOStream,
                          public virtual ISeekableInStream,
                          public virtual ISeekableOutStream {
};

} // namespace kore
