#pragma once

#include "framework/objects/IBase.h"

namespace kore {

class IInStream;
class IOutStream;

// Objects that can write their state to a stream and read it back.
class ISerializable : public virtual IBase {
public:
    // Writes the object's state at the stream's position; failures of the stream propagate.
    virtual void serialize(IOutStream& out) const = 0;
    // Replaces the object's state by what `serialize` wrote at the stream's position. Data that
    // does not describe a state of this class throws CParseError and leaves the object unchanged.
    virtual void deserialize(IInStream& in) = 0;
};

} // namespace kore
