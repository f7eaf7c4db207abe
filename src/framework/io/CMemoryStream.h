#pragma once

#include "framework/io/ISeekableIOStream.h"
#include "framework/objects/CObject.h"

#include <cstddef>
#include <vector>

namespace kore {

// A stream over bytes in memory that grows as it is written. It has no URI.
class CMemoryStream : public CObject, public ISeekableIOStream {
public:
    CMemoryStream() = default;
    // Starts with a copy of `length` bytes, positioned at 0.
    CMemoryStream(const void* data, size_t length);
    ~CMemoryStream() override;

    int64_t getPosition() const override { return m_position; }
    int64_t getLength() const override { return static_cast<int64_t>(m_data.size()); }
    P<IURI> getURI() const override;
    void close() override;
    uint32_t read(void* buffer, uint32_t count) override;
    uint32_t readSome(void* buffer, uint32_t count) override;
    uint32_t write(const void* buffer, uint32_t count) override;
    void flush() override;
    void seek(int64_t position) override;

    // The content; valid until the next write or close.
    const uint8_t* getData() const { return m_data.data(); }

private:
    void checkOpen() const;
    void checkBuffer(const void* buffer, uint32_t count, const char* method) const;

    std::vector<uint8_t> m_data;
    int64_t m_position = 0;
    bool m_closed = false;
};

} // namespace kore
