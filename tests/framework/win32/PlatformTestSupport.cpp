// The Windows side of the module loader and the mutex-name clean-up of ChildProcess.h.
#include "../ChildProcess.h"

#include <windows.h>

namespace kore_test {

// A bare file name: Windows looks next to the program first.
CModule::CModule(const std::string& fileName) : m_handle(LoadLibraryA(fileName.c_str()))
{
}

void* CModule::symbol(const char* name) const
{
    return m_handle ? reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), name)) : nullptr;
}

void CModule::unload()
{
    if (m_handle)
        FreeLibrary(static_cast<HMODULE>(m_handle));
    m_handle = nullptr;
}

// A named Win32 mutex disappears with its last handle.
void removeGlobalMutexName(const std::string&)
{
}

} // namespace kore_test
