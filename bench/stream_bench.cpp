// Costs of the file layer: small reads through the buffered disk stream, folder enumeration
// with a pattern, and URI building.
#include "framework/io/CDiskStream.h"
#include "framework/io/CURI.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IFileSystemManager.h"
#include "framework/text/CString.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

using namespace kore;

// A folder with `files` language files, removed at the end of the program.
class CBenchFolder {
public:
    explicit CBenchFolder(int files)
    {
        m_path =
            std::filesystem::temp_directory_path() / ("qor_stream_bench_" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(m_path);
        for (int i = 0; i < files; ++i)
            std::ofstream(m_path / ("app-" + std::to_string(i) + ".qorlang")) << "x";
        std::ofstream big(m_path / "big.bin", std::ios::binary);
        const std::string block(1 << 20, 'b');
        big.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    ~CBenchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    P<CURI> uri() const { return CURI::fromLocalPath(CString::fromUTF8(m_path.string() + "/")); }

private:
    std::filesystem::path m_path;
};

CBenchFolder& folder()
{
    static CBenchFolder instance(1000);
    return instance;
}

void readInPieces(benchmark::State& state)
{
    const auto piece = static_cast<uint32_t>(state.range(0));
    const P<IURI> file = folder().uri()->resolve("big.bin");
    std::string buffer(piece, '\0');
    uint64_t systemReads = 0;
    for (auto _ : state) {
        P<CDiskStream> stream = make<CDiskStream>(*file, CDiskStream::kRead);
        for (int64_t left = stream->getLength(); left >= piece; left -= piece)
            stream->read(buffer.data(), piece);
        systemReads = stream->getSystemReadCount();
    }
    state.SetBytesProcessed(state.iterations() * (1 << 20));
    state.counters["system_reads_per_MiB"] = static_cast<double>(systemReads);
}
BENCHMARK(readInPieces)->Arg(1)->Arg(16)->Arg(4096)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void enumerateWithPattern(benchmark::State& state)
{
    const P<CURI> uri = folder().uri();
    for (auto _ : state) {
        P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*uri, "app-1*.qorlang");
        benchmark::DoNotOptimize(found->getCount());
    }
    state.counters["entries_listed"] = 1001;
}
BENCHMARK(enumerateWithPattern)->Unit(benchmark::kMicrosecond);

void uriFromPathAndResolve(benchmark::State& state)
{
    for (auto _ : state) {
        P<CURI> uri = CURI::fromLocalPath(u"C:\\Program Files\\Sprachdateien äöü\\日本\\");
        benchmark::DoNotOptimize(uri->resolve("A-de-DE.qorlang"));
    }
}
BENCHMARK(uriFromPathAndResolve);

} // namespace

BENCHMARK_MAIN();
