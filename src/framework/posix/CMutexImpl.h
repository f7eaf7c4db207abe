#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutex.h"

#include <pthread.h>

namespace kore::posix {

// Process-local lock: a recursive pthread mutex. tryLock never waits, whatever the timeout.
class CMutexImpl : public CObject, public IMutex {
public:
    CMutexImpl();
    ~CMutexImpl() override;
    CMutexImpl(const CMutexImpl&) = delete;
    CMutexImpl& operator=(const CMutexImpl&) = delete;

    void lock() override;
    void unlock() override;
    bool tryLock(uint32_t timeoutMs) override;

private:
    pthread_mutex_t m_mutex;
};

} // namespace kore::posix
