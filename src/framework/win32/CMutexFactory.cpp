#include "framework/win32/CMutexFactory.h"

#include "framework/win32/CGlobalMutexImpl.h"
#include "framework/win32/CMutexImpl.h"

namespace kore {

P<IMutexFactory> createMutexFactory()
{
    return make<win32::CMutexFactory>();
}

namespace win32 {

P<IMutex> CMutexFactory::createMutex()
{
    return make<CMutexImpl>();
}

P<IMutex> CMutexFactory::createGlobalMutex(const CStringArg& name)
{
    return make<CGlobalMutexImpl>(name);
}

} // namespace win32
} // namespace kore
