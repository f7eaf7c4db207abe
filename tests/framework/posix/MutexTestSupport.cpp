#include "../MutexTestSupport.h"

#include "framework/posix/CGlobalMutexImpl.h"

namespace kore_test {

void removeGlobalMutexName(const std::string& name)
{
    kore::posix::CGlobalMutexImpl::removeSystemName(name.c_str());
}

} // namespace kore_test
