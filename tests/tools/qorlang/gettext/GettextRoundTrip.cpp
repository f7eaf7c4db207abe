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
#include "qor_lang2.h"

#include "GettextTestSupport.h"
#include "Unicode.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "qor_lang_manager/CLanguageFile.h"

#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using namespace gettext_test;

// The original strings of a .mo file: each key gettext can answer (a plural entry by its
// singular; a context as context + U+0004 + msgid, as gettext stores it).
std::vector<std::string> moKeys(const std::string& mo)
{
    std::vector<std::string> keys;
    for (std::string key : moOriginals(mo)) {
        key.resize(std::strlen(key.c_str()));
        if (!key.empty())
            keys.push_back(key);
    }
    return keys;
}

fs::path pickCatalogue()
{
    if (const char* given = std::getenv("QOR_TEST_MO"))
        return given;
    fs::path best;
    std::error_code ignored;
    for (const auto& e : fs::directory_iterator("/usr/share/locale/ru/LC_MESSAGES", ignored)) {
        if (e.path().extension() == ".mo" && (best.empty() || e.file_size() > fs::file_size(best)))
            best = e.path();
    }
    return best;
}

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
    const fs::path mo = pickCatalogue();
    if (!have("msgunfmt") || !have("msgfmt") || ((form == "ts" || form == "xlf") && !have("lconvert")) || mo.empty()) {
        std::printf("skipped: needs msgunfmt, msgfmt%s and a catalogue under /usr/share/locale/ru\n",
                    form == "ts" || form == "xlf" ? ", lconvert" : "");
        return kSkip;
    }
    const fs::path dir =
        fs::temp_directory_path() / ("qorlang_round_trip_" + form + "_" + std::to_string(std::random_device()()));
    fs::create_directories(dir / "qor");
    fs::create_directories(dir / "gettext" / "ru" / "LC_MESSAGES");
    const fs::path po = dir / "catalogue.po";
    const fs::path gettextMo = dir / "gettext" / "ru" / "LC_MESSAGES" / "app.mo";
    const fs::path compiled = dir / "qor" / "app-ru-RU.qorlang";
    std::printf("catalogue: %s\n", mo.c_str());

    fs::path input = po;
    bool ok =
        run("msgunfmt -o " + quote(po) + " " + quote(mo)) && run("msgfmt -o " + quote(gettextMo) + " " + quote(po));
    if (ok && (form == "ts" || form == "xlf")) {
        input = dir / ("catalogue." + form);
        ok = run("lconvert -i " + quote(po) + " -o " + quote(input));
    } else if (ok && form.rfind("decompiled.", 0) == 0) {
        const fs::path first = dir / "first-ru-RU.qorlang";
        input = dir / form;
        ok = run(quote(qorlang) + " compile " + quote(po) + " -o " + quote(first) + " --app-id app --language ru-RU") &&
             run(quote(qorlang) + " decompile " + quote(first) + " -o " + quote(input)) &&
             (form != "decompiled.po" || run("msgfmt --check -o /dev/null " + quote(input)));
    }
    ok = ok &&
         run(quote(qorlang) + " compile " + quote(input) + " -o " + quote(compiled) + " --app-id app --language ru-RU");
    if (!ok) {
        std::printf("FAILED: a command failed (files kept in %s)\n", dir.c_str());
        return 1;
    }

    setenv("LANGUAGE", "ru", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    bindtextdomain("app", (dir / "gettext").c_str());
    bind_textdomain_codeset("app", "UTF-8");

    const std::u16string folder = (dir / "qor").u16string();
    if (QOR_LANG2_add(reinterpret_cast<const QOR_LANG2_CHAR*>(folder.c_str()), nullptr,
                      reinterpret_cast<const QOR_LANG2_CHAR*>(u"app")) != 0 ||
        QOR_LANG2_getLanguageCount(reinterpret_cast<const QOR_LANG2_CHAR*>(u"app")) != 1 ||
        QOR_LANG2_setCurrentLanguage(reinterpret_cast<const QOR_LANG2_CHAR*>(u"ru-RU")) != 0) {
        std::printf("FAILED: the library did not load %s\n", compiled.c_str());
        return 1;
    }

    // Every key gettext knows answers gettext's text...
    size_t mismatches = 0;
    const std::vector<std::string> keys = moKeys(readAll(gettextMo));
    for (const std::string& key : keys) {
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
    std::printf("%s: %zu gettext keys, %zu entries in the language file, %zu mismatches\n", form.c_str(), keys.size(),
                entries, mismatches);
    if (keys.size() < 2 || entries < keys.size() || mismatches) {
        std::printf("FAILED (files kept in %s)\n", dir.c_str());
        return 1;
    }
    fs::remove_all(dir);
    return 0;
}
