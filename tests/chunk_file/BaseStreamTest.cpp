#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

using namespace chf_test;

namespace {

TEST(BaseStream, InsertSpaceMovesOnlyTheLastBlockOfTheTail)
{
    const Bytes original = patternBytes(200000);
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
}

TEST(BaseStream, RemoveSpaceMovesTheWholeTailThenCutsTheFullCountOffTheEnd)
{
    Bytes expected = patternBytes(150000);
    Ref<CTestStream> stream(new CTestStream(expected));
    stream->setPosition(5);
    stream->removeSpace(10);
    expected.erase(expected.begin() + 5, expected.begin() + 15);
    EXPECT_EQ(stream->getBytes(), expected);

    // Only 2 bytes follow the position, yet 5 go.
    stream->setPosition(stream->getLength() - 2);
    stream->removeSpace(5);
    EXPECT_EQ(stream->getBytes(), slice(expected, 0, expected.size() - 5));
}

TEST(BaseStream, RemoveSpaceOnAStreamThatCannotTruncateMovesTheDataThenFails)
{
    const Bytes original = patternBytes(10);
    Ref<CTestStream> stream(new CTestStream(original));
    stream->failTruncate = true;
    stream->setPosition(2);
    EXPECT_THROW(stream->removeSpace(3), std::exception);
    EXPECT_EQ(stream->getBytes(), slice(original, 0, 2) + slice(original, 5, 10) + slice(original, 7, 10));
}

} // namespace
