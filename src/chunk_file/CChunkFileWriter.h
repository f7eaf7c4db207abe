#pragma once
// Builds container files through the container's own streams: a new file on an empty stream,
// then chunks appended at the end of any open sequence, nested ones included. Sizes reach the
// file by write-back as the returned streams are released, children before their holders.

#include "chunk_file/CChunkFile.h"

#include <cstdint>

namespace chf {

class CChunkFileWriter {
public:
    // Writes the header ("URESFILE", empty chunk area) onto an empty stream and opens it. Returns
    // the only reference; the caller may release its own reference to the stream.
    static CChunkFile* createFile(IStream* stream);

    // Appends a chunk header (id, size 0) at the end of `sequence`, leaves `sequence` on the new
    // chunk and returns the chunk's data as a new child at position 0. What the caller writes
    // into the child grows the chunk and every enclosing sequence.
    static CChunkStream* appendChunk(CChunkIterator* sequence, uint32_t id);
    // The same, with a child that can hold nested chunks.
    static CChunkIterator* appendChunkIterator(CChunkIterator* sequence, uint32_t id);
    // Appends a whole chunk with the given data.
    static void appendChunk(CChunkIterator* sequence, uint32_t id, const void* data, int32_t count);

private:
    static void appendHeader(CChunkIterator* sequence, uint32_t id);
};

} // namespace chf
