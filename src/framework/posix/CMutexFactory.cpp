#include "framework/posix/CMutexFactory.h"

#include "framework/posix/CGlobalMutexImpl.h"
#include "framework/posix/CMutexImpl.h"

namespace kore {

P<IMutexFactory> createMutexFactory()
{
    return make<posix::CMutexFactory>();
}

namespace posix {

P<IMutex> CMutexFactory::createMutex()
{
    return make<CMutexImpl>();
}

P<IMutex> CMutexFactory::createGlobalMutex(const CStringArg& name)
{
    return make<CGlobalMutexImpl>(name);
}

} // namespace posix
} // namespace kore
