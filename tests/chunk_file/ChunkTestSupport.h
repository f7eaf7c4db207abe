#pragma once
// Shared by the chunk container tests: file byte builders, test doubles for the underlying stream
// and for a holder, and a file on disk reached through the file-stream adapter.

#include "../framework/TempFolder.h"
#include "chunk_file/CChunkFile.h"
#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/ChunkId.h"
#include "chunk_file/TChunkRef.h"
#include "framework/io/IStreamManager.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <tuple>
#include <typeinfo>

namespace chf_test {

// The container's classes by their short names in every test that uses this namespace.
using namespace chf;
using kore::IStreamManager;
using Bytes = std::vector<uint8_t>;
template <class T>
using Ref = TChunkRef<T>;

inline Bytes text(const std::string& s)
{
    return Bytes(s.begin(), s.end());
}
inline Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
inline Bytes slice(const Bytes& b, size_t from, size_t to)
{
    return Bytes(b.begin() + long(from), b.begin() + long(to));
}
// Sizes are little-endian, as every platform this builds for is.
inline Bytes u64(uint64_t value)
{
    Bytes out(8);
    std::memcpy(out.data(), &value, 8);
    return out;
}
// A chunk whose size field says `size`, followed by `data` (which may differ in length).
inline Bytes chunk(const std::string& id, uint64_t size, const Bytes& data)
{
    return text(id) + u64(size) + data;
}
inline Bytes chunk(const std::string& id, const Bytes& data)
{
    return chunk(id, data.size(), data);
}
inline Bytes container(const Bytes& area, std::optional<uint64_t> length = {})
{
    return text("URESFILE") + u64(length.value_or(area.size())) + area;
}
inline Bytes patternBytes(size_t count)
{
    Bytes out(count);
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return out;
}

inline Bytes readAll(IStream* stream)
{
    Bytes bytes(static_cast<size_t>(stream->getLength()));
    stream->setPosition(0);
    stream->read(bytes.data(), static_cast<int32_t>(bytes.size()));
    return bytes;
}
// A stream on the first chunk of that id, or without one on the sequence's current chunk.
template <class... Id>
Ref<CChunkStream> openStream(CChunkIterator* sequence, const Id&... id)
{
    EXPECT_TRUE((sequence->findFirstChunk(makeChunkId(id)) && ...));
    return Ref<CChunkStream>(sequence->openChunkStream());
}
inline Bytes current(CChunkIterator* sequence)
{
    return readAll(openStream(sequence).get());
}
inline bool isSequence(uint32_t id)
{
    return id == makeChunkId("STMP") || id == makeChunkId("sub_");
}

inline std::string dump(CChunkIterator* sequence);
// The current chunk as "id(data)", or "id[...]" for "STMP" and "sub_", walked as nested sequences.
inline std::string describe(CChunkIterator* sequence)
{
    const uint32_t id = sequence->getChunkId();
    const std::string name(reinterpret_cast<const char*>(&id), 4);
    if (isSequence(id))
        return name + "[" + dump(Ref<CChunkIterator>(sequence->openChunkIterator()).get()) + "]";
    const Bytes data = current(sequence);
    return name + "(" + std::string(data.begin(), data.end()) + ")";
}
// Every chunk from the start, described and separated by spaces.
inline std::string dump(CChunkIterator* sequence)
{
    std::string out;
    for (sequence->rewind(); sequence->nextChunk();)
        out += (out.empty() ? "" : " ") + describe(sequence);
    return out;
}

// The container's own failures are the runtime's base exception itself, not a framework error.
template <class F>
bool raisesPlainException(F&& operation)
{
    try {
        operation();
    } catch (const std::exception& e) {
        return typeid(e) == typeid(std::exception);
    }
    return false;
}

// A memory stream that counts the bytes passed to write() and can be told to fail.
struct CTestStream : CMemoryStream {
    using CMemoryStream::CMemoryStream;
    int64_t bytesWritten = 0;
    bool failWrite = false, failTruncate = false;

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
struct CRecordingHolder : IChunkHolder {
    using Notice = std::tuple<bool, CChunkStream*, int64_t, int64_t>; // inserted?, origin, at, count
    uint32_t refs = 1;
    std::vector<Notice> notices;
    std::vector<CChunkStream*> detached;

    uint32_t addRef() override { return ++refs; }
    uint32_t release() override { return --refs; }
    void detachChild(CChunkStream* child) override { detached.push_back(child); }
    void onSpaceInserted(CChunkStream* o, int64_t at, int64_t n) override { notices.push_back({true, o, at, n}); }
    void onSpaceRemoved(CChunkStream* o, int64_t at, int64_t n) override { notices.push_back({false, o, at, n}); }
};

// A container in memory, opened at `at`; the stream counts what is written.
struct COpened {
    COpened(const Bytes& bytes, int64_t at = 0) : stream(new CTestStream(bytes))
    {
        stream->setPosition(at);
        file = Ref<CChunkFile>(CChunkFile::open(stream.get()));
    }
    Ref<CTestStream> stream;
    Ref<CChunkFile> file;
};

// A container written chunk by chunk, one chunk appended behind a sequence that keeps growing,
// one larger than the disk stream's buffers (the container reads back its header and sizes as it
// writes: a file is opened read-write); the bytes it must end with.
inline const Bytes kBig = patternBytes(100000);
inline void buildExample(IStream* stream)
{
    Ref<CChunkFile> file(CChunkFileWriter::createFile(stream));
    CChunkFileWriter::appendChunk(file.get(), makeChunkId("vers"), "1.0", 3);
    Ref<CChunkIterator> stmp(CChunkFileWriter::appendChunkIterator(file.get(), makeChunkId("STMP")));
    CChunkFileWriter::appendChunk(file.get(), makeChunkId("cmnt"), "hi", 2);
    Ref<CChunkStream> data(CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("data")));
    data->write("hel", 3);
    data->write("lo", 2);
    CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("more"), "xyz", 3);
    data->write("!!", 2);
    CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("big_"), kBig.data(), static_cast<int32_t>(kBig.size()));
    Ref<CChunkIterator> sub(CChunkFileWriter::appendChunkIterator(stmp.get(), makeChunkId("sub_")));
    CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "L", 1);
    CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "M", 1);
    // Let go explicitly: a failed size write-back reaches the caller only this way.
    sub.reset();
    data.reset();
    stmp.reset();
    file.reset();
}
inline Bytes exampleBytes()
{
    return container(chunk("vers", text("1.0")) +
                     chunk("STMP", chunk("data", text("hello!!")) + chunk("more", text("xyz")) + chunk("big_", kBig) +
                                       chunk("sub_", chunk("leaf", text("L")) + chunk("leaf", text("M")))) +
                     chunk("cmnt", text("hi")));
}

// One file in a temporary folder whose path is not ASCII, opened through the file-stream adapter.
class CDiskFile {
public:
    explicit CDiskFile(const Bytes& bytes)
    {
        m_temp.makeFolder(kFolder);
        m_temp.writeFile(kPath, std::string(bytes.begin(), bytes.end()));
    }
    kore::P<kore::IURI> uri() const { return m_temp.uri(kFolder)->resolve("a file.chf"); }
    Ref<CKoreFileStream> open(uint32_t mode) const { return Ref<CKoreFileStream>(new CKoreFileStream(*uri(), mode)); }
    Bytes bytes() const { return text(m_temp.readFile(kPath)); }

private:
    static constexpr const char* kFolder = "Sprach dateien äöü/日本 語";
    static constexpr const char* kPath = "Sprach dateien äöü/日本 語/a file.chf";
    kore_test::CTempFolder m_temp;
};

// Runs `edit` over `original` in memory and in a file on disk; the bytes each ends with.
template <class F>
std::vector<Bytes> editedInMemoryAndOnDisk(const Bytes& original, F&& edit)
{
    Ref<CTestStream> memory(new CTestStream(original));
    edit(memory.get());
    CDiskFile disk(original);
    edit(disk.open(IStreamManager::kReadWrite).get());
    return {memory->getBytes(), disk.bytes()};
}

} // namespace chf_test
