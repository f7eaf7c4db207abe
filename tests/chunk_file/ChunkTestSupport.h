#pragma once
// Shared helpers of the chunk container tests: an owning pointer, file byte builders, and test
// doubles for the underlying stream and for a holder.

#include "chunk_file/CMemoryStream.h"
#include "chunk_file/IChunkHolder.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace chf_test {

using Bytes = std::vector<uint8_t>;

// Owns one reference; releases it when it goes.
template <class T> class Ref {
public:
    explicit Ref(T* object = nullptr) : m_object(object) {}
    Ref(Ref&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Ref& operator=(Ref&&) = delete;
    ~Ref() { reset(); }
    T* operator->() const { return m_object; }
    T* get() const { return m_object; }
    void reset()
    {
        if (m_object)
            std::exchange(m_object, nullptr)->release();
    }

private:
    T* m_object;
};

inline void putU32(Bytes& out, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline void putU64(Bytes& out, uint64_t value)
{
    for (int i = 0; i < 8; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline uint64_t getU64(const Bytes& bytes, size_t at)
{
    uint64_t value = 0;
    for (int i = 7; i >= 0; --i)
        value = (value << 8) | bytes.at(at + static_cast<size_t>(i));
    return value;
}

inline Bytes text(const std::string& s) { return Bytes(s.begin(), s.end()); }

inline Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A chunk whose size field says `size`, followed by `data` (which may differ in length).
inline Bytes chunk(const std::string& id, uint64_t size, const Bytes& data)
{
    Bytes out = text(id.substr(0, 4));
    putU64(out, size);
    return out + data;
}

inline Bytes chunk(const std::string& id, const Bytes& data) { return chunk(id, data.size(), data); }

inline Bytes container(const Bytes& area, uint64_t length)
{
    Bytes out = text("URESFILE");
    putU64(out, length);
    return out + area;
}

inline Bytes container(const Bytes& area) { return container(area, area.size()); }

// A memory stream that counts the bytes written through write() and can be told to fail.
class CTestStream : public chf::CMemoryStream {
public:
    using CMemoryStream::CMemoryStream;

    int64_t bytesWritten = 0;
    bool failWrite = false;
    bool failTruncate = false;
    bool useBaseExtend = false;

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
    void extend(int64_t newLength) override
    {
        if (useBaseExtend)
            CBaseStream::extend(newLength);
        else
            CMemoryStream::extend(newLength);
    }
};

// A holder that records what it is told; it lives on the test's stack.
class CRecordingHolder : public chf::IChunkHolder {
public:
    struct Notice {
        bool inserted;
        chf::CChunkStream* origin;
        int64_t at;
        int64_t count;
    };

    uint32_t refs = 1;
    std::vector<Notice> notices;
    std::vector<chf::CChunkStream*> detached;

    uint32_t addRef() override { return ++refs; }
    uint32_t release() override { return --refs; }
    void detachChild(chf::CChunkStream* child) override { detached.push_back(child); }
    void onSpaceInserted(chf::CChunkStream* origin, int64_t at, int64_t count) override
    {
        notices.push_back({true, origin, at, count});
    }
    void onSpaceRemoved(chf::CChunkStream* origin, int64_t at, int64_t count) override
    {
        notices.push_back({false, origin, at, count});
    }
};

inline Bytes sequenceBytes(size_t count)
{
    Bytes out(count);
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>((i * 7 + i / 251) % 256);
    return out;
}

inline Bytes slice(const Bytes& bytes, size_t from, size_t to)
{
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.begin() + static_cast<std::ptrdiff_t>(to));
}

} // namespace chf_test
