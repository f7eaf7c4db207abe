#include "ChunkTestSupport.h"

#include "framework/io/CDiskStream.h"
#include "framework/io/CMemoryStream.h"
#include "framework/io/ISeekableIOStream.h"

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

using namespace chf_test;
using chf::CChunkFile;
using chf::CChunkStream;
using chf::CKoreFileStream;
using kore::IStreamManager;

namespace {

TEST(KoreFileStream, WalkingAFileReadsItInBufferSizedPieces)
{
    Bytes area;
    const Bytes blob = chunk("blob", patternBytes(100));
    for (int i = 0; i < 2000; ++i)
        area.insert(area.end(), blob.begin(), blob.end());
    CDiskFile disk(container(area)); // 224,016 bytes: four disk buffers
    kore::P<kore::IStream> opened = IStreamManager::instance()->openURI(*disk.uri(), IStreamManager::kRead);
    const auto* counted = dynamic_cast<const kore::CDiskStream*>(opened.get());
    ASSERT_NE(counted, nullptr);
    Ref<CChunkFile> file(CChunkFile::open(Ref<CKoreFileStream>(new CKoreFileStream(opened)).get()));
    int chunks = 0;
    for (; file->nextChunk(); ++chunks)
        EXPECT_EQ(readAll(Ref<CChunkStream>(file->openChunkStream()).get()), patternBytes(100));
    EXPECT_EQ(chunks, 2000);
    // Seeking from chunk to chunk keeps what the buffer holds.
    EXPECT_EQ(counted->getSystemReadCount(), 4u);
}

TEST(KoreFileStream, ReadOnlyFilesRefuseWritesAndWriteOnlyFilesReadNothingSilently)
{
    CDiskFile disk(text("URESFILE"));
    {
        Ref<CKoreFileStream> in = disk.open(IStreamManager::kRead);
        in->setPosition(4); // a stream that reads can seek
        EXPECT_TRUE(raisesPlainException([&] { in->write("x", 1); }));
        EXPECT_TRUE(raisesPlainException([&] {
            in->setPosition(2);
            in->insertSpace(1);
        }));
        EXPECT_TRUE(raisesPlainException([&] { in->truncate(4); }));
    }
    EXPECT_EQ(disk.bytes(), text("URESFILE"));
    {
        Ref<CKoreFileStream> out = disk.open(IStreamManager::kWrite);
        out->write("abc", 3);
        out->setPosition(0);
        char buffer[3] = {'?', '?', '?'};
        EXPECT_EQ(out->read(buffer, 3), 0);
        EXPECT_EQ(out->read(buffer, -1), 0);
        EXPECT_EQ(std::string(buffer, 3), "???");
        EXPECT_EQ(out->getPosition(), 0);
    }
    EXPECT_EQ(disk.bytes(), text("abc"));
}

// A framework stream that reads and writes but denies every seekable interface.
class CUnseekableStream : public kore::CMemoryStream {
public:
    using CMemoryStream::CMemoryStream;
    bool castQuery(const std::type_info& target, const kore::IBase*& redirect,
                   const kore::CCastCandidate*& candidates) const override
    {
        if (target == typeid(kore::ISeekable) || target == typeid(kore::ISeekableInStream) ||
            target == typeid(kore::ISeekableIOStream) || target == typeid(kore::ISeekableOutStream))
            return false;
        return CMemoryStream::castQuery(target, redirect, candidates);
    }
};

TEST(KoreFileStream, StreamThatCannotSeekRefusesSeeksButReadsAndWrites)
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

TEST(KoreFileStream, ExtendWritesZerosKeepsThePositionAndRefusesMoreThan4GiBMinusOne)
{
    CDiskFile disk(text("abc"));
    {
        Ref<CKoreFileStream> stream = disk.open(IStreamManager::kReadWrite);
        stream->setPosition(1);
        EXPECT_TRUE(raisesPlainException([&] { stream->extend(3 + 0x100000000LL); }));
        EXPECT_TRUE(raisesPlainException([&] { stream->extend(2); })); // cannot shrink
        EXPECT_EQ(stream->getLength(), 3);
        stream->extend(8);
        EXPECT_EQ(stream->getLength(), 8);
        EXPECT_EQ(stream->getPosition(), 1);
    }
    EXPECT_EQ(disk.bytes(), text("abc") + Bytes(5, 0));
}

} // namespace
