// The library against glibc's gettext on real catalogues of this machine. Each catalogue is turned into
// PO (msgunfmt), compiled by qorlang and loaded through the library, while gettext answers from the .mo
// msgfmt makes of the same PO. Keys are taken from that .mo, so that no reader of this project picks them.
//
//   qorlang_gettext_differential <qorlang> round-trip po|ts|xlf|decompiled.(po|ts|xlf|json)
//     The largest Russian catalogue (QOR_TEST_MO names another), as PO, as Qt TS and XLIFF 1.2
//     (lconvert) or decompiled back: every key answers dgettext's text through the exported functions,
//     and the language file holds nothing gettext would not answer (texts with system-dependent
//     segments such as "%<PRIu64>" stand apart in a .mo; they are checked in this direction).
//   qorlang_gettext_differential <qorlang> ngettext <language> <tag>
//     For every plural entry and n in 0..1000, qor_lang2::trn (trnc with a context) answers what
//     dngettext answers; each catalogue compiled with its own rule and without it (the language's CLDR
//     rule). The largest catalogues with plural entries are taken until they hold 20 of them or five
//     are taken, each in a process of its own (the library has one current language per process).
//
// Exit 77 (skipped) when a gettext tool, lconvert (for ts/xlf) or a catalogue is missing.
#include "Unicode.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "qor_lang2.h"
#include "qor_lang2.hpp"
#include "qor_lang_manager/CLanguageFile.h"

#include <libintl.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr int kSkip = 77; // CTest's SKIP_RETURN_CODE for this program
constexpr unsigned long kLastN = 1000;

bool run(const std::string& command)
{
    std::printf("$ %s\n", command.c_str());
    std::fflush(stdout);
    return std::system(command.c_str()) == 0;
}

bool have(const char* program)
{
    return std::system(("command -v " + std::string(program) + " >/dev/null 2>&1").c_str()) == 0;
}

std::string quote(const fs::path& p)
{
    return "'" + p.string() + "'";
}

std::string readAll(const fs::path& path)
{
    std::ostringstream out;
    out << std::ifstream(path, std::ios::binary).rdbuf();
    return out.str();
}

// The original strings of a little-endian .mo file as stored: "[context EOT] msgid", followed by NUL and
// the plural msgid for a plural entry (only those with `pluralOnly`). Stops at the first entry outside the file.
std::vector<std::string> moOriginals(const fs::path& path, bool pluralOnly = false)
{
    const std::string mo = readAll(path);
    auto u32 = [&](size_t at) {
        uint32_t v = 0;
        if (at + 4 <= mo.size())
            std::memcpy(&v, mo.data() + at, 4);
        return v;
    };
    std::vector<std::string> out;
    for (uint32_t i = 0; mo.size() >= 28 && u32(0) == 0x950412de && i < u32(8); ++i) {
        const uint32_t length = u32(u32(12) + 8 * i), offset = u32(u32(12) + 8 * i + 4);
        if (offset > mo.size() || length > mo.size() - offset)
            break;
        if (!pluralOnly || mo.substr(offset, length).find('\0') != std::string::npos)
            out.push_back(mo.substr(offset, length));
    }
    return out;
}

// The catalogues of `language` on this machine, largest first.
std::vector<fs::path> cataloguesOf(const std::string& language)
{
    std::vector<std::pair<uintmax_t, fs::path>> all;
    std::error_code ignored;
    for (const auto& e : fs::directory_iterator("/usr/share/locale/" + language + "/LC_MESSAGES", ignored))
        if (e.path().extension() == ".mo")
            all.emplace_back(e.file_size(ignored), e.path());
    std::sort(all.rbegin(), all.rend());
    std::vector<fs::path> paths;
    for (auto& [size, path] : all)
        paths.push_back(std::move(path));
    return paths;
}

// A fresh folder holding the catalogue `mo` as PO (msgunfmt) and as the .mo msgfmt makes of that PO,
// bound as gettext's domain "app" in `language`, and a folder for language files of application "app".
struct CWorkFolder {
    fs::path dir, po, gettextMo, qor;
    std::string language;

    CWorkFolder(const std::string& name, const std::string& languageName) : language(languageName)
    {
        dir = fs::temp_directory_path() / ("qorlang_" + name + "_" + std::to_string(std::random_device()()));
        qor = dir / "qor";
        po = dir / "catalogue.po";
        gettextMo = dir / "gettext" / language / "LC_MESSAGES" / "app.mo";
        fs::create_directories(qor);
        fs::create_directories(gettextMo.parent_path());
    }
    bool unpack(const fs::path& mo) const
    {
        return run("msgunfmt -o " + quote(po) + " " + quote(mo)) &&
               run("msgfmt -o " + quote(gettextMo) + " " + quote(po));
    }
    bool compile(const std::string& qorlang, const fs::path& input, const fs::path& output,
                 const std::string& tag) const
    {
        return run(quote(qorlang) + " compile " + quote(input) + " -o " + quote(output) + " --app-id app --language " +
                   tag);
    }
    // Both sides answer from here on: gettext in `language`, the library in `tag`.
    bool load(const std::string& tag) const
    {
        setenv("LANGUAGE", language.c_str(), 1);
        std::setlocale(LC_ALL, "C.UTF-8");
        bindtextdomain("app", (dir / "gettext").c_str());
        bind_textdomain_codeset("app", "UTF-8");
        const std::u16string folder = qor.u16string(), tag16(tag.begin(), tag.end());
        const auto w = [](const std::u16string& s) { return reinterpret_cast<const QOR_LANG2_CHAR*>(s.c_str()); };
        return QOR_LANG2_add(w(folder), nullptr, w(u"app")) == 0 && QOR_LANG2_getLanguageCount(w(u"app")) == 1 &&
               QOR_LANG2_setCurrentLanguage(w(tag16)) == 0;
    }
    int failed(const std::string& what) const
    {
        std::printf("FAILED: %s (files kept in %s)\n", what.c_str(), dir.c_str());
        return 1;
    }
};

std::u16string utf16(const std::string& text)
{
    return qorlang::decodeUtf8(text).value_or(u"\uFFFD(bad UTF-8)");
}

std::u16string lookUp(const std::u16string& key)
{
    QOR_LANG2_CHAR* answer = QOR_LANG2_getLocalString(reinterpret_cast<const QOR_LANG2_CHAR*>(key.c_str()),
                                                      reinterpret_cast<const QOR_LANG2_CHAR*>(key.c_str()));
    std::u16string out(reinterpret_cast<const char16_t*>(answer));
    QOR_LANG2_freeWideString(answer);
    return out;
}

int roundTrip(const std::string& qorlang, const std::string& form)
{
    const bool lconvert = form == "ts" || form == "xlf";
    const std::vector<fs::path> largest = cataloguesOf("ru");
    const fs::path mo = std::getenv("QOR_TEST_MO") ? std::getenv("QOR_TEST_MO") : largest.empty() ? "" : largest[0];
    if (!have("msgunfmt") || !have("msgfmt") || (lconvert && !have("lconvert")) || mo.empty()) {
        std::printf("skipped: needs msgunfmt, msgfmt%s and a catalogue under /usr/share/locale/ru\n",
                    lconvert ? ", lconvert" : "");
        return kSkip;
    }
    const CWorkFolder work("round_trip_" + form, "ru");
    const fs::path compiled = work.qor / "app-ru-RU.qorlang";
    std::printf("catalogue: %s\n", mo.c_str());
    fs::path input = work.po;
    bool ok = work.unpack(mo);
    if (ok && lconvert) {
        input = work.dir / ("catalogue." + form);
        ok = run("lconvert -i " + quote(work.po) + " -o " + quote(input));
    } else if (ok && form.rfind("decompiled.", 0) == 0) {
        const fs::path first = work.dir / "first-ru-RU.qorlang";
        input = work.dir / form;
        ok = work.compile(qorlang, work.po, first, "ru-RU") &&
             run(quote(qorlang) + " decompile " + quote(first) + " -o " + quote(input)) &&
             (form != "decompiled.po" || run("msgfmt --check -o /dev/null " + quote(input)));
    }
    if (!ok || !work.compile(qorlang, input, compiled, "ru-RU") || !work.load("ru-RU"))
        return work.failed("a command failed or the library did not load " + compiled.string());

    // Every key gettext knows (a plural entry by its singular) answers gettext's text...
    size_t mismatches = 0, keys = 0;
    for (std::string key : moOriginals(work.gettextMo)) {
        key.resize(std::strlen(key.c_str()));
        if (key.empty())
            continue;
        ++keys;
        const char* expected = dgettext("app", key.c_str());
        if (lookUp(utf16(key)) != utf16(expected) && ++mismatches <= 10)
            std::printf("mismatch: key \"%s\": gettext \"%s\"\n", key.c_str(), expected);
    }
    // ...and the file holds nothing gettext would not answer.
    size_t entries = 0;
    const std::string bytes = readAll(compiled);
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(std::vector<uint8_t>(bytes.begin(), bytes.end())));
    qor_lang::CLanguageFile::readEntries(*stream, nullptr, [&](const std::u16string& key, const std::u16string& text) {
        ++entries;
        // A plural entry's forms (key + U+0005) begin with what gettext answers for its singular.
        const bool forms = !key.empty() && key.back() == u'\x05';
        const std::string key8 = qorlang::encodeUtf8(forms ? key.substr(0, key.size() - 1) : key);
        const char* expected = dgettext("app", key8.c_str());
        if ((expected == key8.c_str() || utf16(expected) != (forms ? text.substr(0, text.find(u'\0')) : text)) &&
            ++mismatches <= 10)
            std::printf("mismatch: entry \"%s\" of the language file: gettext \"%s\"\n", key8.c_str(), expected);
    });
    std::printf("%s: %zu gettext keys, %zu entries in the language file, %zu mismatches\n", form.c_str(), keys, entries,
                mismatches);
    if (keys < 2 || entries < keys || mismatches)
        return work.failed("the answers differ");
    fs::remove_all(work.dir);
    return 0;
}

// One catalogue, in this process; withoutRule: the language file gets no rule of its own.
int ngettextOne(const std::string& qorlang, const std::string& language, const std::string& tag, const fs::path& mo,
                bool withoutRule)
{
    const CWorkFolder work("ngettext", language);
    const fs::path compiled = work.qor / ("app-" + tag + ".qorlang");
    if (!work.unpack(mo) || (withoutRule && !run("sed -i '/^\"Plural-Forms:/d' " + quote(work.po))) ||
        !work.compile(qorlang, work.po, compiled, tag) || !work.load(tag))
        return work.failed("a command failed or the library did not load " + compiled.string());

    long mismatches = 0;
    size_t translated = 0; // answers that are not the untranslated fallback: the comparison is not vacuous
    const std::vector<std::string> originals = moOriginals(work.gettextMo, true);
    for (const std::string& original : originals) {
        const size_t nul = original.find('\0'), eot = original.find('\x04');
        const bool hasContext = eot != std::string::npos && eot < nul;
        const std::string context = hasContext ? original.substr(0, eot) : std::string();
        const std::string singular = original.substr(hasContext ? eot + 1 : 0, nul - (hasContext ? eot + 1 : 0));
        const std::string plural = original.substr(nul + 1);
        const std::string key = hasContext ? context + '\x04' + singular : singular;
        for (unsigned long n = 0; n <= kLastN; ++n) {
            const std::string expected = dngettext("app", key.c_str(), plural.c_str(), n);
            const std::string actual =
                hasContext ? qor_lang2::trnc(context, singular, plural, n) : qor_lang2::trn(singular, plural, n);
            translated += expected != (n == 1 ? singular : plural);
            if (actual != expected && ++mismatches <= 5)
                std::printf("mismatch: \"%s\" n=%lu: ngettext \"%s\", trn \"%s\"\n", singular.c_str(), n,
                            expected.c_str(), actual.c_str());
        }
    }
    std::printf("%s%s: %zu plural entries, %zu answers compared (n = 0..%lu), %zu of them translated, %ld mismatches\n",
                mo.c_str(), withoutRule ? " (CLDR rule)" : "", originals.size(), originals.size() * (kLastN + 1),
                kLastN, translated, mismatches);
    if (mismatches || translated == 0)
        return work.failed(mismatches ? "the answers differ" : "nothing translated");
    fs::remove_all(work.dir);
    return 0;
}

int ngettext(const std::string& qorlang, const std::string& language, const std::string& tag)
{
    if (const char* one = std::getenv("QOR_TEST_MO"))
        return ngettextOne(qorlang, language, tag, one, std::getenv("QOR_TEST_WITHOUT_RULE") != nullptr);
    std::vector<fs::path> picked;
    size_t entries = 0;
    for (const fs::path& path : cataloguesOf(language)) {
        if (picked.size() == 5 || entries >= 20)
            break;
        if (const size_t plurals = moOriginals(path, true).size()) {
            picked.push_back(path);
            entries += plurals;
        }
    }
    if (!have("msgunfmt") || !have("msgfmt") || picked.empty()) {
        std::printf("skipped: needs msgunfmt, msgfmt and a catalogue with plural entries under /usr/share/locale/%s\n",
                    language.c_str());
        return kSkip;
    }
    int status = 0;
    const std::string self = quote(fs::canonical("/proc/self/exe"));
    for (const fs::path& mo : picked)
        for (const char* mode : {"", "QOR_TEST_WITHOUT_RULE=1 "})
            if (!run(mode + ("QOR_TEST_MO=" + quote(mo)) + " " + self + " " + quote(qorlang) + " ngettext " + language +
                     " " + tag))
                status = 1;
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc == 4 || argc == 5 ? argv[2] : "";
    if (mode == "round-trip" && argc == 4)
        return roundTrip(argv[1], argv[3]);
    if (mode == "ngettext" && argc == 5)
        return ngettext(argv[1], argv[3], argv[4]);
    std::fprintf(stderr, "usage: %s <qorlang> round-trip FORM | ngettext LANGUAGE TAG\n", argv[0]);
    return 2;
}
