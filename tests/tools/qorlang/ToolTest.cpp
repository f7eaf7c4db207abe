// The qorlang program as translators run it: exit status, one-line messages, no partial output.
// Each folder under tool/ is a session: its files are copied into a fresh folder and its transcript
// replayed there. In a transcript, indented lines "$ command" (a bash line with pipefail; "qorlang" is
// the program just built, $version its version) are followed by the command's whole output (stdout and stderr) and "[status]" unless
// it is 0; other lines are comments. "$ (not root) ..." runs only where permissions stop the user.
#include "../../framework/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#ifndef _WIN32

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class QorlangSession : public testing::TestWithParam<const char*> {};

// The command's output, indented as in a transcript, and its status unless 0.
std::string run(const fs::path& folder, const std::string& command)
{
    std::ofstream(folder / "command.sh") << "cd \"${0%/*}/work\" || exit 99\nset -o pipefail\nversion=" QORLANG_VERSION
                                            "\nqorlang() { '" QORLANG_EXE "' \"$@\"; }\n"
                                         << command << "\n";
    FILE* pipe = popen(("bash '" + (folder / "command.sh").string() + "' 2>&1").c_str(), "r");
    std::string output, out;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        output.append(buffer, n);
    const int status = pclose(pipe);
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        out += "  " + line + "\n";
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        out += "  [" + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + "]\n";
    return out;
}

} // namespace

TEST_P(QorlangSession, ReplaysItsTranscript)
{
    const fs::path source = fs::path(QORLANG_DATA "/tool") / GetParam();
    const kore_test::CTempFolder folder;
    fs::copy(source, folder.path() / "work");
    fs::remove(folder.path() / "work" / "transcript");
    std::ifstream in(source / "transcript");
    std::string expected, actual, command, output;
    const auto finish = [&] {
        if (command.starts_with("(not root) ") && geteuid() == 0)
            actual += output; // permissions do not stop root
        else if (!command.empty())
            actual += run(folder.path(), command.substr(command.starts_with("(not root) ") ? 11 : 0));
        command.clear();
        output.clear();
    };
    for (std::string line; std::getline(in, line);) {
        expected += line + "\n";
        if (line.starts_with("  $ ")) {
            finish();
            command = line.substr(4);
            actual += line + "\n";
        } else if (line.starts_with("  ") && !command.empty()) {
            output += line + "\n";
        } else {
            finish();
            actual += line + "\n";
        }
    }
    finish();
    EXPECT_EQ(actual, expected);
}

INSTANTIATE_TEST_SUITE_P(Tool, QorlangSession, testing::Values("failures", "compile", "check", "i18next"),
                         [](const auto& info) { return std::string(info.param); });

#endif
