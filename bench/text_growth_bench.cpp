// Work that must grow linearly with the text: finding every match, reading every character by
// index or with a cursor, and many setString calls. Each framework case runs beside the same work
// on std::u16string / std::unordered_map, at two sizes ten times apart (the first argument).
// The second argument picks the text: 0 UTF-16 text, 1 the same text in UTF-8 (variable width,
// so positions are found by walking).
// Run: build/linux-release/bench/text_growth_bench

#include "framework/text/CCharCursor.h"
#include "framework/text/CString.h"
#include "framework/text/CStringLocalizer.h"
#include "framework/text/CUTF8CharEncoding.h"

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>

namespace {

using namespace kore;

constexpr int64_t kMiB = 1 << 20;

// `bytes` bytes of UTF-16 text (half as many characters) in which "needle" occurs every 64
// characters.
std::u16string sample(int64_t bytes)
{
    const std::u16string piece = u"Sch\u00F6ne Gr\u00FC\u00DFe \u0395\u03BB\u03BB\u03AC\u03B4\u03B1 needle, ";
    std::u16string s;
    while (static_cast<int64_t>(s.size()) < bytes / 2)
        s += piece + std::u16string(64 - piece.size(), u'.');
    s.resize(static_cast<size_t>(bytes / 2));
    return s;
}

P<IString> frameworkText(const std::u16string& s, int64_t kind)
{
    P<IString> text = CString::fromUTF16(s);
    return kind == 0 ? text : text->convertTo(*CUTF8CharEncoding::instance());
}

void BM_FindAll(benchmark::State& state)
{
    const std::u16string s = sample(state.range(0));
    const P<IString> text = frameworkText(s, state.range(1));
    const P<IString> needle = CString::fromUTF16(u"needle");
    for (auto _ : state) {
        uint32_t hits = 0;
        for (uint32_t at = 0; (at = text->find(needle, at)) != IString::kNotFound; ++at)
            ++hits;
        benchmark::DoNotOptimize(hits);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FindAll)
    ->Args({kMiB / 10, 0})
    ->Args({kMiB, 0})
    ->Args({kMiB / 10, 1})
    ->Args({kMiB, 1})
    ->Unit(benchmark::kMicrosecond);

void BM_FindAllStd(benchmark::State& state)
{
    const std::u16string s = sample(state.range(0));
    for (auto _ : state) {
        uint32_t hits = 0;
        for (size_t at = 0; (at = s.find(u"needle", at)) != std::u16string::npos; ++at)
            ++hits;
        benchmark::DoNotOptimize(hits);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FindAllStd)->Arg(kMiB / 10)->Arg(kMiB)->Unit(benchmark::kMicrosecond);

void BM_CharAtEach(benchmark::State& state)
{
    const P<IString> text = frameworkText(sample(state.range(0)), state.range(1));
    for (auto _ : state) {
        uint64_t sum = 0;
        for (uint32_t i = 0, n = text->getLength(); i < n; ++i)
            sum += text->getCharAt(i);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CharAtEach)
    ->Args({kMiB / 10, 0})
    ->Args({kMiB, 0})
    ->Args({kMiB / 10, 1})
    ->Args({kMiB, 1})
    ->Unit(benchmark::kMicrosecond);

void BM_CursorEach(benchmark::State& state)
{
    const P<IString> text = frameworkText(sample(state.range(0)), state.range(1));
    for (auto _ : state) {
        uint64_t sum = 0;
        CCharCursor cursor(*text);
        for (uint32_t cp = 0; cursor.next(cp);)
            sum += cp;
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CursorEach)
    ->Args({kMiB / 10, 0})
    ->Args({kMiB, 0})
    ->Args({kMiB / 10, 1})
    ->Args({kMiB, 1})
    ->Unit(benchmark::kMicrosecond);

// Slicing one character off the front until nothing is left.
void BM_SliceFromFront(benchmark::State& state)
{
    const P<IString> text = frameworkText(sample(state.range(0)), state.range(1));
    for (auto _ : state) {
        uint64_t sum = 0;
        for (P<IString> rest = text; rest->getLength() != 0; rest = rest->slice(1))
            sum += rest->getCharAt(0);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SliceFromFront)
    ->Args({kMiB / 10, 0})
    ->Args({kMiB, 0})
    ->Args({kMiB / 10, 1})
    ->Args({kMiB, 1})
    ->Unit(benchmark::kMicrosecond);

void BM_CharAtEachStd(benchmark::State& state)
{
    const std::u16string s = sample(state.range(0));
    for (auto _ : state) {
        uint64_t sum = 0;
        for (size_t i = 0; i < s.size(); ++i)
            sum += s[i];
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CharAtEachStd)->Arg(kMiB / 10)->Arg(kMiB)->Unit(benchmark::kMicrosecond);

std::u16string key(int64_t i)
{
    return u"kore.CBench.key" + std::u16string(1, static_cast<char16_t>(u'a' + i % 26)) +
           CString::fromUTF8(std::to_string(i))->toU16();
}

// Distinct keys, each set once, into a fresh localizer.
void BM_SetString(benchmark::State& state)
{
    std::vector<std::u16string> keys;
    for (int64_t i = 0; i < state.range(0); ++i)
        keys.push_back(key(i));
    for (auto _ : state) {
        const P<CStringLocalizer> localizer = make<CStringLocalizer>();
        for (const std::u16string& k : keys)
            localizer->setString(CStringArg(k.data(), static_cast<uint32_t>(k.size())), u"a short text");
        benchmark::DoNotOptimize(localizer.get());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SetString)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_SetStringStd(benchmark::State& state)
{
    std::vector<std::u16string> keys;
    for (int64_t i = 0; i < state.range(0); ++i)
        keys.push_back(key(i));
    for (auto _ : state) {
        std::unordered_map<std::u16string, std::u16string> map;
        for (const std::u16string& k : keys)
            map[k] = u"a short text";
        benchmark::DoNotOptimize(map.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SetStringStd)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
