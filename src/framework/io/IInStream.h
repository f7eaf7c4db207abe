#pragma once

#include "framework/io/IStream.h"

namespace kore {

class IInStream : public virtual IStream {
public:
    // Reads exactly `count` bytes and returns `count`. When fewer remain, throws
    // CEndOfStreamError and leaves the position where it was; the buffer may then hold some of
    // the bytes that were there.
    virtual uint32_t read(void* buffer, uint32_t count) = 0;
    // Reads up to `count` bytes; returns how many, 0 only at the end of the stream.
    virtual uint32_t readSome(void* buffer, uint32_t count) = 0;
};

} // namespace kore
