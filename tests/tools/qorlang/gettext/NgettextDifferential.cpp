// Plural forms against glibc's ngettext: real catalogues of this machine with plural entries are
// turned into PO (msgunfmt), compiled by qorlang and loaded through the library; for every plural
// entry and every n in 0..1000, qor_lang2::trn (trnc for an entry with a context) must answer what
// dngettext answers from the .mo msgfmt makes of the same PO.
//
//   qorlang_ngettext_differential <qorlang> <language> <tag>
//
// Each catalogue is compared twice: compiled with its own rule, and without it, when the library
// answers by the language's CLDR rule.
// Takes the largest catalogues under /usr/share/locale/<language> that hold plural entries, until
// they hold 20 of them or five catalogues are taken, each in a process of its own (the library has
// one current language per process). QOR_TEST_MO names one catalogue instead.
// Exit 77 (skipped) when msgunfmt, msgfmt or a catalogue with plural entries is missing.
#include "GettextTestSupport.h"
#include "qor_lang2.hpp"

namespace {

using namespace gettext_test;

constexpr unsigned long kLastN = 1000;

// The originals of a .mo file that hold a plural pair: "[context EOT] singular NUL plural".
std::vector<std::string> pluralOriginals(const std::string& mo)
{
    std::vector<std::string> out;
    for (std::string& original : moOriginals(mo)) {
        if (original.find('\0') != std::string::npos)
            out.push_back(std::move(original));
    }
    return out;
}

std::vector<fs::path> pickCatalogues(const std::string& language)
{
    std::vector<fs::path> picked;
    size_t entries = 0;
    for (const fs::path& path : cataloguesOf(language)) {
        const size_t plurals = pluralOriginals(readAll(path)).size();
        if (plurals == 0)
            continue;
        picked.push_back(path);
        entries += plurals;
        if (entries >= 20 || picked.size() == 5)
            break;
    }
    return picked;
}

// One catalogue, in this process. Returns the number of mismatches, or -1 when a step failed.
// withoutRule: the language file gets no rule of its own, so the library answers by the language's CLDR rule.
long compareOne(const std::string& qorlang, const std::string& language, const std::string& tag, const fs::path& mo,
                bool withoutRule)
{
    const CWorkFolder work("ngettext", language);
    const fs::path compiled = work.qor / ("app-" + tag + ".qorlang");
    if (!work.unpack(mo) || (withoutRule && !run("sed -i '/^\"Plural-Forms:/d' " + quote(work.po))) ||
        !work.compile(qorlang, work.po, compiled, tag) || !work.load(tag)) {
        std::printf("FAILED: a command failed or the library did not load %s (files kept in %s)\n", mo.c_str(),
                    work.dir.c_str());
        return -1;
    }

    long mismatches = 0;
    size_t translated = 0; // answers that are not the untranslated fallback: the comparison is not vacuous
    const std::vector<std::string> originals = pluralOriginals(readAll(work.gettextMo));
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
    if (mismatches == 0)
        fs::remove_all(work.dir);
    return translated == 0 ? -1 : mismatches;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s <qorlang> <language> <tag>\n", argv[0]);
        return 2;
    }
    const std::string qorlang = argv[1], language = argv[2], tag = argv[3];
    if (const char* one = std::getenv("QOR_TEST_MO"))
        return compareOne(qorlang, language, tag, one, std::getenv("QOR_TEST_WITHOUT_RULE") != nullptr) == 0 ? 0 : 1;

    const std::vector<fs::path> catalogues = pickCatalogues(language);
    if (!have("msgunfmt") || !have("msgfmt") || catalogues.empty()) {
        std::printf("skipped: needs msgunfmt, msgfmt and a catalogue with plural entries under /usr/share/locale/%s\n",
                    language.c_str());
        return kSkip;
    }
    int status = 0;
    for (const fs::path& mo : catalogues) {
        std::fflush(stdout);
        const std::string self = quote(fs::canonical("/proc/self/exe"));
        for (const char* mode : {"", "QOR_TEST_WITHOUT_RULE=1 "}) {
            if (!run(mode + ("QOR_TEST_MO=" + quote(mo)) + " " + self + " " + quote(qorlang) + " " + language + " " +
                     tag))
                status = 1;
        }
    }
    return status;
}
