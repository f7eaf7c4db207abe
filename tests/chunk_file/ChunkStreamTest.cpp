#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

using namespace chf_test;
using chf::CChunkStream;

namespace {

// A chunk whose data lies at 10..15 of a 30-byte file; its size field is at 2..9.
struct ChunkStreamTest : ::testing::Test {
    Bytes original = patternBytes(30);
    Ref<CTestStream> file{new CTestStream(original)};
    CRecordingHolder holder;
    CChunkStream* stream = new CChunkStream(&holder, file.get(), 10, 6);
};

TEST_F(ChunkStreamTest, WritePastTheEndGrowsByTheOverhangTellsTheHolderAndWritesTheSizeBack)
{
    stream->setPosition(6);
    stream->write("", 0);
    EXPECT_TRUE(holder.notices.empty());
    EXPECT_EQ(file->getBytes(), original);

    const Bytes payload{0xA1, 0xA2, 0xA3, 0xA4, 0xA5};
    stream->setPosition(4);
    stream->write(payload.data(), 5);
    ASSERT_EQ(holder.notices.size(), 1u);
    const auto notice = holder.notices[0];
    EXPECT_TRUE(notice.inserted && notice.origin == stream && notice.at == 16 && notice.count == 3);
    EXPECT_EQ(stream->getLength(), 9);
    EXPECT_EQ(file->getBytes(), slice(original, 0, 14) + payload + slice(original, 16, 30));

    // Plain chunk streams grow by writing only: their own insertions stay untold.
    stream->insertSpace(2);
    EXPECT_EQ(holder.notices.size(), 1u);
    EXPECT_EQ(stream->getLength(), 11);

    CChunkStream* const released = stream;
    stream->release();
    EXPECT_EQ(slice(file->getBytes(), 2, 10), u64(11));
    EXPECT_EQ(holder.refs, 1u);
    EXPECT_EQ(holder.detached, std::vector<CChunkStream*>{released});
}

TEST_F(ChunkStreamTest, ReadRunsPastTheChunkButThePositionStopsAtItsEnd)
{
    Bytes buffer(10);
    stream->setPosition(2);
    EXPECT_EQ(stream->read(buffer.data(), 10), 6); // the result is the length, not a count
    EXPECT_EQ(buffer, slice(original, 12, 22));
    EXPECT_EQ(stream->getPosition(), 6);
    stream->release();
    EXPECT_EQ(file->bytesWritten, 0);
}

TEST_F(ChunkStreamTest, FailingWriteBackReachesTheCallerAndStillDropsEveryReference)
{
    stream->setPosition(6);
    stream->write("xy", 2);
    file->failWrite = true;
    EXPECT_THROW(stream->release(), std::exception);
    EXPECT_EQ(holder.refs, 1u);
    EXPECT_EQ(holder.detached.size(), 1u);
    EXPECT_EQ(file->addRef(), 2u);
    file->release();
}

} // namespace
