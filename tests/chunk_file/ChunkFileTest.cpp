// The container: walking and finding chunks (hostile sizes included), writing new files, its
// own streams over a memory buffer and over the framework's files.
#include "ChunkTestSupport.h"

#include "framework/io/CDiskStream.h"
#include "framework/io/CMemoryStream.h"
#include "framework/io/ISeekableIOStream.h"

#include <algorithm>
#include <cstring>
#include <limits>

using namespace chf_test;

namespace {

constexpr uint64_t kMax = std::numeric_limits<int64_t>::max();

TEST(ChunkFile, WalksAndFindsChunksAndIgnoresAnIncompleteTrailingHeader)
{
    // Opened behind 3 bytes of something else: the chunk area starts 16 bytes further.
    Ref<CChunkFile> empty = COpened(text("abc") + container({}), 3).file;
    EXPECT_EQ(std::memcmp(empty->getMagic(), "URESFILE", 9), 0);
    EXPECT_EQ(empty->getBase(), 19);
    EXPECT_FALSE(empty->nextChunk() || empty->nextChunk());
    // Off any chunk, a child is empty and sits 12 bytes behind the current offset.
    EXPECT_EQ(openStream(empty.get())->getBase(), 31);
    EXPECT_EQ(openStream(empty.get())->getLength(), 0);

    const Bytes area = chunk("vers", text("1.0")) + chunk("none", {}) + chunk("lang", text("de-DE"));
    for (size_t trailing = 0; trailing < 12; ++trailing) {
        Ref<CChunkFile> file = COpened(container(area + Bytes(trailing, 'x'))).file;
        EXPECT_EQ(dump(file.get()), "vers(1.0) none() lang(de-DE)") << trailing;
        EXPECT_FALSE(file->nextChunk()) << trailing;
    }

    // findChunk searches forward from the current chunk, findFirstChunk from the start.
    Ref<CChunkFile> file = COpened(container(chunk("RSID", text("a")) + chunk("cmnt", text("1")) +
                                             chunk("RSID", text("b")) + chunk("cmnt", text("2"))))
                               .file;
    for (const char* expected : {"a", "b"}) {
        ASSERT_TRUE(file->findChunk(makeChunkId("RSID")));
        EXPECT_EQ(current(file.get()), text(expected));
    }
    EXPECT_FALSE(file->findChunk(makeChunkId("RSID")));
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_EQ(readAll(openStream(file.get(), "cmnt").get()), text("1"));
    EXPECT_FALSE(file->findFirstChunk(makeChunkId("rsid"))); // ids are case-sensitive
}

// The disk stream throws on a read past the end, so there a walk that went on would fail loudly.
TEST(ChunkFile, SizesThatWouldNotMoveTheWalkForwardEndIt)
{
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
        CDiskFile disk(bytes);
        const auto memory = COpened(bytes);
        const Ref<CChunkFile> onDisk(CChunkFile::open(disk.open(IStreamManager::kRead).get()));
        for (CChunkFile* file : {memory.file.get(), onDisk.get()})
            EXPECT_TRUE(file->nextChunk() && !file->nextChunk() && file->getChunkId() == 0 && !file->nextChunk())
                << &bytes - hostile;
    }
    // A declared size running past the end of the area is accepted as it stands.
    Ref<CChunkFile> overlong = COpened(container(chunk("long", 1000, text("abc")))).file;
    EXPECT_EQ(openStream(overlong.get(), "long")->getLength(), 1000);
    EXPECT_FALSE(overlong->nextChunk());
}

TEST(ChunkFileWriter, BuildsNestedChunksThatReadBackChunkForChunk)
{
    const Bytes expected = exampleBytes();
    for (const Bytes& bytes : editedInMemoryAndOnDisk({}, buildExample))
        EXPECT_EQ(bytes, expected);

    // Reopened, the file reads back and takes further chunks the same way.
    auto [stream, file] = COpened(expected);
    EXPECT_EQ(dump(file.get()), "vers(1.0) STMP[data(hello!!) more(xyz) big_(" + std::string(kBig.begin(), kBig.end()) +
                                    ") sub_[leaf(L) leaf(M)]] cmnt(hi)");
    CChunkFileWriter::appendChunk(file.get(), makeChunkId("apid"), "app", 3);
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(slice(expected, 16, expected.size()) + chunk("apid", text("app"))));
    EXPECT_THROW(CChunkFileWriter::createFile(stream.get()), std::exception); // not empty
}

TEST(KoreFileStream, WalkingAFileReadsItInBufferSizedPieces)
{
    Bytes area;
    for (int i = 0; i < 2000; ++i)
        area = area + chunk("blob", patternBytes(100));
    CDiskFile disk(container(area)); // 224,016 bytes: four disk buffers
    kore::P<kore::IStream> opened = IStreamManager::instance()->openURI(*disk.uri(), IStreamManager::kRead);
    const auto* counted = dynamic_cast<const kore::CDiskStream*>(opened.get());
    ASSERT_NE(counted, nullptr);
    Ref<CChunkFile> file(CChunkFile::open(Ref<CKoreFileStream>(new CKoreFileStream(opened)).get()));
    int chunks = 0;
    for (; file->nextChunk(); ++chunks)
        EXPECT_EQ(current(file.get()), patternBytes(100));
    EXPECT_EQ(chunks, 2000);
    // Seeking from chunk to chunk keeps what the buffer holds.
    EXPECT_EQ(counted->getSystemReadCount(), 4u);
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

// What the adapter's file cannot do (write when read-only, read when write-only, seek when it
// cannot, shrink, grow past 4 GiB - 1) is refused; read-only refusals leave the file as it was.
TEST(KoreFileStream, RefusesWhatItsStreamCannotDo)
{
    CDiskFile disk(text("URESFILE"));
    Ref<CKoreFileStream> stream = disk.open(IStreamManager::kRead);
    stream->setPosition(4); // a stream that reads can seek
    EXPECT_TRUE(raisesPlainException([&] { stream->write("x", 1); }));
    EXPECT_TRUE(raisesPlainException([&] { stream->insertSpace(1); }));
    EXPECT_TRUE(raisesPlainException([&] { stream->truncate(4); }));
    stream.reset();
    EXPECT_EQ(disk.bytes(), text("URESFILE"));
    stream = disk.open(IStreamManager::kWrite);
    stream->write("abc", 3);
    stream->setPosition(0);
    char buffer[3] = {'?', '?', '?'};
    EXPECT_EQ(std::pair(stream->read(buffer, 3), stream->read(buffer, -1)), std::pair(int64_t(0), int64_t(0)));
    EXPECT_EQ(std::string(buffer, 3), "???");
    EXPECT_EQ(stream->getPosition(), 0);
    stream.reset();
    EXPECT_EQ(disk.bytes(), text("abc"));
    stream = disk.open(IStreamManager::kReadWrite); // extending writes zeros and keeps the position
    stream->setPosition(1);
    EXPECT_TRUE(raisesPlainException([&] { stream->extend(3 + 0x100000000LL); }));
    EXPECT_TRUE(raisesPlainException([&] { stream->extend(2); }));
    EXPECT_EQ(stream->getLength(), 3);
    stream->extend(8);
    EXPECT_EQ(std::pair(stream->getLength(), stream->getPosition()), std::pair(int64_t(8), int64_t(1)));
    stream.reset();
    EXPECT_EQ(disk.bytes(), text("abc") + Bytes(5, 0));
    stream = Ref<CKoreFileStream>(new CKoreFileStream(kore::make<CUnseekableStream>("abcdef", 6)));
    EXPECT_TRUE(raisesPlainException([&] { stream->setPosition(0); }));
    stream->read(buffer, 3);
    EXPECT_EQ(std::string(buffer, 3), "abc");
    stream->write("XY", 2);
    EXPECT_EQ(stream->getPosition(), 5);
    EXPECT_TRUE(raisesPlainException([&] { stream->insertSpace(1); }));
}

TEST(BaseStream, InsertSpaceMovesOnlyTheLastBlockOfTheTail)
{
    // The second tail is shorter than the disk stream's buffer and moves through that buffer.
    for (const auto& [size, at] : {std::pair<int64_t, int64_t>{200000, 0}, {10000, 9000}}) {
        const Bytes original = patternBytes(size_t(size));
        const auto moved = size_t(std::max(size - 65536, at));
        const auto edit = [at = at](CBaseStream* stream) {
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
    // Only 2 bytes follow the position, yet 5 go; nor does anything follow a position at the
    // 64-bit limit (a chunk claimed a size up there).
    for (const int64_t at : {stream->getLength() - 2, int64_t(kMax) - 1}) {
        stream->setPosition(at);
        stream->removeSpace(5);
        expected.resize(expected.size() - 5);
        EXPECT_EQ(stream->getBytes(), expected);
    }

    // Files are never shortened: the old last 10 bytes stay behind the moved tail.
    const Bytes original = patternBytes(150000);
    const auto edit = [](CBaseStream* stream) {
        if (auto* memory = dynamic_cast<CTestStream*>(stream))
            memory->failTruncate = true;
        stream->setPosition(5);
        EXPECT_TRUE(raisesPlainException([&] { stream->removeSpace(10); }));
    };
    for (const Bytes& bytes : editedInMemoryAndOnDisk(original, edit))
        EXPECT_EQ(bytes, slice(original, 0, 5) + slice(original, 15, 150000) + slice(original, 149990, 150000));
}

// Chunks whose data lies at 10..15 of a 30-byte file; the size field is at 2..9.
TEST(ChunkStream, ReadsWritesGrowsAndWritesItsSizeBackWhenReleased)
{
    const Bytes original = patternBytes(30);
    Ref<CTestStream> file(new CTestStream(original));
    CRecordingHolder holder;

    // A read runs past the chunk but the position stops at its end; an unchanged stream writes nothing.
    auto* reader = new CChunkStream(&holder, file.get(), 10, 6);
    Bytes buffer(10);
    reader->setPosition(2);
    EXPECT_EQ(reader->read(buffer.data(), 10), 6); // the result is the length, not a count
    EXPECT_EQ(buffer, slice(original, 12, 22));
    EXPECT_EQ(reader->getPosition(), 6);
    reader->write("", 0);
    reader->release();
    EXPECT_TRUE(file->bytesWritten == 0 && holder.notices.empty());

    // A write past the end grows by the overhang and tells the holder.
    auto* stream = new CChunkStream(&holder, file.get(), 10, 6);
    const Bytes payload{0xA1, 0xA2, 0xA3, 0xA4, 0xA5};
    stream->setPosition(4);
    stream->write(payload.data(), 5);
    const std::vector<CRecordingHolder::Notice> notices{{true, stream, 16, 3}};
    EXPECT_EQ(holder.notices, notices);
    EXPECT_EQ(file->getBytes(), slice(original, 0, 14) + payload + slice(original, 16, 30));
    // Plain chunk streams grow by writing only: their own insertions stay untold.
    stream->insertSpace(2);
    EXPECT_EQ(holder.notices, notices);
    EXPECT_EQ(stream->getLength(), 11); // 6 + 3 + 2
    stream->release();
    EXPECT_EQ(slice(file->getBytes(), 2, 10), u64(11));
    EXPECT_EQ(holder.refs, 1u);
    EXPECT_EQ(holder.detached, (std::vector<CChunkStream*>{reader, stream}));

    // A failing write-back reaches the caller and still drops every reference.
    stream = new CChunkStream(&holder, file.get(), 10, 11);
    stream->setPosition(11);
    stream->write("xy", 2);
    file->failWrite = true;
    EXPECT_THROW(stream->release(), std::exception);
    EXPECT_TRUE(holder.refs == 1 && holder.detached.size() == 3);
    EXPECT_EQ(file->addRef(), 2u);
    file->release();
}

} // namespace
