#include "chunk_file/CChunkFile.h"

#include "chunk_file/LittleEndian.h"

#include <cstring>

namespace chf {

CChunkFile::CChunkFile(IStream* stream, int64_t base, int64_t length, const char* magic)
    : CChunkIterator(nullptr, stream, base, length)
{
    std::memcpy(m_magic, magic, 8);
    m_magic[8] = 0;
}

CChunkFile* CChunkFile::open(IStream* stream)
{
    // A short stream leaves zeros where the header is missing.
    char magic[8] = {};
    uint8_t lengthBytes[8] = {};
    stream->read(magic, sizeof magic);
    stream->read(lengthBytes, sizeof lengthBytes);
    const auto length = static_cast<int64_t>(le::load64(lengthBytes));
    return new CChunkFile(stream, stream->getPosition(), length, magic);
}

} // namespace chf
