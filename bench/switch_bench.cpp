// How long a language switch waits for readers: the localizer's setTexts (publish the new texts,
// wait until no reader holds the old ones, free them) while 0, 1, 8 or 64 threads look texts up
// without pause, each copying its answer into a new buffer as the exported look-up does. On a
// machine with fewer cores than readers, a reader preempted inside its look-up makes the switch
// wait until the scheduler runs it again; the writer's CPU time shows whether it slept meanwhile.
//
// Counters: median and 90th percentile of one switch in milliseconds; "cpu" is the switching
// thread's own time.
#include "framework/text/CStringLocalizer.h"
#include "framework/text/CTextTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

using namespace kore;

namespace {

constexpr uint32_t kKeys = 1000;

std::u16string keyOf(uint32_t i)
{
    const std::string ascii = "menu.item." + std::to_string(i);
    return std::u16string(ascii.begin(), ascii.end());
}

P<CTextTable> language(const char16_t* text)
{
    CTextTable::CBuilder builder;
    const std::u16string value = text;
    for (uint32_t i = 0; i < kKeys; ++i) {
        const std::u16string key = keyOf(i);
        builder.addCopy(key.data(), uint32_t(key.size()), value.data(), uint32_t(value.size()), 0);
    }
    return builder.build();
}

char16_t* copyNew(const void* units, std::size_t count)
{
    auto* out = new char16_t[count + 1];
    std::memcpy(out, units, 2 * count);
    out[count] = 0;
    return out;
}

void BM_SwitchWithBusyReaders(benchmark::State& state)
{
    const auto readerCount = static_cast<int>(state.range(0));
    const auto localizer = make<CStringLocalizer>();
    const std::vector<P<CTextTable>> languages[2] = {{language(u"Datei öffnen")}, {language(u"Ouvrir le fichier")}};
    localizer->setTexts(languages[0]);

    std::vector<std::u16string> keys;
    for (uint32_t i = 0; i < kKeys; ++i)
        keys.push_back(keyOf(i));
    std::atomic<bool> stop{false};
    std::atomic<int> running{0};
    std::vector<std::thread> readers;
    for (int r = 0; r < readerCount; ++r) {
        readers.emplace_back([&, r] {
            for (uint32_t i = uint32_t(r) * 7919;; ++i) {
                delete[] localizer->copyString(keys[i % kKeys].c_str(), u"default", &copyNew);
                if (i == uint32_t(r) * 7919)
                    ++running;
                if (stop.load(std::memory_order_relaxed))
                    break;
            }
        });
    }
    while (running < readerCount)
        std::this_thread::yield();

    std::vector<double> milliseconds;
    int which = 0;
    for (auto _ : state) {
        which ^= 1;
        const auto start = std::chrono::steady_clock::now();
        localizer->setTexts(languages[which]);
        milliseconds.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    stop = true;
    for (std::thread& reader : readers)
        reader.join();

    std::sort(milliseconds.begin(), milliseconds.end());
    state.counters["median_ms"] = milliseconds[milliseconds.size() / 2];
    state.counters["p90_ms"] = milliseconds[milliseconds.size() * 9 / 10];
}
BENCHMARK(BM_SwitchWithBusyReaders)
    ->Arg(0)
    ->Arg(1)
    ->Arg(8)
    ->Arg(64)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
