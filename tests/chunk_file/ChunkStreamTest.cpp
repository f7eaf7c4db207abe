#include "ChunkTestSupport.h"

#include "chunk_file/CChunkStream.h"

#include <gtest/gtest.h>

using namespace chf_test;
using chf::CChunkStream;

namespace {

// A chunk whose data lies at 10..15 of a 30-byte file; its size field is at 2..9.
struct ChunkStreamTest : ::testing::Test {
    Bytes original = sequenceBytes(30);
    Ref<CTestStream> file{new CTestStream(original)};
    CRecordingHolder holder;
    CChunkStream* stream = new CChunkStream(&holder, file.get(), 10, 6);
};

TEST_F(ChunkStreamTest, WritePastTheEndGrowsByTheOverhangAndTellsTheHolder)
{
    stream->setPosition(6);
    stream->write("", 0);
    EXPECT_TRUE(holder.notices.empty());
    EXPECT_EQ(stream->getLength(), 6);
    EXPECT_EQ(file->getBytes(), original);

    const Bytes payload{0xA1, 0xA2, 0xA3, 0xA4, 0xA5};
    stream->setPosition(4);
    stream->write(payload.data(), 5);
    ASSERT_EQ(holder.notices.size(), 1u);
    EXPECT_TRUE(holder.notices[0].inserted);
    EXPECT_EQ(holder.notices[0].origin, stream);
    EXPECT_EQ(holder.notices[0].at, 16);
    EXPECT_EQ(holder.notices[0].count, 3);
    EXPECT_EQ(stream->getLength(), 9);
    EXPECT_EQ(stream->getPosition(), 9);
    EXPECT_EQ(file->getBytes(), slice(original, 0, 14) + payload + slice(original, 16, 30));

    CChunkStream* const released = stream;
    stream->release();
    EXPECT_EQ(getU64(file->getBytes(), 2), 9u);
    EXPECT_EQ(holder.refs, 1u);
    EXPECT_EQ(holder.detached, std::vector<CChunkStream*>{released});
}

TEST_F(ChunkStreamTest, ReadRunsPastTheChunkButThePositionStopsAtItsEnd)
{
    Bytes buffer(10);
    stream->setPosition(2);
    EXPECT_EQ(stream->read(buffer.data(), 10), 6);   // the result is the length, not a count
    EXPECT_EQ(buffer, slice(original, 12, 22));
    EXPECT_EQ(stream->getPosition(), 6);
    stream->release();
    EXPECT_EQ(file->bytesWritten, 0);
}

TEST_F(ChunkStreamTest, OwnInsertAndRemoveResizeOnlyTheStreamItself)
{
    stream->setPosition(2);
    stream->insertSpace(4);
    EXPECT_EQ(stream->getLength(), 10);
    EXPECT_EQ(file->getLength(), 34);
    stream->removeSpace(4);
    EXPECT_EQ(stream->getLength(), 6);
    EXPECT_TRUE(holder.notices.empty());
    stream->release();
    EXPECT_EQ(file->getBytes(), original);
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

TEST_F(ChunkStreamTest, SpaceNoticesShiftOrResizeByWhereTheyLand)
{
    struct Case {
        bool inserted;
        int64_t at, count;
        int64_t base, length;
        bool deleted;
    };
    const Case cases[] = {
        {true, 9, 5, 15, 6, false},    // before: moves
        {true, 10, 5, 10, 11, false},  // at the first byte: grows
        {true, 16, 5, 10, 11, false},  // at the end: grows
        {true, 17, 5, 10, 6, false},   // behind: untouched
        {false, 10, 2, 10, 4, false},
        {false, 16, 2, 10, 4, false},
        {false, 17, 2, 10, 6, false},
        {false, 5, 4, 6, 6, false},    // ends before the end: moves
        {false, 5, 11, 10, 6, true},   // reaches the end: the region is gone
    };
    stream->release();
    for (const Case& c : cases) {
        CChunkStream* s = new CChunkStream(nullptr, file.get(), 10, 6);
        if (c.inserted)
            s->onSpaceInserted(nullptr, c.at, c.count);
        else
            s->onSpaceRemoved(nullptr, c.at, c.count);
        EXPECT_EQ(s->getBase(), c.base) << c.at << " " << c.count;
        EXPECT_EQ(s->getLength(), c.length) << c.at << " " << c.count;
        EXPECT_EQ(s->isDeleted(), c.deleted) << c.at << " " << c.count;
        s->release();
    }
}

} // namespace
