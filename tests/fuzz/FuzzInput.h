#pragma once
// Takes an input apart: control values from the front, the remaining bytes as data. Reading past
// the end gives zeros, so that every input means something.

#include <cstddef>
#include <cstdint>
#include <string>

namespace qor_fuzz {

class CFuzzInput {
public:
    CFuzzInput(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool empty() const { return m_position >= m_size; }
    size_t remaining() const { return m_size - m_position; }

    uint8_t byte() { return empty() ? 0 : m_data[m_position++]; }
    uint16_t u16() { return static_cast<uint16_t>(byte() | byte() << 8); }
    uint32_t u32() { return u16() | static_cast<uint32_t>(u16()) << 16; }
    uint64_t u64() { return static_cast<uint64_t>(u32()) << 32 | u32(); }

    // Up to `count` bytes as they are.
    std::string bytes(size_t count)
    {
        count = count < remaining() ? count : remaining();
        std::string out(reinterpret_cast<const char*>(m_data + m_position), count);
        m_position += count;
        return out;
    }
    // A piece whose length comes first (one byte).
    std::string piece() { return bytes(byte()); }
    std::string rest() { return bytes(remaining()); }

    // Up to `units` UTF-16 code units, two bytes each, little-endian.
    std::u16string units(size_t count)
    {
        std::u16string out;
        while (count-- > 0 && remaining() >= 2)
            out += static_cast<char16_t>(u16());
        return out;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_position = 0;
};

} // namespace qor_fuzz
