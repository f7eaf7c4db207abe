// A real gettext catalogue of this machine, as PO (msgunfmt), as Qt TS and XLIFF 1.2 (lconvert)
// or decompiled back to PO, compiled by qorlang, loaded through the exported functions and
// compared entry by entry with glibc's own answer (dgettext) from the .mo msgfmt makes of the
// same PO. The keys are taken from that .mo, so that no reader of this project picks them (texts
// with system-dependent segments such as "%<PRIu64>" stand apart in a .mo; they are checked in the
// other direction, from the language file's entries).
//
//   qorlang_gettext_round_trip <qorlang> po|ts|xlf|decompiled.po|decompiled.ts|decompiled.xlf|decompiled.json
//
// Exit 77 (skipped) when msgunfmt, msgfmt, lconvert (for ts/xlf) or a catalogue is missing.
// QOR_TEST_MO names the catalogue; else the largest under /usr/share/locale/ru.
#include "GettextTestSupport.h"
#include "Unicode.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "qor_lang_manager/CLanguageFile.h"

using namespace gettext_test;

namespace {

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

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <qorlang> po|ts|xlf|decompiled.(po|ts|xlf|json)\n", argv[0]);
        return 2;
    }
    const std::string qorlang = argv[1], form = argv[2];
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
    if (!ok || !work.compile(qorlang, input, compiled, "ru-RU") || !work.load("ru-RU")) {
        std::printf("FAILED: a command failed or the library did not load %s (files kept in %s)\n", compiled.c_str(),
                    work.dir.c_str());
        return 1;
    }

    // Every key gettext knows (a plural entry by its singular) answers gettext's text...
    size_t mismatches = 0, keys = 0;
    for (std::string key : moOriginals(readAll(work.gettextMo))) {
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
        if (expected == key8.c_str() || utf16(expected) != (forms ? text.substr(0, text.find(u'\0')) : text)) {
            if (++mismatches <= 10)
                std::printf("mismatch: entry \"%s\" of the language file: gettext \"%s\"\n", key8.c_str(), expected);
        }
    });
    std::printf("%s: %zu gettext keys, %zu entries in the language file, %zu mismatches\n", form.c_str(), keys, entries,
                mismatches);
    if (keys < 2 || entries < keys || mismatches) {
        std::printf("FAILED (files kept in %s)\n", work.dir.c_str());
        return 1;
    }
    fs::remove_all(work.dir);
    return 0;
}
