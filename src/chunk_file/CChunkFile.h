#pragma once
// The chunk area of a container file: an iterator with no holder above it, over the bytes behind
// the 16-byte header (8 bytes of magic, then the 8-byte length of the chunk area).

#include "chunk_file/CChunkIterator.h"

namespace chf {

class CChunkFile : public CChunkIterator {
public:
    static constexpr int64_t kFileHeaderSize = 16;

    // Reads the header from the stream's current position and returns the only reference to a
    // file over it. The magic is not checked: callers compare getMagic() with what they expect.
    static CChunkFile* open(IStream* stream);

    // The 8 magic characters and a terminating zero.
    const char* getMagic() const noexcept { return m_magic; }

protected:
    CChunkFile(IStream* stream, int64_t base, int64_t length, const char* magic);
    ~CChunkFile() override = default;

private:
    char m_magic[9];
};

} // namespace chf
