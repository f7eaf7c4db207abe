#pragma once
// What tests need from the platform; win32/ and posix/ implement it.
// A second process for tests that need one: this test program started again to run a single
// test, usually a DISABLED_ one that only runs when asked for by name. The parent hands the child
// one text through the environment (read with childParameter()).

#include <cstdint>
#include <string>

namespace kore_test {

class CChildProcess {
public:
    // Starts the test `testName` ("Suite.DISABLED_Name") in a new process of this program.
    CChildProcess(const std::string& testName, const std::string& parameter);
    // A child still running is killed: a failing test must not leave processes behind.
    ~CChildProcess() { kill(); }
    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    // Waits for the child to end and returns its exit code (0: its test passed). A child still
    // running after `timeoutMs` is killed and -1 returned.
    int wait(uint32_t timeoutMs = 30000);
    // Ends the child at once, as a crash would (SIGKILL, TerminateProcess), and waits for its end.
    void kill();

private:
    // A pid on POSIX, a process HANDLE on Windows; 0 once the child has been waited for.
    intptr_t m_process = 0;
};

// The parent's text in a child process; empty in a process that is no child.
std::string childParameter();

// True in a Windows build that runs under Wine rather than Windows.
bool runsUnderWine();

// Loads a shared library (module) found next to the test program, and unloads it again.
class CModule {
public:
    explicit CModule(const std::string& fileName);
    ~CModule() { unload(); }
    CModule(const CModule&) = delete;
    CModule& operator=(const CModule&) = delete;
    void* symbol(const char* name) const;
    void unload(); // now; the destructor does nothing afterwards

private:
    void* m_handle = nullptr;
};

// Removes a global mutex name left in the system by a test (a no-op where, as on Windows, the
// name disappears with its last handle).
void removeGlobalMutexName(const std::string& name);

} // namespace kore_test
