#pragma once
// What a chunk stream knows of the iterator it was opened from.

#include "chunk_file/IChunkSpaceListener.h"

#include <cstdint>

namespace chf {

class CChunkStream;

class IChunkHolder : public virtual IChunkSpaceListener {
public:
    virtual uint32_t addRef() = 0;
    virtual uint32_t release() = 0;
    // Called by a child while it is being destroyed: forget it.
    virtual void detachChild(CChunkStream* child) = 0;
};

} // namespace chf
