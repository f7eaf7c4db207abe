// This library against what its users would pick instead, on the same catalogues in one run:
// a bare std::unordered_map behind the same C contract (UTF-16 key in, new UTF-16 copy out) and
// glibc's dgettext (its own contract: UTF-8 key in, a pointer into its catalogue out). Measured:
// look-ups that hit and miss (one thread, and the wall time per look-up of two threads), making a
// language current (to the first answer), resident memory after that, and allocations per switch.
// Prints one table with the ratios at the end.
//
// Catalogues: a real one (QOR_BENCH_MO, else the largest gettext catalogue under
// /usr/share/locale, turned into PO by msgunfmt and compiled by qorlang) and a generated one of
// 100,000 entries (QOR_BENCH_ENTRIES). Two languages of each (the same texts) so that every switch loads a file.
// gettext's column needs msgfmt/msgunfmt and the C.UTF-8 locale; the real catalogue needs qorlang.
//
// Usage: LanguageComparisonBench [Google Benchmark options]
#include "qor_lang2.h"

#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/io/CURI.h"
#include "framework/io/IStreamManager.h"
#include "framework/text/UTF8Decoding.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include <benchmark/benchmark.h>
#include <libintl.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fs = std::filesystem;

// Counts operator new calls while counting is on (the library's too: it resolves to this one).
// gcc takes the replaced operators' malloc and free for a mismatch with new and delete.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
} // namespace

void* operator new(std::size_t size)
{
    if (g_counting.load(std::memory_order_relaxed))
        g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size)
{
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete[](void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept
{
    std::free(p);
}

namespace {

const QOR_LANG2_CHAR* w(const std::u16string& text)
{
    return reinterpret_cast<const QOR_LANG2_CHAR*>(text.c_str());
}

std::string utf8(const std::u16string& text)
{
    return kore::encodeUTF8(text);
}

bool run(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

double residentMiB()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    }
    return 0;
}

using Entries = std::vector<std::pair<std::u16string, std::u16string>>;

Entries readEntries(const fs::path& file)
{
    Entries entries;
    chf::TChunkRef<chf::IStream> stream(
        new chf::CKoreFileStream(*kore::CURI::fromLocalPath(file.u16string().c_str()), kore::IStreamManager::kRead));
    qor_lang::CLanguageFile::readEntries(*stream, nullptr, [&](const std::u16string& key, const std::u16string& text) {
        entries.emplace_back(key, text);
    });
    return entries;
}

// One catalogue in two languages, for each contender.
struct Catalogue {
    std::string name;
    std::u16string appId;
    std::u16string tags[2]; // this library's tags
    std::string gettextLanguage[2];
    fs::path files[2]; // the .qorlang files
    std::vector<std::u16string> hits;
    std::vector<std::u16string> misses;
    std::vector<std::string> hits8;
    std::vector<std::string> misses8;
    bool gettext = false;
    uintmax_t fileBytes = 0;
};

fs::path g_dir;
std::vector<Catalogue> g_catalogues;
// A child process that measures resident memory.
bool g_child = false;

std::string poQuoted(const std::string& text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

// Both languages of a catalogue from its PO file: .qorlang by qorlang, .mo by msgfmt.
void compileForGettext(Catalogue& c, const fs::path& po)
{
    for (int i = 0; i < 2; ++i) {
        const fs::path mo = g_dir / "gettext" / c.gettextLanguage[i] / "LC_MESSAGES" / (c.name + ".mo");
        fs::create_directories(mo.parent_path());
        c.gettext = run("msgfmt -o '" + mo.string() + "' '" + po.string() + "'");
    }
}

bool compile(Catalogue& c, const fs::path& po, const std::string& tool)
{
    for (int i = 0; i < 2; ++i) {
        c.files[i] = g_dir / "qor" / (utf8(c.appId) + "-" + utf8(c.tags[i]) + ".qorlang");
        if (tool.empty() || !run(tool + " compile '" + po.string() + "' -o '" + c.files[i].string() + "' --app-id " +
                                 utf8(c.appId) + " --language " + utf8(c.tags[i])))
            return false;
    }
    compileForGettext(c, po);
    return true;
}

void finish(Catalogue& c)
{
    c.fileBytes = fs::file_size(c.files[0]);
    // A child's first answer may be a miss: reading the entries would weigh on its memory.
    const Entries entries = g_child ? Entries{{u"any key", u""}} : readEntries(c.files[0]);
    for (const auto& [key, text] : entries) {
        if (key.empty() || (text.empty() && !g_child))
            continue;
        c.hits.push_back(key);
        c.misses.push_back(key + u"#absent");
    }
    std::shuffle(c.hits.begin(), c.hits.end(), std::mt19937(1));
    std::shuffle(c.misses.begin(), c.misses.end(), std::mt19937(2));
    for (const auto& k : c.hits)
        c.hits8.push_back(utf8(k));
    for (const auto& k : c.misses)
        c.misses8.push_back(utf8(k));
    QOR_LANG2_add(w(c.files[0].parent_path().u16string()), nullptr, w(c.appId));
    if (c.gettext)
        bindtextdomain(c.name.c_str(), (g_dir / "gettext").c_str());
}

void prepareCatalogues()
{
    if (g_child) {
        // The parent's catalogues, as it left them in the file "catalogues".
        std::ifstream list(g_dir / "catalogues");
        for (Catalogue c; list >> c.name;) {
            std::string appId, tags[2];
            list >> appId >> tags[0] >> tags[1] >> c.gettextLanguage[0] >> c.gettextLanguage[1] >> c.gettext;
            c.appId.assign(appId.begin(), appId.end());
            for (int i = 0; i < 2; ++i) {
                c.tags[i].assign(tags[i].begin(), tags[i].end());
                c.files[i] = g_dir / "qor" / (appId + "-" + tags[i] + ".qorlang");
            }
            g_catalogues.push_back(c);
        }
        for (Catalogue& c : g_catalogues)
            finish(c);
        std::setlocale(LC_ALL, "C.UTF-8");
        return;
    }
    g_dir = fs::temp_directory_path() / ("qor_lang2_compare_" + std::to_string(std::random_device()()));
    fs::create_directories(g_dir / "qor");
    const std::string tool = QORLANG_TOOL;

    // The real catalogue.
    fs::path mo;
    if (const char* given = std::getenv("QOR_BENCH_MO")) {
        mo = given;
    } else if (fs::exists("/usr/share/locale/ru/LC_MESSAGES/postgres-15.mo")) {
        mo = "/usr/share/locale/ru/LC_MESSAGES/postgres-15.mo";
    } else {
        std::error_code ignored;
        for (const auto& e : fs::recursive_directory_iterator("/usr/share/locale", ignored)) {
            if (e.path().extension() == ".mo" && (mo.empty() || e.file_size() > fs::file_size(mo)))
                mo = e.path();
        }
    }
    const fs::path realPo = g_dir / "real.po";
    Catalogue real;
    real.name = "real";
    real.appId = u"real";
    real.tags[0] = u"ru-RU";
    real.tags[1] = u"uk-UA";
    real.gettextLanguage[0] = "ru";
    real.gettextLanguage[1] = "uk";
    if (!mo.empty() && run("msgunfmt -o '" + realPo.string() + "' '" + mo.string() + "'") &&
        compile(real, realPo, tool)) {
        std::printf("real catalogue: %s\n", mo.c_str());
        g_catalogues.push_back(real);
    } else {
        std::fprintf(stderr, "real catalogue skipped (needs msgunfmt, qorlang and a .mo file)\n");
    }

    // The generated catalogue.
    const int kGenerated = std::getenv("QOR_BENCH_ENTRIES") ? std::atoi(std::getenv("QOR_BENCH_ENTRIES")) : 100000;
    Catalogue generated;
    generated.name = "generated";
    generated.appId = u"gen";
    generated.tags[0] = u"de-DE";
    generated.tags[1] = u"fr-FR";
    generated.gettextLanguage[0] = "de";
    generated.gettextLanguage[1] = "fr";
    const fs::path po = g_dir / "generated.po";
    {
        std::ofstream out(po);
        out << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
        for (int i = 0; i < kGenerated; ++i) {
            out << "msgid " << poQuoted("app.dialog" + std::to_string(i % 97) + ".options.label." + std::to_string(i))
                << "\nmsgstr "
                << poQuoted("Ein übersetzter Text mittlerer Länge, Nummer " + std::to_string(i) +
                            std::string(size_t(i % 160), 'x'))
                << "\n\n";
        }
    }
    if (!compile(generated, po, tool)) {
        compileForGettext(generated, po);
        // Without the tool: the same entries written directly.
        for (int i = 0; i < 2; ++i) {
            qor_lang::CLanguageFileWriter writer;
            writer.setLanguage(generated.tags[i], std::nullopt, std::nullopt);
            writer.setApplication(generated.appId);
            for (int n = 0; n < kGenerated; ++n) {
                const std::string key = "app.dialog" + std::to_string(n % 97) + ".options.label." + std::to_string(n);
                const std::string text = "Ein uebersetzter Text mittlerer Laenge, Nummer " + std::to_string(n) +
                                         std::string(size_t(n % 160), 'x');
                writer.addString(std::u16string(key.begin(), key.end()), std::u16string(text.begin(), text.end()));
            }
            generated.files[i] = g_dir / "qor" / (utf8(generated.appId) + "-" + utf8(generated.tags[i]) + ".qorlang");
            writer.writeFile(*kore::CURI::fromLocalPath(generated.files[i].u16string().c_str()));
        }
    }
    g_catalogues.push_back(generated);
    std::ofstream list(g_dir / "catalogues");
    for (Catalogue& c : g_catalogues) {
        finish(c);
        list << c.name << ' ' << utf8(c.appId) << ' ' << utf8(c.tags[0]) << ' ' << utf8(c.tags[1]) << ' '
             << c.gettextLanguage[0] << ' ' << c.gettextLanguage[1] << ' ' << c.gettext << '\n';
    }
    std::setlocale(LC_ALL, "C.UTF-8");
}

// The contenders, each behind one small interface.
struct Contender {
    virtual ~Contender() = default;
    virtual const char* name() const = 0;
    virtual bool available(const Catalogue&) const { return true; }
    virtual void switchTo(const Catalogue& c, int language) = 0;
    // One look-up, its result used and released as a host would.
    virtual void lookUp(const Catalogue& c, size_t index, bool hit) = 0;
};

const std::u16string kDefault = u"Default text";

struct QorLang2 : Contender {
    const char* name() const override { return "qor_lang2"; }
    void switchTo(const Catalogue& c, int language) override
    {
        QOR_LANG2_setCurrentLanguage(w(c.tags[language]));
        QOR_LANG2_freeWideString(QOR_LANG2_getLocalString(w(c.hits[0]), w(kDefault)));
    }
    void lookUp(const Catalogue& c, size_t i, bool hit) override
    {
        const auto& keys = hit ? c.hits : c.misses;
        QOR_LANG2_CHAR* text = QOR_LANG2_getLocalString(w(keys[i % keys.size()]), w(kDefault));
        benchmark::DoNotOptimize(text);
        QOR_LANG2_freeWideString(text);
    }
};

// What a developer would write instead: the file's entries in a hash map (a later entry of a
// key replacing an earlier one), looked up by the host's UTF-16 key without copying it.
struct BareMap : Contender {
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::u16string_view s) const { return std::hash<std::u16string_view>()(s); }
    };
    using Map = std::unordered_map<std::u16string, std::u16string, Hash, std::equal_to<>>;
    std::unique_ptr<Map> map = std::make_unique<Map>();

    const char* name() const override { return "bare unordered_map"; }
    void switchTo(const Catalogue& c, int language) override
    {
        auto next = std::make_unique<Map>();
        chf::TChunkRef<chf::IStream> stream(new chf::CKoreFileStream(
            *kore::CURI::fromLocalPath(c.files[language].u16string().c_str()), kore::IStreamManager::kRead));
        qor_lang::CLanguageFile::readEntries(
            *stream, nullptr, [&](const std::u16string& key, const std::u16string& text) { (*next)[key] = text; });
        map = std::move(next);
        lookUp(c, 0, true);
    }
    static char16_t* copy(std::u16string_view text)
    {
        auto* out = new char16_t[text.size() + 1];
        std::memcpy(out, text.data(), 2 * text.size());
        out[text.size()] = 0;
        return out;
    }
    char16_t* getLocalString(const char16_t* key, const char16_t* defaultText) const
    {
        auto found = map->find(std::u16string_view(key));
        return copy(found != map->end() && !found->second.empty() ? std::u16string_view(found->second)
                                                                  : std::u16string_view(defaultText));
    }
    void lookUp(const Catalogue& c, size_t i, bool hit) override
    {
        const auto& keys = hit ? c.hits : c.misses;
        char16_t* text = getLocalString(keys[i % keys.size()].c_str(), kDefault.c_str());
        benchmark::DoNotOptimize(text);
        delete[] text;
    }
};

struct Gettext : Contender {
    const char* name() const override { return "glibc dgettext"; }
    bool available(const Catalogue& c) const override { return c.gettext; }
    void switchTo(const Catalogue& c, int language) override
    {
        setenv("LANGUAGE", c.gettextLanguage[language].c_str(), 1);
        std::setlocale(LC_ALL, "C.UTF-8"); // makes gettext forget what it had looked up
        lookUp(c, 0, true);
    }
    void lookUp(const Catalogue& c, size_t i, bool hit) override
    {
        const auto& keys = hit ? c.hits8 : c.misses8;
        benchmark::DoNotOptimize(dgettext(c.name.c_str(), keys[i % keys.size()].c_str()));
    }
};

QorLang2 g_qor;
BareMap g_map;
Gettext g_gettext;
Contender* const g_contenders[] = {&g_qor, &g_map, &g_gettext};

void lookUps(benchmark::State& state, Contender* who, const Catalogue* c, bool hit)
{
    if (state.thread_index() == 0)
        who->switchTo(*c, 0);
    size_t i = static_cast<size_t>(state.thread_index()) * 7919;
    for (auto _ : state) {
        who->lookUp(*c, i, hit);
        i += 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void switches(benchmark::State& state, Contender* who, const Catalogue* c)
{
    int language = 0;
    long allocations = 0;
    for (auto _ : state) {
        language ^= 1;
        g_allocations = 0;
        g_counting = true;
        who->switchTo(*c, language);
        g_counting = false;
        allocations = g_allocations;
    }
    state.counters["allocations"] = double(allocations);
}

// Results by "measure/catalogue/contender".
std::map<std::string, double> g_results;

class CCollector : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration)
                continue;
            const std::string name = run.run_name.function_name;
            const std::string measure = name.substr(0, name.find('/'));
            const std::string rest = name.substr(measure.size());
            if (measure == "switch") {
                g_results[name] = run.GetAdjustedRealTime();
                g_results["allocations" + rest] = run.counters.at("allocations");
            } else {
                // Wall nanoseconds per look-up, whatever the number of threads.
                g_results[measure + (run.threads > 1 ? " x2" : "") + rest] =
                    1e9 / double(run.counters.at("items_per_second"));
            }
        }
    }
};

// Resident memory of a process that made one catalogue's language current with one contender:
// run as a child, so that each figure is a process of its own.
int residentChild(int contender, int catalogue, int switches)
{
    const double before = residentMiB();
    for (int i = 0; i < switches; ++i)
        g_contenders[contender]->switchTo(g_catalogues[size_t(catalogue)], i & 1);
    std::printf("%.1f %.1f\n", before, residentMiB());
    return 0;
}

std::string ratio(double a, double b)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2fx", a / b);
    return b > 0 && a > 0 ? text : "-";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 6 && std::string(argv[1]) == "--resident") {
        g_child = true;
        g_dir = argv[2];
        prepareCatalogues();
        return residentChild(std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5]));
    }
    prepareCatalogues();

    for (const Catalogue& c : g_catalogues) {
        for (Contender* who : g_contenders) {
            if (!who->available(c))
                continue;
            const std::string tail = "/" + c.name + "/" + who->name();
            for (bool hit : {true, false}) {
                benchmark::RegisterBenchmark((std::string(hit ? "hit" : "miss") + tail).c_str(), lookUps, who, &c, hit)
                    ->Threads(1)
                    ->Threads(2)
                    ->UseRealTime();
            }
            benchmark::RegisterBenchmark(("switch" + tail).c_str(), switches, who, &c)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
    }
    int benchArgc = argc;
    benchmark::Initialize(&benchArgc, argv);
    CCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);

    // Resident memory, each in a fresh process.
    std::map<std::string, std::pair<double, double>> resident;
    for (size_t c = 0; c < g_catalogues.size(); ++c) {
        for (int who = 0; who < 3; ++who) {
            if (!g_contenders[who]->available(g_catalogues[c]))
                continue;
            for (int switchCount : {1, 1000}) {
                if (switchCount > 1 && who != 0)
                    continue;
                const fs::path out = g_dir / "resident.txt";
                const std::string command = std::string(argv[0]) + " --resident '" + g_dir.string() + "' " +
                                            std::to_string(who) + " " + std::to_string(c) + " " +
                                            std::to_string(switchCount) + " > '" + out.string() + "'";
                if (std::system(command.c_str()) != 0)
                    continue;
                std::ifstream in(out);
                double before = 0, after = 0;
                in >> before >> after;
                resident[g_catalogues[c].name + "/" + g_contenders[who]->name() + "/" + std::to_string(switchCount)] = {
                    before, after};
            }
        }
    }

    std::printf(
        "\n| catalogue | measure | qor_lang2 | bare unordered_map | glibc dgettext | qor/map | qor/gettext |\n");
    std::printf("|---|---|---|---|---|---|---|\n");
    for (const Catalogue& c : g_catalogues) {
        auto row = [&](const std::string& label, const std::string& measure, const char* format) {
            double values[3];
            char cells[3][32];
            for (int who = 0; who < 3; ++who) {
                const auto found = g_results.find(measure + "/" + c.name + "/" + g_contenders[who]->name());
                values[who] = found == g_results.end() ? 0 : found->second;
                std::snprintf(cells[who], sizeof cells[who], format, values[who]);
                if (values[who] == 0)
                    std::strcpy(cells[who], "-");
            }
            std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", c.name.c_str(), label.c_str(), cells[0], cells[1],
                        cells[2], ratio(values[0], values[1]).c_str(), ratio(values[0], values[2]).c_str());
        };
        row("hit ns (" + std::to_string(c.hits.size()) + " keys)", "hit", "%.0f");
        row("miss ns", "miss", "%.0f");
        row("hit, 2 threads: wall ns per look-up", "hit x2", "%.0f");
        row("miss, 2 threads: wall ns per look-up", "miss x2", "%.0f");
        // Two threads' wall time per look-up over one thread's: 0.5 when nothing is shared.
        for (const char* measure : {"hit", "miss"}) {
            for (int who = 0; who < 3; ++who) {
                const std::string tail = "/" + c.name + "/" + g_contenders[who]->name();
                const auto one = g_results.find(measure + tail),
                           two = g_results.find(measure + std::string(" x2") + tail);
                if (one != g_results.end() && two != g_results.end() && one->second > 0)
                    g_results[measure + std::string(" scaling") + tail] = two->second / one->second;
            }
        }
        row("hit, 2 threads / 1 thread (0.5 ideal)", "hit scaling", "%.2f");
        row("miss, 2 threads / 1 thread (0.5 ideal)", "miss scaling", "%.2f");
        row("switch + first answer, ms", "switch", "%.2f");
        row("operator new calls per switch", "allocations", "%.0f");
        double rss[3] = {0, 0, 0};
        char cells[3][48];
        for (int who = 0; who < 3; ++who) {
            const auto found = resident.find(c.name + "/" + g_contenders[who]->name() + "/1");
            rss[who] = found == resident.end() ? 0 : found->second.second - found->second.first;
            std::snprintf(cells[who], sizeof cells[who], "%.1f (%.2fx file)", rss[who],
                          rss[who] * 1048576.0 / double(c.fileBytes));
            if (rss[who] == 0)
                std::strcpy(cells[who], "-");
        }
        std::printf("| %s | resident MiB the switch added (file %.1f MiB) | %s | %s | %s | %s | %s |\n", c.name.c_str(),
                    double(c.fileBytes) / 1048576.0, cells[0], cells[1], cells[2], ratio(rss[0], rss[1]).c_str(),
                    ratio(rss[0], rss[2]).c_str());
        const auto thousand = resident.find(c.name + "/qor_lang2/1000");
        if (thousand != resident.end())
            std::printf("| %s | resident MiB 1,000 switches added | %.1f | | | | |\n", c.name.c_str(),
                        thousand->second.second - thousand->second.first);
    }
    std::error_code ignored;
    if (!std::getenv("QOR_BENCH_KEEP"))
        fs::remove_all(g_dir, ignored);
    return 0;
}
