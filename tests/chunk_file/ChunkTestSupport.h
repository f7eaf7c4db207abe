#pragma once
// Shared by the chunk container tests: an owning pointer, file byte builders, and test doubles
// for the underlying stream and for a holder.

#include "chunk_file/CChunkStream.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/IChunkHolder.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace chf_test {

using Bytes = std::vector<uint8_t>;

// Owns one reference.
template <class T> struct Ref {
    T* object;
    explicit Ref(T* o) : object(o) {}
    Ref(const Ref&) = delete;
    ~Ref() { reset(); }
    T* operator->() const { return object; }
    T* get() const { return object; }
    void reset() { if (object) std::exchange(object, nullptr)->release(); }
};

inline Bytes text(const std::string& s) { return Bytes(s.begin(), s.end()); }
inline Bytes operator+(Bytes a, const Bytes& b) { a.insert(a.end(), b.begin(), b.end()); return a; }
inline Bytes slice(const Bytes& b, size_t from, size_t to) { return Bytes(b.begin() + long(from), b.begin() + long(to)); }

inline Bytes u64(uint64_t value)
{
    Bytes out;
    for (int i = 0; i < 8; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return out;
}

inline uint64_t getU64(const Bytes& bytes, size_t at)
{
    uint64_t value = 0;
    for (size_t i = 8; i-- > 0;)
        value = (value << 8) | bytes.at(at + i);
    return value;
}

// A chunk whose size field says `size`, followed by `data` (which may differ in length).
inline Bytes chunk(const std::string& id, uint64_t size, const Bytes& data) { return text(id) + u64(size) + data; }
inline Bytes chunk(const std::string& id, const Bytes& data) { return chunk(id, data.size(), data); }
inline Bytes container(const Bytes& area, uint64_t length) { return text("URESFILE") + u64(length) + area; }
inline Bytes container(const Bytes& area) { return container(area, area.size()); }

inline Bytes patternBytes(size_t count)
{
    Bytes out(count);
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return out;
}

inline Bytes readAll(chf::IStream* stream)
{
    Bytes bytes(static_cast<size_t>(stream->getLength()));
    stream->setPosition(0);
    stream->read(bytes.data(), static_cast<int32_t>(bytes.size()));
    return bytes;
}

// A memory stream that counts the bytes passed to write() and can be told to fail.
struct CTestStream : chf::CMemoryStream {
    using CMemoryStream::CMemoryStream;
    int64_t bytesWritten = 0;
    bool failWrite = false;
    bool failTruncate = false;

    int64_t write(const void* buffer, int32_t count) override
    {
        if (failWrite)
            throw std::exception();
        bytesWritten += count;
        return CMemoryStream::write(buffer, count);
    }
    void truncate(int64_t newLength) override
    {
        if (failTruncate)
            throw std::exception();
        CMemoryStream::truncate(newLength);
    }
};

// A holder on the test's stack that records what it is told.
struct CRecordingHolder : chf::IChunkHolder {
    struct Notice { bool inserted; chf::CChunkStream* origin; int64_t at, count; };
    uint32_t refs = 1;
    std::vector<Notice> notices;
    std::vector<chf::CChunkStream*> detached;

    uint32_t addRef() override { return ++refs; }
    uint32_t release() override { return --refs; }
    void detachChild(chf::CChunkStream* child) override { detached.push_back(child); }
    void onSpaceInserted(chf::CChunkStream* o, int64_t at, int64_t n) override { notices.push_back({true, o, at, n}); }
    void onSpaceRemoved(chf::CChunkStream* o, int64_t at, int64_t n) override { notices.push_back({false, o, at, n}); }
};

} // namespace chf_test
