#pragma once
// Running gettext's programs (xgettext, msgmerge, msginit) where they do the job.

#include <optional>
#include <string>
#include <vector>

namespace qorlang {

// The full path of `program` found on PATH (with ".exe" on Windows), or nullopt.
std::optional<std::string> findProgram(const std::string& program);

// Runs `arguments` (the program's full path first), waits, and returns its exit status (0: it
// succeeded); its output and messages go to this process's, or nowhere with `discardOutput`.
int runProgram(const std::vector<std::string>& arguments, bool discardOutput = false);

// findProgram, or the error "<program> is not installed; <how to get it>".
std::string requireProgram(const std::string& program, const std::string& package);

} // namespace qorlang
