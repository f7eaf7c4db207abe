#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

using namespace chf_test;

namespace {

TEST(BaseStream, InsertSpaceMovesOnlyTheLastBlockOfTheTail)
{
    const Bytes original = sequenceBytes(200000);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->setPosition(0);
    stream->insertSpace(100);

    const size_t kept = 200000 - 65536;
    const Bytes& bytes = stream->getBytes();
    ASSERT_EQ(bytes.size(), 200100u);
    EXPECT_EQ(stream->bytesWritten, 65536);
    // Everything before the moved block, and the 100 bytes it left behind, are untouched.
    EXPECT_EQ(slice(bytes, 0, kept + 100), slice(original, 0, kept + 100));
    EXPECT_EQ(slice(bytes, kept + 100, 200100), slice(original, kept, 200000));
    EXPECT_EQ(stream->getPosition(), 200100);
}

TEST(BaseStream, InsertSpaceInAShortTailMovesAllOfIt)
{
    const Bytes original = sequenceBytes(10);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->setPosition(4);
    stream->insertSpace(0);
    EXPECT_EQ(stream->getBytes(), original);

    // The base class's own extend is enough for an adapter that only writes.
    stream->useBaseExtend = true;
    stream->insertSpace(3);
    EXPECT_EQ(slice(stream->getBytes(), 0, 4), slice(original, 0, 4));
    EXPECT_EQ(slice(stream->getBytes(), 7, 13), slice(original, 4, 10));
    EXPECT_EQ(stream->getLength(), 13);

    // At the end there is nothing to move: the stream only grows, zero-filled.
    stream->setPosition(13);
    stream->insertSpace(5);
    EXPECT_EQ(stream->getBytes().size(), 18u);
    EXPECT_EQ(slice(stream->getBytes(), 13, 18), Bytes(5, 0));
    EXPECT_EQ(stream->getPosition(), 13);
}

TEST(BaseStream, RemoveSpaceMovesTheWholeTailInBlocks)
{
    Bytes original = sequenceBytes(150000);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->setPosition(5);
    stream->removeSpace(10);
    original.erase(original.begin() + 5, original.begin() + 15);
    EXPECT_EQ(stream->getBytes(), original);
}

TEST(BaseStream, RemoveSpaceNearTheEndStillCutsTheFullCount)
{
    const Bytes original = sequenceBytes(10);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->setPosition(8);
    stream->removeSpace(5);
    EXPECT_EQ(stream->getBytes(), slice(original, 0, 5));
}

TEST(BaseStream, RemoveSpaceOnAStreamThatCannotTruncateMovesTheDataThenFails)
{
    const Bytes original = sequenceBytes(10);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->failTruncate = true;
    stream->setPosition(2);
    EXPECT_THROW(stream->removeSpace(3), std::exception);
    EXPECT_EQ(stream->getBytes(), slice(original, 0, 2) + slice(original, 5, 10) + slice(original, 7, 10));
}

} // namespace
