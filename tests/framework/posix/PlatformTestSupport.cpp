// The POSIX side of the module loader and the mutex-name clean-up of ChildProcess.h.
#include "../ChildProcess.h"

#include "framework/posix/CGlobalMutexImpl.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>

namespace kore_test {

CModule::CModule(const std::string& fileName)
{
    char path[PATH_MAX] = {};
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    const std::string exe(path, n > 0 ? static_cast<size_t>(n) : 0);
    m_handle = dlopen((exe.substr(0, exe.rfind('/') + 1) + fileName).c_str(), RTLD_NOW | RTLD_LOCAL);
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

void removeGlobalMutexName(const std::string& name)
{
    kore::posix::CGlobalMutexImpl::removeSystemName(name.c_str());
}

} // namespace kore_test
