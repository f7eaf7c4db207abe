#pragma once
// Chunk ids are the four ASCII characters of the file read as one little-endian integer.

#include <cstdint>

namespace chf {

constexpr uint32_t makeChunkId(const char (&text)[5]) noexcept
{
    return static_cast<uint32_t>(static_cast<uint8_t>(text[0])) |
           static_cast<uint32_t>(static_cast<uint8_t>(text[1])) << 8 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[2])) << 16 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[3])) << 24;
}

static_assert(makeChunkId("STMP") == 0x504D5453u);
static_assert(makeChunkId("data") == 0x61746164u);

} // namespace chf
