#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using namespace chf_test;
using chf::CChunkFile;
using chf::CChunkStream;
using chf::makeChunkId;

namespace {

Ref<CChunkFile> openBytes(const Bytes& bytes, int64_t at = 0)
{
    Ref<CTestStream> stream(new CTestStream(bytes));
    stream->setPosition(at);
    return Ref<CChunkFile>(CChunkFile::open(stream.get()));
}

// Runs `check` on the bytes opened as a container in memory and, through the adapter, on disk.
template <class F>
void inMemoryAndOnDisk(const Bytes& bytes, F&& check)
{
    check(openBytes(bytes).get());
    CDiskFile disk(bytes);
    check(Ref<CChunkFile>(CChunkFile::open(disk.open(kore::IStreamManager::kRead).get())).get());
}

Bytes current(CChunkFile* file)
{
    return readAll(Ref<CChunkStream>(file->openChunkStream()).get());
}

TEST(ChunkFile, EmptyChunkAreaEndsAtOnce)
{
    // Opened behind 3 bytes of something else: the chunk area starts 16 bytes further.
    Ref<CChunkFile> file = openBytes(text("abc") + container({}), 3);
    EXPECT_EQ(std::memcmp(file->getMagic(), "URESFILE", 9), 0);
    EXPECT_EQ(file->getBase(), 19);
    EXPECT_FALSE(file->nextChunk());
    EXPECT_FALSE(file->nextChunk());
    // Off any chunk, a child is empty and sits 12 bytes behind the current offset.
    Ref<CChunkStream> child(file->openChunkStream());
    EXPECT_EQ(child->getBase(), 31);
    EXPECT_EQ(child->getLength(), 0);
}

TEST(ChunkFile, WalksChunksAndIgnoresAnIncompleteTrailingHeader)
{
    const Bytes area = chunk("vers", text("1.0")) + chunk("none", {}) + chunk("lang", text("de-DE"));
    for (size_t trailing = 0; trailing < 12; ++trailing) {
        Ref<CChunkFile> file = openBytes(container(area + Bytes(trailing, 'x')));
        EXPECT_EQ(dump(file.get()), "vers(1.0) none() lang(de-DE)") << trailing;
        EXPECT_FALSE(file->nextChunk()) << trailing;
    }
}

TEST(ChunkFile, FindChunkSearchesForwardAndFindFirstChunkFromTheStart)
{
    Ref<CChunkFile> file = openBytes(container(chunk("RSID", text("a")) + chunk("cmnt", text("1")) +
                                               chunk("RSID", text("b")) + chunk("cmnt", text("2"))));
    const uint32_t rsid = makeChunkId("RSID");
    ASSERT_TRUE(file->findChunk(rsid));
    EXPECT_EQ(current(file.get()), text("a"));
    ASSERT_TRUE(file->findChunk(rsid));
    EXPECT_EQ(current(file.get()), text("b"));
    EXPECT_FALSE(file->findChunk(rsid));
    for (int twice = 0; twice < 2; ++twice) {
        ASSERT_TRUE(file->findFirstChunk(makeChunkId("cmnt")));
        EXPECT_EQ(current(file.get()), text("1"));
    }
    EXPECT_FALSE(file->findFirstChunk(makeChunkId("rsid"))); // ids are case-sensitive
}

// The disk stream throws on a read past the end, so there a walk that went on would fail loudly.
TEST(ChunkFile, SizesThatWouldNotMoveTheWalkForwardEndIt)
{
    constexpr uint64_t kMax = std::numeric_limits<int64_t>::max();
    const auto evil = [](uint64_t size) {
        return container(chunk("good", text("ok")) + chunk("evil", size, text("pad")) + chunk("late", text("x")));
    };
    const Bytes hostile[] = {
        evil(kMax), // offset + 12 + size overflows
        evil(kMax + 1), // negative as a signed size
        evil(~uint64_t{0}), // -1
        evil(~uint64_t{0} - 11), // -12: the next chunk would be this one again
        evil(~uint64_t{0} - 99), // -100: back to an earlier chunk
        evil(kMax - 40), // fits relative to the area, overflows once the area's base is added
        // Zero bytes behind the header would otherwise read as empty chunks for 2^62 / 12 steps.
        container(chunk("good", {}), uint64_t{1} << 62), container(chunk("good", {}), kMax), // base + length overflows
    };
    for (const Bytes& bytes : hostile) {
        inMemoryAndOnDisk(bytes, [&](CChunkFile* file) {
            ASSERT_TRUE(file->nextChunk());
            EXPECT_FALSE(file->nextChunk()) << &bytes - hostile;
            EXPECT_EQ(file->getChunkId(), 0u);
            EXPECT_FALSE(file->nextChunk());
        });
    }
    // A declared size running past the end of the area is accepted as it stands.
    Ref<CChunkFile> overlong = openBytes(container(chunk("long", 1000, text("abc"))));
    ASSERT_TRUE(overlong->nextChunk());
    EXPECT_EQ(Ref<CChunkStream>(overlong->openChunkStream())->getLength(), 1000);
    EXPECT_FALSE(overlong->nextChunk());
}

} // namespace
