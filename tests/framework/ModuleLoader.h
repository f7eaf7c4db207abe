#pragma once
// Loads a shared library (module) for a test and unloads it again; win32/ and posix/ implement it.

#include <string>

namespace kore_test {

class CModule {
public:
    // `fileName`: the module's file, found next to the test program.
    explicit CModule(const std::string& fileName);
    ~CModule();
    CModule(const CModule&) = delete;
    CModule& operator=(const CModule&) = delete;

    bool isLoaded() const { return m_handle != nullptr; }
    void* symbol(const char* name) const;
    // Unloads now (the destructor does nothing afterwards).
    void unload();

private:
    void* m_handle = nullptr;
};

} // namespace kore_test
