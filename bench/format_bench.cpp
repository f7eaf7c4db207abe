// Formatter throughput on the library's typical messages, with snprintf as the yardstick.

#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace kore;

namespace {

// A language file name from two framework strings, as the language pack builds it.
void BM_FileName(benchmark::State& state)
{
    const P<IString> appId = make<CUTF16String>(u"myapplication");
    const P<IString> tag = make<CUTF16String>(u"de-DE");
    for (auto _ : state) {
        P<IString> name = formatString("%s-%s.qorlang", appId, tag);
        benchmark::DoNotOptimize(name.get());
    }
}
BENCHMARK(BM_FileName);

// The same from narrow literals (Latin-1 arguments).
void BM_FileNameLiterals(benchmark::State& state)
{
    for (auto _ : state) {
        P<IString> name = formatString("%s-%s.qorlang", "myapplication", "de-DE");
        benchmark::DoNotOptimize(name.get());
    }
}
BENCHMARK(BM_FileNameLiterals);

// An integer, a zero-padded floating-point field and a literal percent sign.
void BM_ItemsAndPercent(benchmark::State& state)
{
    int64_t items = 0;
    for (auto _ : state) {
        P<IString> text = formatString("%d items, %08.3f%%", ++items, 42.125);
        benchmark::DoNotOptimize(text.get());
    }
}
BENCHMARK(BM_ItemsAndPercent);

void BM_SnprintfFileName(benchmark::State& state)
{
    char buffer[64];
    for (auto _ : state) {
        std::snprintf(buffer, sizeof buffer, "%s-%s.qorlang", "myapplication", "de-DE");
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_SnprintfFileName);

void BM_SnprintfItemsAndPercent(benchmark::State& state)
{
    char buffer[64];
    long long items = 0;
    for (auto _ : state) {
        std::snprintf(buffer, sizeof buffer, "%lld items, %08.3f%%", ++items, 42.125);
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_SnprintfItemsAndPercent);

} // namespace

BENCHMARK_MAIN();
