// Compare, hash and find on short and long strings, in one encoding and across two.
// Run: build/linux-release/bench/string_bench

#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace kore;

enum Kind { kUTF8, kUTF16, kUTF32, kLatin1 };

ICharEncoding& encodingOf(int kind)
{
    switch (kind) {
    case kUTF8: return *CUTF8CharEncoding::instance();
    case kUTF16: return *CUTF16CharEncoding::instance();
    case kUTF32: return *CUTF32CharEncoding::instance();
    default: return *CLatin1CharEncoding::instance();
    }
}

// Latin-1 text with a few accented letters, `chars` long, ending in `last`.
P<IString> text(int kind, int64_t chars, char16_t last = u'z')
{
    std::u16string s;
    const std::u16string word = u"Sch\u00F6ne Gr\u00FC\u00DFe ";
    while (static_cast<int64_t>(s.size()) < chars - 1)
        s += word;
    s.resize(static_cast<size_t>(chars - 1));
    s += last;
    return CUTF16String(s).convertTo(encodingOf(kind));
}

// Arguments: length in characters, encoding of the left string, encoding of the right one.
void lengthsAndEncodings(benchmark::internal::Benchmark* b)
{
    for (int64_t len : {16, 4096})
        for (auto [left, right] :
             {std::pair{kUTF8, kUTF8}, {kUTF16, kUTF16}, {kLatin1, kLatin1}, {kUTF8, kUTF16}, {kUTF32, kLatin1}})
            b->Args({len, left, right});
}

void BM_Compare(benchmark::State& state)
{
    P<IString> a = text(static_cast<int>(state.range(1)), state.range(0), u'y');
    P<IString> b = text(static_cast<int>(state.range(2)), state.range(0), u'z');
    for (auto _ : state)
        benchmark::DoNotOptimize(a->compare(b));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Compare)->Apply(lengthsAndEncodings);

void BM_CompareIgnoreCase(benchmark::State& state)
{
    P<IString> a = text(static_cast<int>(state.range(1)), state.range(0), u'Y');
    P<IString> b = text(static_cast<int>(state.range(2)), state.range(0), u'y');
    for (auto _ : state)
        benchmark::DoNotOptimize(a->compareIgnoreCase(b));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CompareIgnoreCase)->Apply(lengthsAndEncodings);

void BM_Hash(benchmark::State& state)
{
    P<IString> a = text(static_cast<int>(state.range(1)), state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(a->hash());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Hash)->Apply(lengthsAndEncodings);

// The needle matches at the very end only.
void BM_Find(benchmark::State& state)
{
    P<IString> hay = text(static_cast<int>(state.range(1)), state.range(0), u'!');
    P<IString> needle =
        hay->slice(static_cast<uint32_t>(state.range(0) - 2))->convertTo(encodingOf(static_cast<int>(state.range(2))));
    for (auto _ : state)
        benchmark::DoNotOptimize(hay->find(needle));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Find)->Apply(lengthsAndEncodings);

// A raw narrow argument, wrapped in place for each call (no match).
void BM_FindNarrowArgument(benchmark::State& state)
{
    P<IString> hay = text(static_cast<int>(state.range(1)), state.range(0), u'!');
    for (auto _ : state)
        benchmark::DoNotOptimize(hay->find("!!"));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FindNarrowArgument)->Args({16, kUTF8, kLatin1})->Args({4096, kUTF8, kLatin1});

} // namespace

BENCHMARK_MAIN();
