#pragma once
// The container's own byte stream: every chunk stream and every adapter onto an outside stream.
// Positions and lengths are signed 64-bit; a single read or write moves at most 2^31 - 1 bytes.

#include "chunk_file/IInterface.h"

#include <cstdint>

namespace chf {

class IStream : public virtual IInterface {
public:
    // Both return the new count; at zero release destroys the object.
    virtual uint32_t addRef() = 0;
    virtual uint32_t release() = 0;

    virtual int64_t getPosition() = 0;
    virtual int64_t getLength() = 0;
    virtual void setPosition(int64_t position) = 0;
    // The result is the implementation's own: adapters return the bytes moved, chunk streams
    // return what their parent returned (write) or their length (read).
    virtual int64_t write(const void* buffer, int32_t count) = 0;
    virtual int64_t read(void* buffer, int32_t count) = 0;
    // Inserts `count` bytes at the current position, moving what follows back.
    virtual void insertSpace(int64_t count) = 0;
    // Removes `count` bytes at the current position, moving what follows forward.
    virtual void removeSpace(int64_t count) = 0;
};

} // namespace chf
