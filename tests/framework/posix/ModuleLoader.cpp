#include "../ModuleLoader.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>

namespace kore_test {

namespace {
std::string programFolder()
{
    char path[PATH_MAX] = {};
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    std::string exe(path, n > 0 ? static_cast<size_t>(n) : 0);
    return exe.substr(0, exe.rfind('/') + 1);
}
} // namespace

CModule::CModule(const std::string& fileName)
{
    m_handle = dlopen((programFolder() + fileName).c_str(), RTLD_NOW | RTLD_LOCAL);
}

CModule::~CModule()
{
    unload();
}

void* CModule::symbol(const char* name) const
{
    return m_handle ? dlsym(m_handle, name) : nullptr;
}

void CModule::unload()
{
    if (m_handle)
        dlclose(m_handle);
    m_handle = nullptr;
}

} // namespace kore_test
