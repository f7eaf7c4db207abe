#include "ChunkTestSupport.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/ChunkId.h"

#include <gtest/gtest.h>

using namespace chf_test;
using chf::CChunkFile;
using chf::CChunkIterator;
using chf::CChunkStream;
using chf::makeChunkId;

namespace {

TEST(SpacePropagation, ChildGrownWhileOpenIsSkippedAndEveryEnclosingSizeFollows)
{
    const auto area = [](const Bytes& data) {
        return chunk("vers", text("1.0"))
            + chunk("STMP", chunk("data", data) + chunk("more", text("xyz")))
            + chunk("cmnt", text("hi"));
    };
    Ref<CTestStream> stream(new CTestStream(container(area(text("hello")))));
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    ASSERT_TRUE(file->findChunk(makeChunkId("cmnt")));
    Ref<CChunkStream> comment(file->openChunkStream());
    ASSERT_TRUE(file->findFirstChunk(makeChunkId("STMP")));
    Ref<CChunkIterator> stmp(file->openChunkIterator());
    ASSERT_TRUE(stmp->findFirstChunk(makeChunkId("data")));
    Ref<CChunkStream> data(stmp->openChunkStream());

    data->setPosition(5);
    data->write("0123456789", 10);

    // Nothing is written back yet: both walks take the grown size from the open streams.
    ASSERT_TRUE(stmp->nextChunk());
    EXPECT_EQ(stmp->getChunkId(), makeChunkId("more"));
    Ref<CChunkStream> more(stmp->openChunkStream());
    EXPECT_EQ(readAll(more.get()), text("xyz"));
    ASSERT_TRUE(file->nextChunk());
    EXPECT_EQ(file->getChunkId(), makeChunkId("cmnt"));
    EXPECT_EQ(readAll(comment.get()), text("hi"));

    more.reset();
    data.reset();
    stmp.reset();
    comment.reset();
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(area(text("hello0123456789"))));
}

TEST(SpacePropagation, EarlierSiblingMovesAnIteratorAndItsRememberedChunkTwice)
{
    const Bytes original = container(chunk("A___", text("aaaa")) + chunk("B___", chunk("x___", text("xx"))));
    Ref<CTestStream> stream(new CTestStream(original));
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    ASSERT_TRUE(file->nextChunk());
    Ref<CChunkIterator> first(file->openChunkIterator());
    ASSERT_TRUE(file->nextChunk());
    Ref<CChunkIterator> second(file->openChunkIterator());
    ASSERT_TRUE(second->nextChunk());
    Ref<CChunkStream> x(second->openChunkStream());   // at 56, its iterator at 44

    // An iterator passes its own insertion up; the holder hands it down to the other children.
    first->setPosition(0);
    first->insertSpace(5);
    EXPECT_EQ(first->getLength(), 9);
    EXPECT_EQ(file->getLength(), static_cast<int64_t>(original.size()) - 16 + 5);
    EXPECT_EQ(second->getBase(), 49);
    EXPECT_EQ(x->getBase(), 61);
    EXPECT_EQ(readAll(x.get()), text("xx"));
    // The remembered chunk moved with the base and then once more.
    EXPECT_EQ(Ref<CChunkStream>(second->openChunkStream())->getBase(), 49 + 5 + 12);
}

TEST(SpacePropagation, RemovingTheCurrentChunkDropsItAndItsDeletedStreamWritesNothing)
{
    Ref<CTestStream> stream(new CTestStream(container(chunk("A___", text("aa")) + chunk("B___", text("bbbb"))
                                                      + chunk("C___", text("cc")))));
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    ASSERT_TRUE(file->findChunk(makeChunkId("C___")));
    Ref<CChunkStream> c(file->openChunkStream());
    ASSERT_TRUE(file->findFirstChunk(makeChunkId("B___")));
    Ref<CChunkStream> b(file->openChunkStream());
    b->setPosition(4);
    b->write("ZZ", 2);

    file->setPosition(14);
    file->removeSpace(12 + 6);
    EXPECT_TRUE(b->isDeleted());
    EXPECT_EQ(file->getChunkId(), 0u);
    ASSERT_TRUE(file->nextChunk());   // the walk goes on with what followed
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
        Ref<CChunkIterator> sequence(new CSkippingIterator(stream.get(), 8, static_cast<int64_t>(area.size()),
                                                           skipAdjacent));
        ASSERT_TRUE(sequence->nextChunk());
        Ref<CChunkStream> a(sequence->openChunkStream());
        ASSERT_TRUE(sequence->nextChunk());
        Ref<CChunkStream> b(sequence->openChunkStream());

        sequence->setPosition(16);
        sequence->insertSpace(3);
        EXPECT_EQ(a->getLength(), skipAdjacent ? 4 : 7);
        EXPECT_EQ(b->getBase(), 39);
        EXPECT_EQ(Ref<CChunkStream>(sequence->openChunkStream())->getBase(), 39);
        EXPECT_EQ(readAll(b.get()), text("bb"));
    }
}

} // namespace
