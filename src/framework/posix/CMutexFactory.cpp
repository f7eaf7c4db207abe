#include "framework/posix/CMutexFactory.h"

#include "framework/CException.h"
#include "framework/CString.h"
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
    throw CException("", keepText("Error createing global mutex ")->concat(name));
}

} // namespace posix
} // namespace kore
