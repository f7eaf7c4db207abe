#pragma once

#include "framework/io/IIOStream.h"
#include "framework/io/ISeekableInStream.h"
#include "framework/io/ISeekableOutStream.h"

namespace kore {

class ISeekableIOStream : public virtual IIOStream,
                          public virtual ISeekableInStream,
                          public virtual ISeekableOutStream {};

} // namespace kore
