#include "../ChildProcess.h"

#include <stdexcept>
#include <vector>

#include <windows.h>

namespace kore_test {

namespace {

constexpr wchar_t kParameterVariable[] = L"QOR_TEST_CHILD_PARAMETER";

std::wstring widen(const std::string& utf8)
{
    if (utf8.empty())
        return {};
    int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), n);
    return wide;
}

// This process's environment without our variable, then the variable with `parameter`.
std::vector<wchar_t> childEnvironment(const std::string& parameter)
{
    std::vector<wchar_t> block;
    const std::wstring prefix = std::wstring(kParameterVariable) + L"=";
    wchar_t* strings = GetEnvironmentStringsW();
    for (const wchar_t* entry = strings; *entry; entry += wcslen(entry) + 1) {
        if (wcsncmp(entry, prefix.c_str(), prefix.size()) != 0)
            block.insert(block.end(), entry, entry + wcslen(entry) + 1);
    }
    FreeEnvironmentStringsW(strings);
    const std::wstring ours = prefix + widen(parameter);
    block.insert(block.end(), ours.c_str(), ours.c_str() + ours.size() + 1);
    block.push_back(L'\0');
    return block;
}

} // namespace

CChildProcess::CChildProcess(const std::string& testName, const std::string& parameter)
{
    std::vector<wchar_t> path(MAX_PATH);
    DWORD length;
    while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) ==
           path.size())
        path.resize(path.size() * 2);
    const std::wstring exe(path.data(), length);
    std::wstring commandLine = L"\"" + exe + L"\" --gtest_also_run_disabled_tests --gtest_filter=" +
                               widen(testName) + L" --gtest_brief=1";
    std::vector<wchar_t> environment = childEnvironment(parameter);

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION info{};
    if (!CreateProcessW(exe.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                        CREATE_UNICODE_ENVIRONMENT, environment.data(), nullptr, &startup, &info))
        throw std::runtime_error("cannot start child process for " + testName);
    CloseHandle(info.hThread);
    m_process = reinterpret_cast<intptr_t>(info.hProcess);
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
    DWORD n = GetEnvironmentVariableW(kParameterVariable, nullptr, 0);
    if (n == 0)
        return {};
    std::wstring wide(n, L'\0');
    n = GetEnvironmentVariableW(kParameterVariable, wide.data(), n);
    wide.resize(n);
    int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr,
                                    0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(), bytes,
                        nullptr, nullptr);
    return utf8;
}

} // namespace kore_test
