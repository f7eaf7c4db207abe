#include "ChunkTestSupport.h"

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
    const auto grow = [](chf::IStream* stream) {
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
        const struct {
            CChunkIterator* holder;
            uint32_t next;
            Bytes data;
        } steps[] = {{sub.get(), makeChunkId("next"), text("n")},
                     {stmp.get(), makeChunkId("more"), text("xyz")},
                     {file.get(), makeChunkId("cmnt"), text("hi")}};
        for (const auto& step : steps) {
            ASSERT_TRUE(step.holder->nextChunk());
            EXPECT_EQ(step.holder->getChunkId(), step.next);
            EXPECT_EQ(current(step.holder), step.data);
        }
        EXPECT_EQ(readAll(comment.get()), text("hi"));
        // Read again from the file, a grown chunk's old size gives way to its open stream's length.
        ASSERT_TRUE(stmp->findFirstChunk(makeChunkId("sub_")));
        ASSERT_TRUE(stmp->nextChunk());
        EXPECT_EQ(stmp->getChunkId(), makeChunkId("more"));
    };
    // The leaf's size, those of sub_ and STMP and the header's length are each 10 larger.
    for (const Bytes& bytes : editedInMemoryAndOnDisk(container(area(text("hello"))), grow))
        EXPECT_EQ(bytes, container(area(text("hello0123456789"))));
}

TEST(SpacePropagation, EarlierSiblingMovesAnIteratorAndItsRememberedChunkTwice)
{
    const Bytes original = container(chunk("A___", text("aaaa")) + chunk("B___", chunk("x___", text("xx"))));
    auto [stream, file] = openInMemory(original);
    ASSERT_TRUE(file->nextChunk());
    Ref<CChunkIterator> first(file->openChunkIterator());
    ASSERT_TRUE(file->nextChunk());
    Ref<CChunkIterator> second(file->openChunkIterator());
    Ref<CChunkStream> x = openStream(second.get(), "x___"); // at 56, its iterator at 44

    // An iterator passes its own insertion up; the holder hands it down to the other children.
    first->setPosition(0);
    first->insertSpace(5);
    EXPECT_EQ(first->getLength(), 9);
    EXPECT_EQ(file->getLength(), static_cast<int64_t>(original.size()) - 16 + 5);
    EXPECT_EQ(second->getBase(), 49);
    EXPECT_EQ(x->getBase(), 61);
    EXPECT_EQ(readAll(x.get()), text("xx"));
    // The remembered chunk moved with the base and then once more.
    EXPECT_EQ(openStream(second.get())->getBase(), 49 + 5 + 12);
}

TEST(SpacePropagation, RemovingTheCurrentChunkDropsItAndItsDeletedStreamWritesNothing)
{
    auto [stream, file] =
        openInMemory(container(chunk("A___", text("aa")) + chunk("B___", text("bbbb")) + chunk("C___", text("cc"))));
    Ref<CChunkStream> c = openStream(file.get(), "C___");
    Ref<CChunkStream> b = openStream(file.get(), "B___");
    b->setPosition(4);
    b->write("ZZ", 2);

    file->setPosition(14);
    file->removeSpace(12 + 6);
    EXPECT_TRUE(b->isDeleted());
    EXPECT_EQ(file->getChunkId(), 0u);
    ASSERT_TRUE(file->nextChunk()); // the walk goes on with what followed
    EXPECT_EQ(file->getChunkId(), makeChunkId("C___"));
    EXPECT_EQ(readAll(c.get()), text("cc"));

    const int64_t written = stream->bytesWritten;
    b.reset();
    EXPECT_EQ(stream->bytesWritten, written);
    c.reset();
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(chunk("A___", text("aa")) + chunk("C___", text("cc"))));
}

class CSkippingIterator : public CChunkIterator {
public:
    CSkippingIterator(chf::IStream* parent, int64_t base, int64_t length, bool skipAdjacent)
        : CChunkIterator(nullptr, parent, base, length)
    {
        m_skipAdjacent = skipAdjacent;
    }
};

TEST(SpacePropagation, InsertionAtAChunkHeaderMovesItAndGrowsTheChunkBeforeUnlessSkipped)
{
    for (const bool skipAdjacent : {false, true}) {
        const Bytes area = chunk("A___", text("aaaa")) + chunk("B___", text("bb"));
        Ref<CTestStream> stream(new CTestStream(Bytes(8, 0) + area));
        Ref<CChunkIterator> sequence(
            new CSkippingIterator(stream.get(), 8, static_cast<int64_t>(area.size()), skipAdjacent));
        ASSERT_TRUE(sequence->nextChunk());
        Ref<CChunkStream> a(sequence->openChunkStream());
        ASSERT_TRUE(sequence->nextChunk());
        Ref<CChunkStream> b(sequence->openChunkStream());

        sequence->setPosition(16);
        sequence->insertSpace(3);
        EXPECT_EQ(a->getLength(), skipAdjacent ? 4 : 7);
        EXPECT_EQ(b->getBase(), 39);
        EXPECT_EQ(openStream(sequence.get())->getBase(), 39);
        EXPECT_EQ(readAll(b.get()), text("bb"));
    }
}

// How a removal notice moves, shrinks or deletes an open stream at 20..29, and the size a stream
// that survives writes back 8 bytes before its (possibly moved) base.
TEST(SpacePropagation, RemovalNoticesMoveShrinkOrDeleteAStreamThatWritesBackWhatIsLeft)
{
    const struct {
        const char* name;
        int64_t at, count, base, length;
        bool deleted;
    } rows[] = {{"inside", 25, 3, 20, 7, false},
                {"at the start", 20, 3, 20, 7, false},
                {"at the end", 30, 2, 20, 8, false},
                {"behind", 31, 2, 20, 10, false},
                {"wholly before", 15, 3, 17, 10, false},
                // Starting before and ending inside: the base moves by the whole count, the length stays.
                {"partly overlapping", 15, 10, 10, 10, false},
                {"up to the end", 15, 15, 0, 0, true},
                {"beyond the end", 15, 20, 0, 0, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Ref<CTestStream> file(new CTestStream(patternBytes(40)));
        CRecordingHolder holder;
        auto* stream = new CChunkStream(&holder, file.get(), 20, 10);
        stream->onSpaceRemoved(nullptr, row.at, row.count);
        EXPECT_EQ(stream->isDeleted(), row.deleted);
        if (!row.deleted) {
            EXPECT_EQ(stream->getBase(), row.base);
            EXPECT_EQ(stream->getLength(), row.length);
        }
        const Bytes before = file->getBytes();
        stream->release();
        Bytes expected = before;
        if (!row.deleted && row.length != 10) {
            const Bytes size = u64(static_cast<uint64_t>(row.length));
            std::copy(size.begin(), size.end(), expected.begin() + row.base - 8);
        }
        EXPECT_EQ(file->getBytes(), expected);
    }
}

// Removing bytes from a nested sequence inside its current chunk: the iterator passes the removal
// up and down, so the chunk's open stream, the enclosing chunk and the file shrink and write their
// sizes back, both walks go on with the chunk that followed, and a stream behind moves back.
TEST(SpacePropagation, RemovalInANestedChunkShrinksItAndEveryEnclosingSize)
{
    const auto area = [](const Bytes& x) {
        return chunk("A___", text("aa")) + chunk("sub_", chunk("x___", x) + chunk("y___", text("yy"))) +
               chunk("C___", text("cc"));
    };
    auto [stream, file] = openInMemory(container(area(text("123456"))));
    Ref<CChunkStream> c = openStream(file.get(), "C___");
    ASSERT_TRUE(file->findFirstChunk(makeChunkId("sub_")));
    const int64_t subSize = file->getChunkSize();
    Ref<CChunkIterator> sequence(file->openChunkIterator());
    Ref<CChunkStream> x = openStream(sequence.get(), "x___");
    sequence->setPosition(12 + 2);
    sequence->removeSpace(3);
    EXPECT_EQ(x->getLength(), 3);
    EXPECT_EQ(readAll(x.get()), text("126"));
    x.reset();
    EXPECT_EQ(sequence->getChunkSize(), 3);
    ASSERT_TRUE(sequence->nextChunk());
    EXPECT_EQ(sequence->getChunkId(), makeChunkId("y___"));
    sequence.reset();
    EXPECT_EQ(file->getChunkSize(), subSize - 3);
    ASSERT_TRUE(file->nextChunk());
    EXPECT_EQ(file->getChunkId(), makeChunkId("C___"));
    EXPECT_EQ(readAll(c.get()), text("cc"));
    c.reset();
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(area(text("126"))));
}

// A chunk may claim a size up to 12 bytes short of 2^63; streams behind it or inside it are moved
// and grown without wrapping into negative offsets.
TEST(SpacePropagation, OffsetsNearTheLimitStopThereInsteadOfWrapping)
{
    constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
    const Bytes original = container(chunk("A___", text("aaaa")) + chunk("B___", uint64_t(kMax - 56), text("bb")));
    auto [stream, file] = openInMemory(original);
    ASSERT_TRUE(file->nextChunk());
    Ref<CChunkIterator> first(file->openChunkIterator());
    Ref<CChunkStream> huge = openStream(file.get(), "B___");
    ASSERT_EQ(huge->getLength(), kMax - 56);
    ASSERT_FALSE(file->nextChunk());
    Ref<CChunkStream> behind = openStream(file.get());
    ASSERT_EQ(behind->getBase(), kMax);

    first->setPosition(0);
    first->insertSpace(5);
    EXPECT_EQ(huge->getBase(), 49);
    EXPECT_EQ(behind->getBase(), kMax);

    huge->setPosition(0);
    huge->insertSpace(60);
    EXPECT_EQ(huge->getLength(), kMax);
}

} // namespace
