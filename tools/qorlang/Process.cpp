#include "Process.h"
#include "Catalogue.h"

#include <cstdlib>
#include <filesystem>

namespace qorlang {

namespace fs = std::filesystem;

std::optional<std::string> findProgram(const std::string& program)
{
#ifdef _WIN32
    const char separator = ';';
    const std::string name = program + ".exe";
#else
    const char separator = ':';
    const std::string& name = program;
#endif
    const char* path = std::getenv("PATH");
    std::string folders = path ? path : "";
    for (size_t start = 0; start <= folders.size();) {
        const size_t end = std::min(folders.find(separator, start), folders.size());
        const std::string folder = folders.substr(start, end - start);
        start = end + 1;
        if (folder.empty())
            continue;
        std::error_code ignored;
        const fs::path candidate = fs::path(folder) / name;
        if (fs::is_regular_file(candidate, ignored))
            return candidate.string();
    }
    return std::nullopt;
}

std::string requireProgram(const std::string& program, const std::string& package)
{
    if (auto found = findProgram(program))
        return *found;
    fail("qorlang", 0, program + " is not installed or not on PATH; install " + package);
}

namespace {

// One argument as the command interpreter reads it back unchanged.
std::string quoted(const std::string& argument)
{
#ifdef _WIN32
    std::string out = "\"";
    size_t backslashes = 0;
    for (char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        out.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
        backslashes = 0;
        out.push_back(c);
    }
    out.append(2 * backslashes, '\\');
    return out + "\"";
#else
    std::string out = "'";
    for (char c : argument)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
#endif
}

} // namespace

int runProgram(const std::vector<std::string>& arguments, bool discardOutput)
{
    std::string command;
    for (const std::string& argument : arguments)
        command += (command.empty() ? "" : " ") + quoted(argument);
#ifdef _WIN32
    if (discardOutput)
        command += " >NUL 2>&1";
#else
    if (discardOutput)
        command += " >/dev/null 2>&1";
#endif
#ifdef _WIN32
    command = "\"" + command + "\""; // cmd /c strips one pair of quotes around the whole line
#endif
    const int status = std::system(command.c_str());
    return status;
}

} // namespace qorlang
