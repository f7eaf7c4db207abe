#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

#include <cstdint>

namespace kore {

class IURI;

// A byte stream. Reading, writing and seeking come with the derived interfaces; which of them a
// stream answers to (through cast/tryCast) depends on how it was opened. A stream belongs to one
// thread at a time.
class IStream : public virtual IBase {
public:
    virtual int64_t getPosition() const = 0;
    virtual int64_t getLength() const = 0;
    // The resource behind the stream; null for a stream without one (memory).
    virtual P<IURI> getURI() const = 0;
    // Writes what is buffered and releases the resource. Reading, writing, seeking and flushing
    // afterwards throw CStreamClosedError; closing again does nothing. Destroying a stream
    // closes it too, but only close() reports a failure of the last write.
    virtual void close() = 0;
};

} // namespace kore
