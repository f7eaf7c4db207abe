// A container held in memory, driven by a small program at the front of the input: walk, open
// nested iterators and chunk streams (several at once, so that changes reach open siblings and
// holders), read, write, insert and remove space, append chunks. Whatever the program did, the
// result is walked again from the start. Operation failures are exceptions and end nothing.
#include "FuzzInput.h"
#include "FuzzTargets.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/ChunkId.h"
#include "chunk_file/TChunkRef.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <vector>

namespace qor_fuzz {

namespace {

constexpr size_t kMaxDepth = 6;
constexpr size_t kMaxStreams = 4;
constexpr uint32_t kIds[] = {chf::makeChunkId("STMP"), chf::makeChunkId("data"), chf::makeChunkId("lang"),
                             chf::makeChunkId("sub_")};
// What writes and appended chunks hold: a chunk header with a little data.
constexpr uint8_t kBytes[16] = {'d', 'a', 't', 'a', 1, 0, 0, 0, 0, 0, 0, 0, 'x', 'y', 'z', 0};

// A memory stream that refuses to grow beyond a few megabytes, like a full disk. A walk that ended on
// a chunk claiming terabytes leaves its sequence far behind the end of the stream, and a write there
// would otherwise ask for terabytes of memory; refusing it also exercises the failure paths.
class CBoundedMemoryStream : public chf::CMemoryStream {
public:
    static constexpr int64_t kLimit = 8 << 20;
    using CMemoryStream::CMemoryStream;

    int64_t write(const void* buffer, int32_t count) override
    {
        if (getPosition() > kLimit - count)
            throw std::length_error("stream full");
        return CMemoryStream::write(buffer, count);
    }
    void extend(int64_t newLength) override
    {
        if (newLength > kLimit)
            throw std::length_error("stream full");
        CMemoryStream::extend(newLength);
    }
};

// Walks every chunk as a nested sequence too, as a reader that trusts nothing would.
void walk(chf::CChunkIterator* sequence, int depth, uint32_t& budget)
{
    sequence->rewind();
    for (uint8_t head[16]; budget > 0 && sequence->nextChunk();) {
        --budget;
        chf::TChunkRef<chf::CChunkStream> data(sequence->openChunkStream());
        data->read(head, static_cast<int32_t>(std::min<int64_t>(data->getLength(), sizeof head)));
        data.reset();
        if (depth < 4)
            walk(chf::TChunkRef<chf::CChunkIterator>(sequence->openChunkIterator()).get(), depth + 1, budget);
    }
}

// Lets go of one (a failure, a size written back, ends only that one), or of all, newest first.
template <class T>
void close(std::vector<chf::TChunkRef<T>>& refs, size_t at)
{
    chf::TChunkRef<T> closing(std::move(refs[at]));
    refs.erase(refs.begin() + static_cast<long>(at));
    closing.reset();
}
template <class T>
void releaseAll(std::vector<chf::TChunkRef<T>>& refs)
{
    while (!refs.empty())
        tolerate([&] { close(refs, refs.size() - 1); });
}

} // namespace

void fuzzChunkFile(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const std::string program = input.bytes(static_cast<size_t>(input.byte()) * 3);
    const std::string file = input.rest();
    chf::TChunkRef<chf::CMemoryStream> stream(new CBoundedMemoryStream(std::vector<uint8_t>(file.begin(), file.end())));
    std::vector<chf::TChunkRef<chf::CChunkIterator>> sequences;
    try {
        sequences.emplace_back(chf::CChunkFile::open(stream.get()));
    } catch (const std::exception&) {
        return;
    }
    std::vector<chf::TChunkRef<chf::CChunkStream>> streams;
    uint8_t buffer[256];

    CFuzzInput ops(reinterpret_cast<const uint8_t*>(program.data()), program.size());
    while (!ops.empty()) {
        const uint8_t op = ops.byte();
        const uint16_t arg = ops.u16();
        chf::CChunkIterator* top = sequences.back().get();
        // Reads, writes and space changes go to any open stream or sequence.
        const size_t targets = sequences.size() + streams.size();
        chf::IStream* target = arg % targets < sequences.size()
                                   ? static_cast<chf::IStream*>(sequences[arg % targets].get())
                                   : streams[arg % targets - sequences.size()].get();
        tolerate([&] {
            // A position anywhere in the target or a little behind it, or just before it.
            if (op % 12 >= 6 && op % 12 <= 9) {
                const int64_t length = std::clamp<int64_t>(target->getLength(), 0, 1 << 20);
                target->setPosition(arg == 0xFFFF ? -1 : static_cast<int64_t>(arg) % (length + 9));
            }
            switch (op % 12) {
            case 0: top->nextChunk(); break;
            case 1: top->rewind(); break;
            case 2:
                if (sequences.size() < kMaxDepth)
                    sequences.emplace_back(top->openChunkIterator());
                break;
            case 3:
                if (sequences.size() > 1)
                    close(sequences, sequences.size() - 1);
                break;
            case 4:
                if (streams.size() < kMaxStreams)
                    streams.emplace_back(top->openChunkStream());
                break;
            case 5:
                if (!streams.empty())
                    close(streams, arg % streams.size());
                break;
            case 6: target->read(buffer, (arg >> 8) % sizeof buffer); break;
            case 7: target->write(kBytes, 1 + (arg >> 8) % 16); break;
            case 8: target->insertSpace((arg >> 8) % 64); break;
            case 9: target->removeSpace((arg >> 8) % 64); break;
            case 10: top->findChunk(kIds[arg % 4]); break;
            case 11: chf::CChunkFileWriter::appendChunk(top, kIds[arg % 4], kBytes, (arg >> 8) % 17); break;
            }
        });
    }

    // Children before their holders, the way a careful owner lets go.
    releaseAll(streams);
    releaseAll(sequences);
    tolerate([&] {
        chf::TChunkRef<chf::CMemoryStream> result(new chf::CMemoryStream(stream->getBytes()));
        uint32_t budget = 4096;
        walk(chf::TChunkRef<chf::CChunkFile>(chf::CChunkFile::open(result.get())).get(), 0, budget);
    });
}

} // namespace qor_fuzz
