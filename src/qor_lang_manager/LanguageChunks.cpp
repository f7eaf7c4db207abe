#include "qor_lang_manager/LanguageChunks.h"

#include "framework/CEndOfStreamError.h"

#include <vector>

namespace qor_lang {

void CLanguageChunkReader::require(uint64_t bytes)
{
    const int64_t at = m_chunk.getBase() + m_chunk.getPosition();
    const int64_t left = at < 0 || at > m_fileLength ? 0 : m_fileLength - at;
    if (bytes > static_cast<uint64_t>(left))
        throw kore::CEndOfStreamError(m_source);
}

void CLanguageChunkReader::readExactly(void* buffer, uint64_t bytes)
{
    require(bytes);
    auto* out = static_cast<uint8_t*>(buffer);
    // Single reads move at most 2^31 - 1 bytes.
    while (bytes > 0) {
        const uint32_t piece = bytes > 0x40000000u ? 0x40000000u : static_cast<uint32_t>(bytes);
        m_chunk.read(out, static_cast<int32_t>(piece));
        out += piece;
        bytes -= piece;
    }
}

uint32_t CLanguageChunkReader::readUInt32()
{
    uint8_t b[4];
    readExactly(b, 4);
    return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 |
           static_cast<uint32_t>(b[2]) << 16 | static_cast<uint32_t>(b[3]) << 24;
}

CountedString CLanguageChunkReader::readCountedString()
{
    const uint32_t units = readUInt32();
    if (units == 0)
        return std::nullopt;
    require(2ull * units);
    std::vector<uint8_t> bytes(2ull * units);
    readExactly(bytes.data(), 2ull * units);
    std::u16string text(units - 1, u'\0');
    // The last unit is the terminator whatever the file holds there.
    for (uint32_t i = 0; i + 1 < units; ++i)
        text[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    return text;
}

} // namespace qor_lang
