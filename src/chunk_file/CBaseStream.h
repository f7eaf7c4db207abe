#pragma once
// Common base of the adapters onto outside streams. An adapter supplies position, length, seek,
// read, write, truncate and extend; this class adds reference counting and the insertion and
// removal of bytes in the middle of the stream by shifting its tail through one buffer.

#include "chunk_file/IStream.h"

#include <cstdint>
#include <memory>

namespace chf {

class CBaseStream : public virtual IStream {
public:
    static constexpr uint32_t kShiftBufferSize = 65536;

    CBaseStream() = default;
    CBaseStream(const CBaseStream&) = delete;
    CBaseStream& operator=(const CBaseStream&) = delete;

    uint32_t addRef() override;
    uint32_t release() override;

    // Moves only the last block of at most 64 KiB behind the position back by `count`: files of
    // this container keep the data behind any insertion point within that block. The position is
    // left where the last write ended; the inserted bytes keep whatever they held.
    void insertSpace(int64_t count) override;
    // Moves the whole tail forward, then truncates `count` bytes off the end (even when fewer
    // than `count` bytes followed the position).
    void removeSpace(int64_t count) override;

    virtual void truncate(int64_t newLength) = 0;
    // Grows the stream to `newLength` and keeps the position. This one writes zeros at the end;
    // adapters that can do better replace it.
    virtual void extend(int64_t newLength);

protected:
    ~CBaseStream() override = default;
    uint32_t getRefCount() const { return m_refCount; }

private:
    uint8_t* shiftBuffer();

    uint32_t m_refCount = 1;
    // Allocated on first use and kept, so that repeated edits allocate nothing.
    std::unique_ptr<uint8_t[]> m_shiftBuffer;
    uint32_t m_shiftBufferSize = 0;
};

} // namespace chf
