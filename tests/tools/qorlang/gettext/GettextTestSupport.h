#pragma once
// What the programs that compare the library with glibc's gettext share: running gettext's tools,
// reading files, and the original strings of a .mo catalogue.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
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
