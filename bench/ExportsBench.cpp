// The exported functions as a host calls them, through the shared library: string look-ups (hits
// and misses, one and two threads) and language changes that load 10,000 and 100,000 strings.
// The language files are generated once into a temporary folder.
#include "qor_lang2.h"

#include "framework/CString.h"
#include "framework/CURI.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const QOR_LANG2_CHAR* w(const std::u16string& text)
{
    return reinterpret_cast<const QOR_LANG2_CHAR*>(text.c_str());
}

std::u16string key(int i)
{
    std::u16string key = u"app.dialog.options.label.";
    for (char c : std::to_string(i))
        key += static_cast<char16_t>(c);
    return key;
}

constexpr int kLookUpKeys = 10000;

// The language files, one per size: de-DE with 10,000 strings, fr-FR with 100,000 (the same keys
// as far as they go, so that either load replaces texts that are already there).
class LanguageFolder {
public:
    LanguageFolder()
    {
        std::random_device random;
        m_path = fs::temp_directory_path() / ("qor_lang2_bench_" + std::to_string(random()));
        fs::create_directory(m_path);
        write(u"de-DE", 10000, u"Ein übersetzter Text mittlerer Länge");
        write(u"fr-FR", 100000, u"Un texte traduit de longueur moyenne");
        if (QOR_LANG2_add(w(m_path.u16string()), nullptr, w(u"app")) != 0 ||
            QOR_LANG2_setCurrentLanguage(w(u"de-DE")) != 0)
            std::abort();
    }
    ~LanguageFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

private:
    void write(const std::u16string& tag, int count, const std::u16string& text)
    {
        qor_lang::CLanguageFileWriter writer;
        writer.setLanguage(tag, std::nullopt, std::nullopt);
        writer.setApplication(u"app");
        for (int i = 0; i < count; ++i)
            writer.addString(key(i), text);
        const fs::path file = m_path / (u"app-" + tag + u".qorlang");
        writer.writeFile(*kore::CURI::fromLocalPath(file.u16string().c_str()));
    }

    fs::path m_path;
};

void prepare()
{
    static LanguageFolder folder;
}

std::vector<std::u16string> keys(int n, bool present)
{
    std::vector<std::u16string> result;
    for (int i = 0; i < n; ++i)
        result.push_back(present ? key(i) : u"app.dialog.options.absent." + key(i).substr(25));
    return result;
}

void lookUps(benchmark::State& state, const std::vector<std::u16string>& keys)
{
    const std::u16string defaultText = u"Default text";
    size_t i = static_cast<size_t>(state.thread_index()) * 7919;
    for (auto _ : state) {
        QOR_LANG2_CHAR* text = QOR_LANG2_getLocalString(w(keys[i % keys.size()]), w(defaultText));
        benchmark::DoNotOptimize(text);
        QOR_LANG2_freeWideString(text);
        i += 31;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_GetLocalStringHit(benchmark::State& state)
{
    prepare();
    static const std::vector<std::u16string> present = keys(kLookUpKeys, true);
    lookUps(state, present);
}
BENCHMARK(BM_GetLocalStringHit)->Threads(1)->Threads(2)->UseRealTime();

void BM_GetLocalStringMiss(benchmark::State& state)
{
    prepare();
    static const std::vector<std::u16string> absent = keys(1000, false);
    lookUps(state, absent);
}
BENCHMARK(BM_GetLocalStringMiss)->Threads(1)->Threads(2)->UseRealTime();

// Each iteration reads the file and hands every string to the localizer.
void BM_SetCurrentLanguage(benchmark::State& state)
{
    prepare();
    const std::u16string tag = state.range(0) == 10000 ? u"de-DE" : u"fr-FR";
    for (auto _ : state) {
        if (QOR_LANG2_setCurrentLanguage(w(tag)) != 0)
            state.SkipWithError("language not accepted");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SetCurrentLanguage)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
