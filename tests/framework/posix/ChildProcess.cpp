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
#include <unistd.h>

extern char** environ;

namespace kore_test {

namespace {
constexpr char kParameterVariable[] = "QOR_TEST_CHILD_PARAMETER";
}

CChildProcess::CChildProcess(const std::string& testName, const std::string& parameter)
{
    std::string args[] = {"/proc/self/exe", "--gtest_also_run_disabled_tests", "--gtest_filter=" + testName,
                          "--gtest_brief=1"};
    char* argv[] = {args[0].data(), args[1].data(), args[2].data(), args[3].data(), nullptr};

    std::string variable = std::string(kParameterVariable) + "=" + parameter;
    std::vector<char*> envp;
    for (char** e = environ; *e; ++e) {
        if (std::strncmp(*e, kParameterVariable, sizeof(kParameterVariable) - 1) != 0)
            envp.push_back(*e);
    }
    envp.push_back(variable.data());
    envp.push_back(nullptr);

    pid_t pid;
    if (posix_spawn(&pid, "/proc/self/exe", nullptr, nullptr, argv, envp.data()) != 0)
        throw std::runtime_error("cannot start child process for " + testName);
    m_process = pid;
}

CChildProcess::~CChildProcess()
{
    if (m_process)
        kill();
}

int CChildProcess::wait(uint32_t timeoutMs)
{
    if (!m_process)
        return -1;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = 0;
    for (;;) {
        pid_t done = waitpid(static_cast<pid_t>(m_process), &status, WNOHANG);
        if (done == static_cast<pid_t>(m_process))
            break;
        if (done < 0 || std::chrono::steady_clock::now() > deadline) {
            kill();
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    m_process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void CChildProcess::kill()
{
    if (!m_process)
        return;
    ::kill(static_cast<pid_t>(m_process), SIGKILL);
    int status;
    waitpid(static_cast<pid_t>(m_process), &status, 0);
    m_process = 0;
}

std::string childParameter()
{
    const char* value = std::getenv(kParameterVariable);
    return value ? value : "";
}

} // namespace kore_test
