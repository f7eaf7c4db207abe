#include "../ChildProcess.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace kore_test {

constexpr char kParameterVariable[] = "QOR_TEST_CHILD_PARAMETER";

CChildProcess::CChildProcess(const std::string& testName, const std::string& parameter)
{
    std::string args[] = {"/proc/self/exe", "--gtest_also_run_disabled_tests", "--gtest_filter=" + testName,
                          "--gtest_brief=1"};
    char* argv[] = {args[0].data(), args[1].data(), args[2].data(), args[3].data(), nullptr};
    // This environment without our variable, then the variable with `parameter`: built apart, so
    // that this process's own environment (its own parameter, if it is a child) stays untouched.
    std::string variable = std::string(kParameterVariable) + "=" + parameter;
    std::vector<char*> envp;
    for (char** e = environ; *e; ++e)
        if (std::strncmp(*e, kParameterVariable, sizeof(kParameterVariable) - 1) != 0)
            envp.push_back(*e);
    envp.insert(envp.end(), {variable.data(), nullptr});
    pid_t pid;
    if (posix_spawn(&pid, args[0].c_str(), nullptr, nullptr, argv, envp.data()) != 0)
        throw std::runtime_error("cannot start child process for " + testName);
    m_process = pid;
}

int CChildProcess::wait(uint32_t timeoutMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = 0;
    pid_t done = 0;
    while (m_process && (done = waitpid(static_cast<pid_t>(m_process), &status, WNOHANG)) == 0) {
        if (std::chrono::steady_clock::now() > deadline)
            kill();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    const bool exited = m_process && done > 0 && WIFEXITED(status);
    m_process = 0;
    return exited ? WEXITSTATUS(status) : -1;
}

void CChildProcess::kill()
{
    if (!m_process)
        return;
    ::kill(static_cast<pid_t>(m_process), SIGKILL);
    waitpid(static_cast<pid_t>(m_process), nullptr, 0);
    m_process = 0;
}

std::string childParameter()
{
    const char* value = std::getenv(kParameterVariable);
    return value ? value : "";
}

bool runsUnderWine()
{
    return false;
}

} // namespace kore_test
