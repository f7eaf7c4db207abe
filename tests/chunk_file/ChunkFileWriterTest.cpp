#include "ChunkTestSupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace chf_test;

namespace {

TEST(ChunkFileWriter, BuildsNestedChunksThatReadBackChunkForChunk)
{
    const Bytes big = patternBytes(100000); // more than the disk stream buffers
    // The container reads back its header and sizes as it writes: a file is opened read-write.
    const auto build = [&](chf::IStream* stream) {
        Ref<CChunkFile> file(CChunkFileWriter::createFile(stream));
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("vers"), "1.0", 3);
        Ref<CChunkIterator> stmp(CChunkFileWriter::appendChunkIterator(file.get(), makeChunkId("STMP")));
        // Appended behind the open STMP, which keeps growing afterwards.
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("cmnt"), "hi", 2);
        Ref<CChunkStream> data(CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("data")));
        data->write("hel", 3);
        data->write("lo", 2);
        CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("more"), "xyz", 3);
        data->write("!!", 2);
        CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("big_"), big.data(), static_cast<int32_t>(big.size()));
        Ref<CChunkIterator> sub(CChunkFileWriter::appendChunkIterator(stmp.get(), makeChunkId("sub_")));
        CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "L", 1);
        CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "M", 1);
    };
    const Bytes expected =
        container(chunk("vers", text("1.0")) +
                  chunk("STMP", chunk("data", text("hello!!")) + chunk("more", text("xyz")) + chunk("big_", big) +
                                    chunk("sub_", chunk("leaf", text("L")) + chunk("leaf", text("M")))) +
                  chunk("cmnt", text("hi")));
    for (const Bytes& bytes : editedInMemoryAndOnDisk({}, build))
        EXPECT_EQ(bytes, expected);

    // Reopened, the file reads back and takes further chunks the same way.
    Ref<CTestStream> stream(new CTestStream(expected));
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    EXPECT_EQ(dump(file.get()), "vers(1.0) STMP[data(hello!!) more(xyz) big_(" + std::string(big.begin(), big.end()) +
                                    ") sub_[leaf(L) leaf(M)]] cmnt(hi)");
    CChunkFileWriter::appendChunk(file.get(), makeChunkId("apid"), "app", 3);
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(slice(expected, 16, expected.size()) + chunk("apid", text("app"))));
    EXPECT_THROW(CChunkFileWriter::createFile(stream.get()), std::exception); // not empty
}

} // namespace
