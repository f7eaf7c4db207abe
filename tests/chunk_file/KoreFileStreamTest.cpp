#include "../framework/TempFolder.h"
#include "ChunkTestSupport.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/ChunkId.h"
#include "framework/CDiskStream.h"
#include "framework/CMemoryStream.h"
#include "framework/ISeekableIOStream.h"
#include "framework/IStreamManager.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

using namespace chf_test;
using chf::CChunkFile;
using chf::CChunkFileWriter;
using chf::CChunkIterator;
using chf::CChunkStream;
using chf::CKoreFileStream;
using chf::makeChunkId;
using kore::IStreamManager;

namespace {

// The container's own failures are the runtime's base exception itself, not a framework error.
template <class F> bool raisesPlainException(F&& operation)
{
    try {
        operation();
    } catch (const std::exception& e) {
        return typeid(e) == typeid(std::exception);
    }
    return false;
}

// Every leaf chunk as ("STMP/data", bytes); "STMP" and "sub_" are walked as nested sequences.
using Chunks = std::vector<std::pair<std::string, Bytes>>;

void walk(CChunkIterator* sequence, const std::string& prefix, Chunks& out)
{
    while (sequence->nextChunk()) {
        const uint32_t id = sequence->getChunkId();
        std::string name = prefix;
        for (int i = 0; i < 4; ++i)
            name += static_cast<char>(id >> (8 * i));
        if (id == makeChunkId("STMP") || id == makeChunkId("sub_"))
            walk(Ref<CChunkIterator>(sequence->openChunkIterator()).get(), name + "/", out);
        else
            out.emplace_back(name, readAll(Ref<CChunkStream>(sequence->openChunkStream()).get()));
    }
}

class KoreFileStream : public ::testing::Test {
protected:
    kore_test::CTempFolder temp;
    const std::string kFolder = "Sprach dateien äöü/日本 語";

    void SetUp() override { temp.makeFolder(kFolder); }

    Ref<CKoreFileStream> open(const char* name, uint32_t mode) const
    {
        return Ref<CKoreFileStream>(new CKoreFileStream(*temp.uri(kFolder)->resolve(name), mode));
    }
    void put(const char* name, const Bytes& bytes) const
    {
        temp.writeFile(kFolder + "/" + name, std::string(bytes.begin(), bytes.end()));
    }
    Bytes onDisk(const char* name) const
    {
        const std::string content = temp.readFile(kFolder + "/" + name);
        return Bytes(content.begin(), content.end());
    }
};

TEST_F(KoreFileStream, NestedWriterOutputReadsBackChunkForChunkAfterReopening)
{
    const Bytes big = patternBytes(100000);   // more than the disk stream buffers
    {
        // The container reads back its header and sizes as it writes: read-write on a new file.
        Ref<CKoreFileStream> stream = open("new file.chf", IStreamManager::kReadWrite);
        Ref<CChunkFile> file(CChunkFileWriter::createFile(stream.get()));
        stream.reset();
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("vers"), "1.0", 3);
        Ref<CChunkIterator> stmp(CChunkFileWriter::appendChunkIterator(file.get(), makeChunkId("STMP")));
        CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("data"), big.data(), static_cast<int32_t>(big.size()));
        Ref<CChunkIterator> sub(CChunkFileWriter::appendChunkIterator(stmp.get(), makeChunkId("sub_")));
        // Appended behind the open iterators, which then grow in the middle of the file.
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("cmnt"), "hi", 2);
        CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "L", 1);
        CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "M", 1);
    }
    EXPECT_EQ(onDisk("new file.chf"),
              container(chunk("vers", text("1.0"))
                        + chunk("STMP", chunk("data", big)
                                            + chunk("sub_", chunk("leaf", text("L")) + chunk("leaf", text("M"))))
                        + chunk("cmnt", text("hi"))));

    Ref<CKoreFileStream> stream = open("new file.chf", IStreamManager::kRead);
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    Chunks chunks;
    walk(file.get(), "", chunks);
    const Chunks expected = {{"vers", text("1.0")}, {"STMP/data", big}, {"STMP/sub_/leaf", text("L")},
                             {"STMP/sub_/leaf", text("M")}, {"cmnt", text("hi")}};
    EXPECT_EQ(chunks, expected);
}

TEST_F(KoreFileStream, WalkingAFileReadsItInBufferSizedPieces)
{
    Bytes area;
    const Bytes blob = chunk("blob", patternBytes(100));
    for (int i = 0; i < 2000; ++i)
        area.insert(area.end(), blob.begin(), blob.end());
    put("walk.chf", container(area));   // 224,016 bytes: four disk buffers
    kore::P<kore::IStream> disk = IStreamManager::instance()->openURI(*temp.uri(kFolder)->resolve("walk.chf"),
                                                                       IStreamManager::kRead);
    const auto* counted = dynamic_cast<const kore::CDiskStream*>(disk.get());
    ASSERT_NE(counted, nullptr);
    Ref<CKoreFileStream> stream(new CKoreFileStream(disk));
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    int chunks = 0;
    for (; file->nextChunk(); ++chunks)
        EXPECT_EQ(readAll(Ref<CChunkStream>(file->openChunkStream()).get()), patternBytes(100));
    EXPECT_EQ(chunks, 2000);
    // Seeking from chunk to chunk keeps what the buffer holds.
    EXPECT_EQ(counted->getSystemReadCount(), 4u);
}

TEST_F(KoreFileStream, ChildGrownWhileOpenIsSkippedAndEveryEnclosingSizeOnDiskFollows)
{
    const auto area = [](const Bytes& leaf) {
        return chunk("vers", text("1.0"))
            + chunk("STMP", chunk("sub_", chunk("leaf", leaf) + chunk("next", text("n"))) + chunk("more", text("xyz")))
            + chunk("cmnt", text("hi"));
    };
    put("grow.chf", container(area(text("hello"))));
    {
        Ref<CKoreFileStream> stream = open("grow.chf", IStreamManager::kReadWrite);
        Ref<CChunkFile> file(CChunkFile::open(stream.get()));
        ASSERT_TRUE(file->findChunk(makeChunkId("STMP")));
        Ref<CChunkIterator> stmp(file->openChunkIterator());
        ASSERT_TRUE(stmp->findChunk(makeChunkId("sub_")));
        Ref<CChunkIterator> sub(stmp->openChunkIterator());
        ASSERT_TRUE(sub->findChunk(makeChunkId("leaf")));
        Ref<CChunkStream> leaf(sub->openChunkStream());
        leaf->setPosition(5);
        leaf->write("0123456789", 10);

        // Every holder steps over the grown chunk before any size has reached the file.
        const struct { CChunkIterator* holder; uint32_t next; Bytes data; } steps[] = {
            {sub.get(), makeChunkId("next"), text("n")},
            {stmp.get(), makeChunkId("more"), text("xyz")},
            {file.get(), makeChunkId("cmnt"), text("hi")},
        };
        for (const auto& step : steps) {
            ASSERT_TRUE(step.holder->nextChunk());
            EXPECT_EQ(step.holder->getChunkId(), step.next);
            EXPECT_EQ(readAll(Ref<CChunkStream>(step.holder->openChunkStream()).get()), step.data);
        }
    }
    // The leaf's size, those of sub_ and STMP and the header's length are each 10 larger.
    EXPECT_EQ(onDisk("grow.chf"), container(area(text("hello0123456789"))));
}

TEST_F(KoreFileStream, InsertSpaceOnAFileMovesOnlyTheLastBlockOfTheTail)
{
    const Bytes large = patternBytes(200000);
    const Bytes small = patternBytes(10000);
    put("large.bin", large);
    put("small.bin", small);
    {
        Ref<CKoreFileStream> stream = open("large.bin", IStreamManager::kReadWrite);
        stream->setPosition(0);
        stream->insertSpace(100);
    }
    {
        // A tail shorter than the disk stream's buffer moves through that buffer.
        Ref<CKoreFileStream> stream = open("small.bin", IStreamManager::kReadWrite);
        stream->setPosition(9000);
        stream->insertSpace(100);
    }
    // Nothing before the moved block changed, the 100 bytes it left behind included.
    const size_t kept = 200000 - 65536;
    EXPECT_EQ(onDisk("large.bin"), slice(large, 0, kept + 100) + slice(large, kept, 200000));
    EXPECT_EQ(onDisk("small.bin"), slice(small, 0, 9100) + slice(small, 9000, 10000));
}

TEST_F(KoreFileStream, RemoveSpaceOnAFileMovesTheDataThenRaises)
{
    const Bytes original = patternBytes(150000);   // the tail moves in three pieces
    put("remove.bin", original);
    {
        Ref<CKoreFileStream> stream = open("remove.bin", IStreamManager::kReadWrite);
        stream->setPosition(5);
        EXPECT_TRUE(raisesPlainException([&] { stream->removeSpace(10); }));
    }
    // Files are not shortened: the old last 10 bytes stay behind the moved tail.
    EXPECT_EQ(onDisk("remove.bin"), slice(original, 0, 5) + slice(original, 15, 150000) + slice(original, 149990, 150000));
}

TEST_F(KoreFileStream, ReadOnlyFilesRefuseWritesAndWriteOnlyFilesReadNothingSilently)
{
    put("modes.bin", text("URESFILE"));
    {
        Ref<CKoreFileStream> in = open("modes.bin", IStreamManager::kRead);
        in->setPosition(4);   // a stream that reads can seek
        EXPECT_TRUE(raisesPlainException([&] { in->write("x", 1); }));
        EXPECT_TRUE(raisesPlainException([&] { in->setPosition(2); in->insertSpace(1); }));
        EXPECT_TRUE(raisesPlainException([&] { in->truncate(4); }));
    }
    EXPECT_EQ(onDisk("modes.bin"), text("URESFILE"));
    {
        Ref<CKoreFileStream> out = open("modes.bin", IStreamManager::kWrite);
        out->write("abc", 3);
        out->setPosition(0);
        char buffer[3] = {'?', '?', '?'};
        EXPECT_EQ(out->read(buffer, 3), 0);
        EXPECT_EQ(out->read(buffer, -1), 0);
        EXPECT_EQ(std::string(buffer, 3), "???");
        EXPECT_EQ(out->getPosition(), 0);
    }
    EXPECT_EQ(onDisk("modes.bin"), text("abc"));
}

// A framework stream that reads and writes but denies every seekable interface.
class CUnseekableStream : public kore::CMemoryStream {
public:
    using CMemoryStream::CMemoryStream;
    bool castQuery(const std::type_info& target, const kore::IBase*& redirect,
                   const kore::CCastCandidate*& candidates) const override
    {
        if (target == typeid(kore::ISeekable) || target == typeid(kore::ISeekableInStream)
            || target == typeid(kore::ISeekableIOStream) || target == typeid(kore::ISeekableOutStream))
            return false;
        return CMemoryStream::castQuery(target, redirect, candidates);
    }
};

TEST(KoreFileStreamOverAnyStream, StreamThatCannotSeekRefusesSeeksButReadsAndWrites)
{
    Ref<CKoreFileStream> stream(new CKoreFileStream(kore::make<CUnseekableStream>("abcdef", 6)));
    EXPECT_TRUE(raisesPlainException([&] { stream->setPosition(0); }));
    char buffer[3] = {};
    stream->read(buffer, 3);
    EXPECT_EQ(std::string(buffer, 3), "abc");
    stream->write("XY", 2);
    EXPECT_EQ(stream->getPosition(), 5);
    EXPECT_TRUE(raisesPlainException([&] { stream->insertSpace(1); }));
}

TEST_F(KoreFileStream, ExtendWritesZerosKeepsThePositionAndRefusesMoreThan4GiBMinusOne)
{
    put("extend.bin", text("abc"));
    {
        Ref<CKoreFileStream> stream = open("extend.bin", IStreamManager::kReadWrite);
        stream->setPosition(1);
        EXPECT_TRUE(raisesPlainException([&] { stream->extend(3 + 0x100000000LL); }));
        EXPECT_TRUE(raisesPlainException([&] { stream->extend(2); }));   // cannot shrink
        EXPECT_EQ(stream->getLength(), 3);
        stream->extend(8);
        EXPECT_EQ(stream->getLength(), 8);
        EXPECT_EQ(stream->getPosition(), 1);
    }
    EXPECT_EQ(onDisk("extend.bin"), text("abc") + Bytes(5, 0));
}

TEST_F(KoreFileStream, HostileSizesEndTheWalkWithoutReadingPastTheFile)
{
    // The disk stream throws on a read past the end, so a walk that went on would fail loudly.
    constexpr uint64_t kMax = std::numeric_limits<int64_t>::max();
    const Bytes files[] = {
        container(chunk("good", text("ok")) + chunk("evil", kMax, text("pad")) + chunk("late", text("x"))),
        container(chunk("good", text("ok")) + chunk("evil", ~uint64_t{0}, text("pad")) + chunk("late", text("x"))),
        container(chunk("good", text("ok")), kMax),   // a chunk area far longer than the file
    };
    for (const Bytes& bytes : files) {
        put("hostile.chf", bytes);
        Ref<CKoreFileStream> stream = open("hostile.chf", IStreamManager::kRead);
        Ref<CChunkFile> file(CChunkFile::open(stream.get()));
        ASSERT_TRUE(file->nextChunk());
        EXPECT_FALSE(file->nextChunk());
        EXPECT_FALSE(file->nextChunk());
    }
}

} // namespace
