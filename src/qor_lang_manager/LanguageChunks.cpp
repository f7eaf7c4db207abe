#include "qor_lang_manager/LanguageChunks.h"

#include "framework/errors/CEndOfStreamError.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace qor_lang {

void CLanguageChunkReader::require(uint64_t bytes)
{
    const int64_t left = m_at < 0 || m_at > m_fileLength ? 0 : m_fileLength - m_at;
    if (bytes > static_cast<uint64_t>(left))
        throw kore::CEndOfStreamError(m_source);
}

void CLanguageChunkReader::readThrough(uint8_t* out, uint64_t bytes)
{
    m_chunk.setPosition(m_at - m_chunk.getBase());
    // Single reads move at most 2^31 - 1 bytes.
    while (bytes > 0) {
        const uint32_t piece = bytes > 0x40000000u ? 0x40000000u : static_cast<uint32_t>(bytes);
        m_chunk.read(out, static_cast<int32_t>(piece));
        out += piece;
        bytes -= piece;
    }
}

void CLanguageChunkReader::readExactly(void* buffer, uint64_t bytes)
{
    require(bytes);
    auto* out = static_cast<uint8_t*>(buffer);
    while (bytes > 0) {
        if (m_next == m_block.size()) {
            if (bytes >= kBlockSize) {
                readThrough(out, bytes); // a large value goes straight to its place
                m_at += static_cast<int64_t>(bytes);
                return;
            }
            // Never beyond the file's end: require() has checked that `bytes` are there.
            const auto block = static_cast<size_t>(std::min<int64_t>(kBlockSize, m_fileLength - m_at));
            m_block.resize(block);
            readThrough(m_block.data(), block);
            m_next = 0;
        }
        const size_t n = static_cast<size_t>(std::min<uint64_t>(bytes, m_block.size() - m_next));
        std::memcpy(out, m_block.data() + m_next, n);
        m_next += n;
        m_at += static_cast<int64_t>(n);
        out += n;
        bytes -= n;
    }
}

uint32_t CLanguageChunkReader::readUInt32()
{
    uint8_t b[4];
    readExactly(b, 4);
    return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
           static_cast<uint32_t>(b[3]) << 24;
}

CountedString CLanguageChunkReader::readCountedString()
{
    const uint32_t units = readUInt32();
    if (units == 0)
        return std::nullopt;
    require(2ull * units);
    std::u16string text(units, u'\0');
    readExactly(text.data(), 2ull * units);
    if constexpr (std::endian::native == std::endian::big) {
        for (char16_t& c : text)
            c = static_cast<char16_t>((c >> 8) | (c << 8)); // the file's units are little-endian
    }
    // The last unit is the terminator whatever the file holds there.
    text.pop_back();
    return text;
}

} // namespace qor_lang
