#include "../ModuleLoader.h"

#include <windows.h>

namespace kore_test {

CModule::CModule(const std::string& fileName)
{
    // A bare file name: Windows looks next to the program first.
    m_handle = LoadLibraryA(fileName.c_str());
}

CModule::~CModule()
{
    unload();
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

} // namespace kore_test
