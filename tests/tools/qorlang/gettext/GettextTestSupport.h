#pragma once
// What the programs that compare the library with glibc's gettext share: running gettext's tools,
// a work folder with a catalogue as PO, as gettext's .mo and as a language file both sides load,
// and the original strings of a .mo catalogue.
#include "qor_lang2.h"

#include <libintl.h>

#include <algorithm>
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
#include <utility>
#include <vector>

namespace gettext_test {

namespace fs = std::filesystem;

constexpr int kSkip = 77; // CTest's SKIP_RETURN_CODE for these programs

inline bool run(const std::string& command)
{
    std::printf("$ %s\n", command.c_str());
    std::fflush(stdout);
    return std::system(command.c_str()) == 0;
}

inline bool have(const char* program)
{
    return std::system(("command -v " + std::string(program) + " >/dev/null 2>&1").c_str()) == 0;
}

inline std::string quote(const fs::path& p)
{
    return "'" + p.string() + "'";
}

inline std::string readAll(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// The catalogues of `language` on this machine, largest first.
inline std::vector<fs::path> cataloguesOf(const std::string& language)
{
    std::vector<std::pair<uintmax_t, fs::path>> all;
    std::error_code ignored;
    for (const auto& e : fs::directory_iterator("/usr/share/locale/" + language + "/LC_MESSAGES", ignored)) {
        if (e.path().extension() == ".mo")
            all.emplace_back(e.file_size(ignored), e.path());
    }
    std::sort(all.rbegin(), all.rend());
    std::vector<fs::path> paths;
    for (auto& [size, path] : all)
        paths.push_back(std::move(path));
    return paths;
}

// A fresh folder holding the catalogue `mo` as PO (msgunfmt) and as the .mo msgfmt makes of that
// PO, bound as gettext's domain "app" in `language`, and a language file of application "app".
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
};

// The original strings of a little-endian .mo file as stored: "[context EOT] msgid", followed by
// NUL and the plural msgid for a plural entry. Stops at the first entry outside the file.
inline std::vector<std::string> moOriginals(const std::string& mo)
{
    auto u32 = [&](size_t at) {
        uint32_t v = 0;
        if (at + 4 <= mo.size())
            std::memcpy(&v, mo.data() + at, 4);
        return v;
    };
    std::vector<std::string> out;
    if (mo.size() < 28 || u32(0) != 0x950412de)
        return out;
    const uint32_t count = u32(8), originals = u32(12);
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t length = u32(originals + 8 * i), offset = u32(originals + 8 * i + 4);
        if (offset > mo.size() || length > mo.size() - offset)
            break;
        out.push_back(mo.substr(offset, length));
    }
    return out;
}

} // namespace gettext_test
