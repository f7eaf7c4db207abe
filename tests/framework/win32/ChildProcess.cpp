#include "../ChildProcess.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include <windows.h>

namespace kore_test {

namespace {

constexpr wchar_t kParameterVariable[] = L"QOR_TEST_CHILD_PARAMETER";

std::wstring widen(const std::string& utf8)
{
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

} // namespace

CChildProcess::CChildProcess(const std::string& testName, const std::string& parameter)
{
    std::vector<wchar_t> path(32768); // the longest path Windows has
    const std::wstring exe(path.data(), GetModuleFileNameW(nullptr, path.data(), 32768));
    std::wstring commandLine =
        L"\"" + exe + L"\" --gtest_also_run_disabled_tests --gtest_filter=" + widen(testName) + L" --gtest_brief=1";

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION info{};
    // The child inherits the variable, which this process drops again at once.
    SetEnvironmentVariableW(kParameterVariable, widen(parameter).c_str());
    const BOOL started =
        CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info);
    SetEnvironmentVariableW(kParameterVariable, nullptr);
    if (!started)
        throw std::runtime_error("cannot start child process for " + testName);
    CloseHandle(info.hThread);
    m_process = reinterpret_cast<intptr_t>(info.hProcess);
}

int CChildProcess::wait(uint32_t timeoutMs)
{
    if (!m_process)
        return -1;
    HANDLE process = reinterpret_cast<HANDLE>(m_process);
    if (WaitForSingleObject(process, timeoutMs) != WAIT_OBJECT_0) {
        kill();
        return -1;
    }
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    m_process = 0;
    return static_cast<int>(code);
}

void CChildProcess::kill()
{
    if (!m_process)
        return;
    HANDLE process = reinterpret_cast<HANDLE>(m_process);
    TerminateProcess(process, 1);
    WaitForSingleObject(process, INFINITE);
    CloseHandle(process);
    m_process = 0;
}

std::string childParameter()
{
    std::wstring wide(GetEnvironmentVariableW(kParameterVariable, nullptr, 0), L'\0');
    wide.resize(GetEnvironmentVariableW(kParameterVariable, wide.data(), static_cast<DWORD>(wide.size())));
    const std::u8string utf8 = std::filesystem::path(wide).u8string();
    return std::string(utf8.begin(), utf8.end());
}

bool runsUnderWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

} // namespace kore_test
