#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

using namespace chf_test;

namespace {

TEST(BaseStream, InsertSpaceMovesOnlyTheLastBlockOfTheTail)
{
    // The second tail is shorter than the disk stream's buffer and moves through that buffer.
    for (const auto& [size, at] : {std::pair<int64_t, int64_t>{200000, 0}, {10000, 9000}}) {
        const Bytes original = patternBytes(size_t(size));
        const auto moved = size_t(std::max(size - 65536, at));
        const auto edit = [at = at](chf::CBaseStream* stream) {
            stream->setPosition(at);
            stream->insertSpace(100);
        };
        // Nothing before the moved block changed, the 100 bytes it left behind included.
        for (const Bytes& bytes : editedInMemoryAndOnDisk(original, edit))
            EXPECT_EQ(bytes, slice(original, 0, moved + 100) + slice(original, moved, size_t(size))) << size;
    }
}

TEST(BaseStream, RemoveSpaceMovesTheWholeTailThenCutsTheFullCountOffTheEnd)
{
    Bytes expected = patternBytes(150000); // the tail moves in three pieces
    Ref<CTestStream> stream(new CTestStream(expected));
    stream->setPosition(5);
    stream->removeSpace(10);
    expected.erase(expected.begin() + 5, expected.begin() + 15);
    EXPECT_EQ(stream->getBytes(), expected);

    // Only 2 bytes follow the position, yet 5 go.
    stream->setPosition(stream->getLength() - 2);
    stream->removeSpace(5);
    EXPECT_EQ(stream->getBytes(), slice(expected, 0, expected.size() - 5));

    // Nor does anything follow a position at the 64-bit limit (a chunk claimed a size up there).
    stream->setPosition(std::numeric_limits<int64_t>::max() - 1);
    stream->removeSpace(5);
    EXPECT_EQ(stream->getBytes(), slice(expected, 0, expected.size() - 10));
}

TEST(BaseStream, RemoveSpaceOnAStreamThatCannotBeShortenedMovesTheDataThenRaises)
{
    // Files are never shortened: the old last 10 bytes stay behind the moved tail.
    const Bytes original = patternBytes(150000);
    const auto edit = [](chf::CBaseStream* stream) {
        if (auto* memory = dynamic_cast<CTestStream*>(stream))
            memory->failTruncate = true;
        stream->setPosition(5);
        EXPECT_TRUE(raisesPlainException([&] { stream->removeSpace(10); }));
    };
    for (const Bytes& bytes : editedInMemoryAndOnDisk(original, edit))
        EXPECT_EQ(bytes, slice(original, 0, 5) + slice(original, 15, 150000) + slice(original, 149990, 150000));
}

} // namespace
