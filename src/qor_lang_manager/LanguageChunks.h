#pragma once
// The chunk ids of a language file and the reading of its value encodings from chunk data.

#include "chunk_file/CChunkStream.h"
#include "chunk_file/ChunkId.h"
#include "framework/io/IURI.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qor_lang {

inline constexpr uint32_t kChunkLang = chf::makeChunkId("lang");
inline constexpr uint32_t kChunkApid = chf::makeChunkId("apid");
inline constexpr uint32_t kChunkCmnt = chf::makeChunkId("cmnt");
inline constexpr uint32_t kChunkXdid = chf::makeChunkId("xdid");
inline constexpr uint32_t kChunkVers = chf::makeChunkId("vers");
inline constexpr uint32_t kChunkStmp = chf::makeChunkId("STMP");
inline constexpr uint32_t kChunkData = chf::makeChunkId("data");
inline constexpr uint32_t kChunkRsid = chf::makeChunkId("RSID");

// A counted string: nullopt when the file says N = 0 (absent, read as empty).
using CountedString = std::optional<std::u16string>;

// Reads the values of one chunk's data, from the chunk stream's position on. Reads are not
// limited to the chunk (a count that runs past it takes the bytes that follow), but every size is
// checked against what is left of the whole file before anything is allocated: a hostile count
// fails like a read past the end would, with CEndOfStreamError. The bytes come through the chunk
// stream in blocks, not value by value: a string table holds hundreds of thousands of values.
class CLanguageChunkReader {
public:
    static constexpr uint32_t kBlockSize = 65536;

    // `fileLength`: length of the underlying file; `source`: named by the errors.
    CLanguageChunkReader(chf::CChunkStream& chunk, int64_t fileLength, const kore::IURI* source)
        : m_chunk(chunk), m_fileLength(fileLength), m_source(source), m_at(chunk.getBase() + chunk.getPosition())
    {
    }

    uint32_t readUInt32();
    CountedString readCountedString();
    // Fails unless at least `bytes` are left in the file from the current position.
    void require(uint64_t bytes);

private:
    void readExactly(void* buffer, uint64_t bytes);
    // Reads `bytes` at the current position through the chunk stream, into `out`.
    void readThrough(uint8_t* out, uint64_t bytes);

    chf::CChunkStream& m_chunk;
    int64_t m_fileLength;
    const kore::IURI* m_source;
    int64_t m_at; // absolute position in the file of the next byte to read
    std::vector<uint8_t> m_block;
    size_t m_next = 0; // next unread byte of m_block
};

} // namespace qor_lang
