#pragma once
// A chunk stream whose data is walked as a sequence of chunks (4-byte id, 8-byte size, data).
// It opens the current chunk as a child stream and keeps its open children consistent when
// space is inserted or removed anywhere in the file.

#include "chunk_file/CChunkStream.h"
#include "chunk_file/IChunkHolder.h"

#include <cstdint>

namespace chf {

class CChunkIterator : public CChunkStream, public virtual IChunkHolder {
public:
    static constexpr int64_t kChunkHeaderSize = 12;

    CChunkIterator(IChunkHolder* holder, IStream* parent, int64_t base, int64_t length);

    uint32_t addRef() override;
    uint32_t release() override;
    void detachChild(CChunkStream* child) override;
    void onSpaceInserted(CChunkStream* origin, int64_t at, int64_t count) override;
    void onSpaceRemoved(CChunkStream* origin, int64_t at, int64_t count) override;

    // Back to the start of the sequence, off any chunk.
    void rewind();
    // Reads the next chunk header; false at the end of the sequence. Also false for a chunk whose
    // size would not move the walk forward within 64-bit offsets, or whose header lies beyond
    // the end of the underlying stream, so that no file can make a walk run away.
    bool nextChunk();
    uint32_t getChunkId() const noexcept { return m_currentId; }
    // The current chunk's data size, and the offset of its header relative to this stream's base;
    // after the end of the sequence, the offset where the walk stopped.
    int64_t getChunkSize() const noexcept { return m_currentSize; }
    int64_t getChunkOffset() const noexcept { return m_currentOffset; }
    // Search forward from the current chunk (exclusive).
    bool findChunk(uint32_t id);
    bool findFirstChunk(uint32_t id);

    // The current chunk's data as a new child (reference count 1, owned by the caller). Off a
    // chunk the child is empty and lies 12 bytes behind the current offset.
    CChunkStream* openChunkStream();
    CChunkIterator* openChunkIterator();

protected:
    ~CChunkIterator() override = default;

    CChunkStream* m_firstChild = nullptr;
    uint32_t m_currentId = 0;
    int64_t m_currentSize = 0;
    // Offset of the current chunk's header, relative to this stream's base.
    int64_t m_currentOffset = 0;
    bool m_onChunk = false;
    // When set, a child ending exactly at an insertion or removal point is not told of it.
    bool m_skipAdjacent = false;

private:
    friend class CChunkFileWriter; // places the iterator on a chunk it has just appended

    bool endOfSequence();
    template <class TChild>
    TChild* openChild();
    void notifyChildren(CChunkStream* origin, int64_t at, int64_t count, bool inserted);
};

} // namespace chf
