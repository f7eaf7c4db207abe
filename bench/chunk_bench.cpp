// Reading a 10 MB container from disk chunk by chunk through the file-stream adapter: the
// time per pass and how many reads reach the system.
#include "chunk_file/CChunkFile.h"
#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/ChunkId.h"
#include "chunk_file/TChunkRef.h"
#include "framework/io/CDiskStream.h"
#include "framework/io/IPathes.h"
#include "framework/io/IStreamManager.h"
#include "framework/io/IURI.h"
#include "framework/text/CString.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using chf::TChunkRef;
using kore::IStreamManager;
using kore::P;

// One container of `count` chunks of `size` bytes each, written once through the container's
// own writer and removed at the end of the program.
class CBenchContainer {
public:
    CBenchContainer(int count, int32_t size)
    {
        const std::string name = "qor_chunk_bench_" + std::to_string(std::random_device()()) + "_" +
                                 std::to_string(count) + "x" + std::to_string(size) + ".chf";
        m_uri = kore::IPathes::instance()->getTempFolder()->resolve(kore::CString::fromUTF8(name));
        std::vector<uint8_t> data(static_cast<size_t>(size));
        for (size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<uint8_t>(i * 13);
        const P<IStreamManager> streams = IStreamManager::instance();
        streams->openURI(*m_uri, IStreamManager::kWrite)->close();
        TChunkRef<chf::IStream> stream(new chf::CKoreFileStream(streams->openURI(*m_uri, IStreamManager::kReadWrite)));
        TChunkRef<chf::CChunkFile> file(chf::CChunkFileWriter::createFile(stream.get()));
        for (int i = 0; i < count; ++i)
            chf::CChunkFileWriter::appendChunk(file.get(), chf::makeChunkId("blob"), data.data(), size);
        file.reset();
        stream.reset();
    }
    CBenchContainer(const CBenchContainer&) = delete;
    CBenchContainer& operator=(const CBenchContainer&) = delete;
    ~CBenchContainer() { std::remove(m_uri->getLocalPath()->toUTF8().c_str()); }

    const kore::IURI& uri() const { return *m_uri; }

private:
    P<kore::IURI> m_uri;
};

// Emptied by main while the framework's services still exist: a static's destructor would run
// after they are gone.
std::map<std::pair<int, int32_t>, CBenchContainer> g_containers;

// Built on first use; the benchmark library calls each benchmark function more than once.
const kore::IURI& containerFile(int count, int32_t size)
{
    return g_containers.try_emplace({count, size}, count, size).first->second.uri();
}

// Open, walk with nextChunk, open each chunk's stream, read its data, release.
void readChunkByChunk(benchmark::State& state)
{
    const auto count = static_cast<int>(state.range(0));
    const auto size = static_cast<int32_t>(state.range(1));
    const kore::IURI& uri = containerFile(count, size);

    std::vector<uint8_t> buffer(static_cast<size_t>(size));
    uint64_t systemReads = 0;
    int64_t bytes = 0;
    for (auto _ : state) {
        P<kore::IStream> disk = IStreamManager::instance()->openURI(uri, IStreamManager::kRead);
        const auto* counter = dynamic_cast<const kore::CDiskStream*>(disk.get());
        TChunkRef<chf::IStream> stream(new chf::CKoreFileStream(disk));
        TChunkRef<chf::CChunkFile> file(chf::CChunkFile::open(stream.get()));
        int chunks = 0;
        bytes = 0;
        while (file->nextChunk()) {
            TChunkRef<chf::CChunkStream> chunk(file->openChunkStream());
            const auto length = static_cast<int32_t>(chunk->getLength());
            chunk->read(buffer.data(), length);
            benchmark::DoNotOptimize(buffer.data());
            bytes += length;
            ++chunks;
        }
        if (chunks != count)
            state.SkipWithError("the walk did not see every chunk");
        systemReads = counter ? counter->getSystemReadCount() : 0;
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["system_reads_per_pass"] = static_cast<double>(systemReads);
}
BENCHMARK(readChunkByChunk)->Args({10000, 1024})->Args({160, 65536})->Unit(benchmark::kMillisecond);

// The floor: the same file read front to back in buffer-sized pieces, without the container.
void readWholeFile(benchmark::State& state)
{
    const kore::IURI& uri = containerFile(10000, 1024);
    std::vector<uint8_t> buffer(kore::CDiskStream::kBufferSize);
    uint64_t systemReads = 0;
    int64_t bytes = 0;
    for (auto _ : state) {
        const P<kore::CDiskStream> disk = kore::make<kore::CDiskStream>(uri, kore::CDiskStream::kRead);
        bytes = 0;
        while (const uint32_t n = disk->readSome(buffer.data(), static_cast<uint32_t>(buffer.size())))
            bytes += n;
        benchmark::DoNotOptimize(buffer.data());
        systemReads = disk->getSystemReadCount();
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["system_reads_per_pass"] = static_cast<double>(systemReads);
}
BENCHMARK(readWholeFile)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_containers.clear();
    return 0;
}
