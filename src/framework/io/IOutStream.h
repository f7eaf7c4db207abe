#pragma once

#include "framework/io/IStream.h"

namespace kore {

class IOutStream : public virtual IStream {
public:
    // Writes all `count` bytes at the position, overwriting or extending, and returns `count`;
    // failure throws. Writing behind the end fills the gap with zeros.
    virtual uint32_t write(const void* buffer, uint32_t count) = 0;
    // Hands buffered bytes to the resource.
    virtual void flush() = 0;
};

} // namespace kore
