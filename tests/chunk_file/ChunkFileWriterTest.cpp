#include "ChunkTestSupport.h"

#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/ChunkId.h"

#include <gtest/gtest.h>

#include <string>

using namespace chf_test;
using chf::CChunkFile;
using chf::CChunkFileWriter;
using chf::CChunkIterator;
using chf::CChunkStream;
using chf::makeChunkId;

namespace {

// "id(data)" per chunk, "id[...]" for the ids walked as nested sequences.
std::string dump(CChunkIterator* sequence)
{
    std::string out;
    sequence->rewind();
    while (sequence->nextChunk()) {
        const uint32_t id = sequence->getChunkId();
        out += out.empty() ? "" : " ";
        for (int i = 0; i < 4; ++i)
            out += static_cast<char>(id >> (8 * i));
        if (id == makeChunkId("STMP") || id == makeChunkId("sub_")) {
            Ref<CChunkIterator> nested(sequence->openChunkIterator());
            out += "[" + dump(nested.get()) + "]";
        } else {
            const Bytes data = readAll(Ref<CChunkStream>(sequence->openChunkStream()).get());
            out += "(" + std::string(data.begin(), data.end()) + ")";
        }
    }
    return out;
}

TEST(ChunkFileWriter, BuildsNestedChunksThatReadBackChunkForChunk)
{
    Ref<CTestStream> stream(new CTestStream());
    {
        Ref<CChunkFile> file(CChunkFileWriter::createFile(stream.get()));
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("vers"), "1.0", 3);
        Ref<CChunkIterator> stmp(CChunkFileWriter::appendChunkIterator(file.get(), makeChunkId("STMP")));
        // Appended behind the open STMP, which keeps growing afterwards.
        CChunkFileWriter::appendChunk(file.get(), makeChunkId("cmnt"), "hi", 2);
        Ref<CChunkStream> data(CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("data")));
        data->write("hel", 3);
        data->write("lo", 2);
        CChunkFileWriter::appendChunk(stmp.get(), makeChunkId("more"), "xyz", 3);
        data->write("!!", 2);
        Ref<CChunkIterator> sub(CChunkFileWriter::appendChunkIterator(stmp.get(), makeChunkId("sub_")));
        CChunkFileWriter::appendChunk(sub.get(), makeChunkId("leaf"), "L", 1);
    }
    const Bytes expected = container(chunk("vers", text("1.0"))
                                     + chunk("STMP", chunk("data", text("hello!!")) + chunk("more", text("xyz"))
                                                         + chunk("sub_", chunk("leaf", text("L"))))
                                     + chunk("cmnt", text("hi")));
    EXPECT_EQ(stream->getBytes(), expected);

    // Reopened, the file reads back and takes further chunks the same way.
    stream->setPosition(0);
    Ref<CChunkFile> file(CChunkFile::open(stream.get()));
    EXPECT_EQ(dump(file.get()), "vers(1.0) STMP[data(hello!!) more(xyz) sub_[leaf(L)]] cmnt(hi)");
    CChunkFileWriter::appendChunk(file.get(), makeChunkId("apid"), "app", 3);
    file.reset();
    EXPECT_EQ(stream->getBytes(), container(slice(expected, 16, expected.size()) + chunk("apid", text("app"))));
    EXPECT_THROW(CChunkFileWriter::createFile(stream.get()), std::exception);   // not empty
}

} // namespace
