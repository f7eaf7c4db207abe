#include "../ChildProcess.h"

#include <cwchar>
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

// This process's environment without our variable, then the variable with `parameter`: built
// apart, so that this process's own environment (its own parameter, if it is a child) stays untouched.
std::vector<wchar_t> childEnvironment(const std::string& parameter)
{
    std::vector<wchar_t> block;
    const std::wstring prefix = std::wstring(kParameterVariable) + L"=";
    wchar_t* strings = GetEnvironmentStringsW();
    for (const wchar_t* entry = strings; *entry; entry += wcslen(entry) + 1)
        if (wcsncmp(entry, prefix.c_str(), prefix.size()) != 0)
            block.insert(block.end(), entry, entry + wcslen(entry) + 1);
    FreeEnvironmentStringsW(strings);
    const std::wstring ours = prefix + widen(parameter);
    block.insert(block.end(), ours.c_str(), ours.c_str() + ours.size() + 1);
    block.push_back(L'\0');
    return block;
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
    std::vector<wchar_t> environment = childEnvironment(parameter);
    if (!CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_UNICODE_ENVIRONMENT,
                        environment.data(), nullptr, &startup, &info))
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
