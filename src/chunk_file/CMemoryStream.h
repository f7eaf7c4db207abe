#pragma once
// A stream held in memory: grows on write and extend, shrinks on truncate. For building files in
// memory and for tests.

#include "chunk_file/CBaseStream.h"

#include <cstdint>
#include <vector>

namespace chf {

class CMemoryStream : public CBaseStream {
public:
    CMemoryStream() = default;
    explicit CMemoryStream(std::vector<uint8_t> bytes);

    int64_t getPosition() override;
    int64_t getLength() override;
    // Any value is kept; reading or writing at a negative position throws.
    void setPosition(int64_t position) override;
    // Writing past the end grows the stream, filling a gap with zeros. Returns `count`.
    int64_t write(const void* buffer, int32_t count) override;
    // Delivers what lies between the position and the end; returns the number of bytes delivered.
    int64_t read(void* buffer, int32_t count) override;
    // Shortens the stream (never lengthens it); a negative length throws.
    void truncate(int64_t newLength) override;
    void extend(int64_t newLength) override;

    const std::vector<uint8_t>& getBytes() const noexcept { return m_bytes; }

protected:
    ~CMemoryStream() override = default;

private:
    std::vector<uint8_t> m_bytes;
    int64_t m_position = 0;
};

} // namespace chf
