// How space inserted or removed in one chunk reaches the sequences that hold it, their open
// children and the sizes written back.
#include "ChunkTestSupport.h"

#include <algorithm>
#include <limits>

using namespace chf_test;

namespace {

TEST(SpacePropagation, ChildGrownWhileOpenIsSkippedAndEveryEnclosingSizeFollows)
{
    const auto area = [](const Bytes& leaf) {
        return chunk("vers", text("1.0")) +
               chunk("STMP",
                     chunk("sub_", chunk("leaf", leaf) + chunk("next", text("n"))) + chunk("more", text("xyz"))) +
               chunk("cmnt", text("hi"));
    };
    const auto grow = [](IStream* stream) {
        Ref<CChunkFile> file(CChunkFile::open(stream));
        Ref<CChunkStream> comment = openStream(file.get(), "cmnt"); // lies behind the growth
        ASSERT_TRUE(file->findFirstChunk(makeChunkId("STMP")));
        Ref<CChunkIterator> stmp(file->openChunkIterator());
        ASSERT_TRUE(stmp->findChunk(makeChunkId("sub_")));
        Ref<CChunkIterator> sub(stmp->openChunkIterator());
        Ref<CChunkStream> leaf = openStream(sub.get(), "leaf");
        leaf->setPosition(5);
        leaf->write("0123456789", 10);

        // Every holder steps over the grown chunk before any size has been written back.
        const std::pair<CChunkIterator*, std::string> steps[] = {
            {sub.get(), "next(n)"}, {stmp.get(), "more(xyz)"}, {file.get(), "cmnt(hi)"}};
        for (const auto& [holder, next] : steps)
            EXPECT_EQ(holder->nextChunk() ? describe(holder) : "", next);
        EXPECT_EQ(readAll(comment.get()), text("hi"));
        // Read again from the file, a grown chunk's old size gives way to its open stream's length.
        ASSERT_TRUE(stmp->findFirstChunk(makeChunkId("sub_")) && stmp->nextChunk());
        EXPECT_EQ(describe(stmp.get()), "more(xyz)");
    };
    // The leaf's size, those of sub_ and STMP and the header's length are each 10 larger.
    for (const Bytes& bytes : editedInMemoryAndOnDisk(container(area(text("hello"))), grow))
        EXPECT_EQ(bytes, container(area(text("hello0123456789"))));
}

// An iterator passes its own insertion up; the holder hands it down to the other children, and a
// sibling's remembered chunk moves with its base and then once more. Offsets near the 64-bit limit
// (a chunk may claim a size up to 12 bytes short of 2^63) stop there instead of wrapping.
TEST(SpacePropagation, EarlierSiblingMovesTheChunksBehindItUpToTheLimit)
{
    constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
    for (const bool huge : {false, true}) {
        SCOPED_TRACE(huge ? "huge" : "nested");
        const Bytes original =
            container(chunk("A___", text("aaaa")) +
                      (huge ? chunk("B___", kMax - 56, text("bb")) : chunk("B___", chunk("x___", text("xx")))));
        auto [stream, file] = COpened(original);
        Ref<CChunkIterator> first(file->nextChunk() ? file->openChunkIterator() : nullptr);
        Ref<CChunkIterator> second(file->nextChunk() ? file->openChunkIterator() : nullptr);
        Ref<CChunkStream> inner = huge ? openStream(file.get()) : openStream(second.get(), "x___"); // at 56
        ASSERT_EQ(inner->getLength(), huge ? kMax - 56 : 2);
        ASSERT_EQ(file->nextChunk(), false);
        Ref<CChunkStream> behind = openStream(file.get());
        ASSERT_EQ(behind->getBase(), huge ? kMax : int64_t(original.size()) + 12);

        first->setPosition(0);
        first->insertSpace(5);
        EXPECT_EQ(first->getLength(), 9);
        EXPECT_EQ(file->getLength(), static_cast<int64_t>(original.size()) - 16 + 5);
        EXPECT_EQ((std::vector{second->getBase(), inner->getBase(), behind->getBase()}),
                  (std::vector<int64_t>{49, huge ? 49 : 61, huge ? kMax : int64_t(original.size()) + 17}));
        if (huge) {
            inner->setPosition(0);
            inner->insertSpace(60);
            EXPECT_EQ(inner->getLength(), kMax);
        } else {
            EXPECT_EQ(readAll(inner.get()), text("xx"));
            EXPECT_EQ(openStream(second.get())->getBase(), 49 + 5 + 12);
        }
    }
}

// A chunk just before the insertion point grows (the flag that would make it skip the notice is
// set by nothing in this library); the chunk at it moves.
TEST(SpacePropagation, InsertionAtAChunkHeaderMovesItAndGrowsTheChunkBefore)
{
    const Bytes area = chunk("A___", text("aaaa")) + chunk("B___", text("bb"));
    Ref<CTestStream> stream(new CTestStream(Bytes(8, 0) + area));
    Ref<CChunkIterator> sequence(new CChunkIterator(nullptr, stream.get(), 8, static_cast<int64_t>(area.size())));
    Ref<CChunkStream> a = openStream(sequence.get(), "A___");
    ASSERT_TRUE(sequence->nextChunk());
    Ref<CChunkStream> b = openStream(sequence.get());
    sequence->setPosition(16);
    sequence->insertSpace(3);
    EXPECT_EQ(a->getLength(), 7);
    EXPECT_EQ(b->getBase(), 39);
    EXPECT_EQ(openStream(sequence.get())->getBase(), 39);
    EXPECT_EQ(readAll(b.get()), text("bb"));
}

// How a removal notice moves, shrinks or deletes an open stream at 20..29, and the size a stream
// that survives writes back 8 bytes before its (possibly moved) base.
TEST(SpacePropagation, RemovalNoticesMoveShrinkOrDeleteAStreamThatWritesBackWhatIsLeft)
{
    const struct {
        const char* name;
        int64_t at, count, base, length;
    } rows[] = {{"inside", 25, 3, 20, 7},
                {"at the start", 20, 3, 20, 7},
                {"at the end", 30, 2, 20, 8},
                {"behind", 31, 2, 20, 10},
                {"wholly before", 15, 3, 17, 10},
                // Starting before and ending inside: the base moves by the whole count, the length stays.
                {"partly overlapping", 15, 10, 10, 10},
                {"up to the end (deleted)", 15, 15, 0, 0},
                {"beyond the end (deleted)", 15, 20, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Ref<CTestStream> file(new CTestStream(patternBytes(40)));
        CRecordingHolder holder;
        auto* stream = new CChunkStream(&holder, file.get(), 20, 10);
        stream->onSpaceRemoved(nullptr, row.at, row.count);
        const bool deleted = row.length == 0;
        EXPECT_EQ(stream->isDeleted(), deleted);
        EXPECT_TRUE(deleted || std::pair(stream->getBase(), stream->getLength()) == std::pair(row.base, row.length))
            << stream->getBase() << ", " << stream->getLength();
        Bytes expected = file->getBytes();
        if (!deleted && row.length != 10)
            std::ranges::copy(u64(uint64_t(row.length)), expected.begin() + row.base - 8);
        stream->release();
        EXPECT_EQ(file->getBytes(), expected);
    }
}

// Removing the current chunk drops it (its stream is deleted and writes nothing); removing bytes
// inside a nested sequence's current chunk passes up and down, so the chunk's open stream, the
// enclosing chunk and the file shrink and write their sizes back. Both walks go on with the chunk
// that followed, and a stream behind moves back.
TEST(SpacePropagation, RemovalDropsOrShrinksTheCurrentChunkAndEveryEnclosingSize)
{
    auto [stream, file] =
        COpened(container(chunk("A___", text("aa")) + chunk("B___", text("bbbb")) + chunk("C___", text("cc"))));
    Ref<CChunkStream> c = openStream(file.get(), "C___");
    Ref<CChunkStream> b = openStream(file.get(), "B___");
    b->setPosition(4);
    b->write("ZZ", 2);
    file->setPosition(14);
    file->removeSpace(12 + 6);
    EXPECT_TRUE(b->isDeleted());
    EXPECT_EQ(file->getChunkId(), 0u);
    EXPECT_TRUE(file->nextChunk() && file->getChunkId() == makeChunkId("C___"));
    EXPECT_EQ(readAll(c.get()), text("cc"));
    const int64_t written = stream->bytesWritten;
    b.reset();
    EXPECT_EQ(stream->bytesWritten, written);
    c.reset();
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(chunk("A___", text("aa")) + chunk("C___", text("cc"))));

    const auto area = [](const Bytes& x) {
        return chunk("A___", text("aa")) + chunk("sub_", chunk("x___", x) + chunk("y___", text("yy"))) +
               chunk("C___", text("cc"));
    };
    auto [nestedStream, nestedFile] = COpened(container(area(text("123456"))));
    c = openStream(nestedFile.get(), "C___");
    ASSERT_TRUE(nestedFile->findFirstChunk(makeChunkId("sub_")));
    const int64_t subSize = nestedFile->getChunkSize();
    Ref<CChunkIterator> sequence(nestedFile->openChunkIterator());
    Ref<CChunkStream> x = openStream(sequence.get(), "x___");
    sequence->setPosition(12 + 2);
    sequence->removeSpace(3);
    EXPECT_EQ(readAll(x.get()), text("126"));
    x.reset();
    EXPECT_EQ(sequence->getChunkSize(), 3);
    EXPECT_TRUE(sequence->nextChunk() && sequence->getChunkId() == makeChunkId("y___"));
    sequence.reset();
    EXPECT_EQ(nestedFile->getChunkSize(), subSize - 3);
    EXPECT_TRUE(nestedFile->nextChunk() && nestedFile->getChunkId() == makeChunkId("C___"));
    EXPECT_EQ(readAll(c.get()), text("cc"));
    c.reset();
    nestedFile.reset();
    EXPECT_EQ(nestedStream->getBytes(), container(area(text("126"))));
}

} // namespace
