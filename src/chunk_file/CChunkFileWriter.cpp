#include "chunk_file/CChunkFileWriter.h"

#include "chunk_file/LittleEndian.h"

#include <cstring>
#include <exception>

namespace chf {

CChunkFile* CChunkFileWriter::createFile(IStream* stream)
{
    if (stream->getLength() != 0)
        throw std::exception();
    uint8_t header[CChunkFile::kFileHeaderSize] = {};
    std::memcpy(header, "URESFILE", 8);
    stream->setPosition(0);
    stream->write(header, sizeof header);
    stream->setPosition(0);
    return CChunkFile::open(stream);
}

void CChunkFileWriter::appendHeader(CChunkIterator* sequence, uint32_t id)
{
    uint8_t header[CChunkIterator::kChunkHeaderSize] = {};
    le::store32(header, id);
    const int64_t offset = sequence->getLength();
    // Writing at the end inserts the space and tells the holders above.
    sequence->setPosition(offset);
    sequence->write(header, sizeof header);
    sequence->m_currentOffset = offset;
    sequence->m_onChunk = false;
    if (!sequence->nextChunk())
        throw std::exception();
}

CChunkStream* CChunkFileWriter::appendChunk(CChunkIterator* sequence, uint32_t id)
{
    appendHeader(sequence, id);
    return sequence->openChunkStream();
}

CChunkIterator* CChunkFileWriter::appendChunkIterator(CChunkIterator* sequence, uint32_t id)
{
    appendHeader(sequence, id);
    return sequence->openChunkIterator();
}

void CChunkFileWriter::appendChunk(CChunkIterator* sequence, uint32_t id, const void* data, int32_t count)
{
    CChunkStream* const chunk = appendChunk(sequence, id);
    try {
        chunk->write(data, count);
    } catch (...) {
        chunk->release();
        throw;
    }
    chunk->release();
}

} // namespace chf
