#include "framework/posix/CMutexImpl.h"

namespace kore::posix {

CMutexImpl::CMutexImpl()
{
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_mutex, &attr);
    pthread_mutexattr_destroy(&attr);
}

CMutexImpl::~CMutexImpl()
{
    pthread_mutex_destroy(&m_mutex);
}

void CMutexImpl::lock()
{
    pthread_mutex_lock(&m_mutex);
}

void CMutexImpl::unlock()
{
    pthread_mutex_unlock(&m_mutex);
}

// Deliberately ignores the timeout, as a critical section's try does: the attempt never waits.
bool CMutexImpl::tryLock(uint32_t)
{
    return pthread_mutex_trylock(&m_mutex) == 0;
}

} // namespace kore::posix
