#pragma once
// File integers are little-endian whatever the host: always (de)serialise byte by byte.

#include <cstdint>

namespace chf::le {

inline uint32_t load32(const uint8_t* bytes) noexcept
{
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

inline uint64_t load64(const uint8_t* bytes) noexcept
{
    uint64_t value = 0;
    for (int i = 7; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

inline void store32(uint8_t* bytes, uint32_t value) noexcept
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}

inline void store64(uint8_t* bytes, uint64_t value) noexcept
{
    for (int i = 0; i < 8; ++i)
        bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}

} // namespace chf::le
