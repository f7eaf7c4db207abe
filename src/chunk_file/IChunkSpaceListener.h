#pragma once
// Told when bytes are inserted into or removed from the underlying file, so that open chunk
// streams behind or around the change can shift or resize.

#include "chunk_file/IInterface.h"

#include <cstdint>

namespace chf {

class CChunkStream;

class IChunkSpaceListener : public virtual IInterface {
public:
    // `origin` is the chunk stream that caused the change, or null when the notice comes from
    // above; `at` is an absolute offset in the underlying file.
    virtual void onSpaceInserted(CChunkStream* origin, int64_t at, int64_t count) = 0;
    virtual void onSpaceRemoved(CChunkStream* origin, int64_t at, int64_t count) = 0;
};

} // namespace chf
