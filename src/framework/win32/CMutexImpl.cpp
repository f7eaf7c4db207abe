#include "framework/win32/CMutexImpl.h"

namespace kore::win32 {

CMutexImpl::CMutexImpl()
{
    InitializeCriticalSection(&m_section);
}

CMutexImpl::~CMutexImpl()
{
    DeleteCriticalSection(&m_section);
}

void CMutexImpl::lock()
{
    EnterCriticalSection(&m_section);
}

void CMutexImpl::unlock()
{
    LeaveCriticalSection(&m_section);
}

// The timeout is ignored on purpose: a critical section's try never waits.
bool CMutexImpl::tryLock(uint32_t)
{
    return TryEnterCriticalSection(&m_section) != FALSE;
}

} // namespace kore::win32
