#pragma once

#include "framework/io/IStream.h"

namespace kore {

// The seek shared by the seekable stream interfaces, so that a stream that is seekable for
// reading and for writing has one seek.
class ISeekable : public virtual IStream {
public:
    // Moves to an absolute position; past the end is allowed (reads there fail, writes fill the
    // gap). A negative position throws CInvalidArgError.
    virtual void seek(int64_t position) = 0;
};

} // namespace kore
