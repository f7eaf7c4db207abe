#pragma once
// A window of given base and length onto the underlying file stream: one chunk's data. Writing
// past the end grows the chunk (and tells the holder); the new length reaches the chunk's size
// field, 8 bytes before the base, when the stream is destroyed.

#include "chunk_file/IChunkSpaceListener.h"
#include "chunk_file/IStream.h"

#include <cstdint>

namespace chf {

class IChunkHolder;
class CChunkIterator;

class CChunkStream : public virtual IStream, public virtual IChunkSpaceListener {
public:
    // Takes a reference on `parent` and then on `holder` (which may be null).
    CChunkStream(IChunkHolder* holder, IStream* parent, int64_t base, int64_t length);
    CChunkStream(const CChunkStream&) = delete;
    CChunkStream& operator=(const CChunkStream&) = delete;

    uint32_t addRef() override;
    // At zero: writes a changed length back, detaches from and releases the holder, releases the
    // parent. A failing write-back is rethrown here once the stream is gone.
    uint32_t release() override;

    int64_t getPosition() override;
    int64_t getLength() override;
    void setPosition(int64_t position) override;
    int64_t write(const void* buffer, int32_t count) override;
    int64_t read(void* buffer, int32_t count) override;
    void insertSpace(int64_t count) override;
    void removeSpace(int64_t count) override;

    void onSpaceInserted(CChunkStream* origin, int64_t at, int64_t count) override;
    void onSpaceRemoved(CChunkStream* origin, int64_t at, int64_t count) override;

    // Absolute offset of the first data byte in the underlying file.
    int64_t getBase() const noexcept { return m_base; }
    // Set once the stream's whole region was removed; such a stream writes nothing back.
    bool isDeleted() const noexcept { return m_deleted; }

protected:
    // Only release() destroys a stream.
    ~CChunkStream() override = default;

    IChunkHolder* m_holder;
    IStream* m_parent;
    int64_t m_base;
    int64_t m_length;
    int64_t m_position = 0;
    int64_t m_originalLength;
    uint32_t m_refCount = 1;

private:
    friend class CChunkIterator; // keeps the list of its open children through these links

    void writeBackLength();

    CChunkStream* m_next = nullptr;
    CChunkStream* m_previous = nullptr;
    bool m_deleted = false;
};

} // namespace chf
