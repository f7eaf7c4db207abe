#pragma once

#include "framework/objects/IBase.h"

#include <cstdint>

namespace kore {

// A lock, recursive for the thread that owns it: each lock needs one matching unlock.
class IMutex : public virtual IBase {
public:
    virtual void lock() = 0;
    virtual void unlock() = 0;
    // True when the caller now owns the lock. Whether the attempt waits up to `timeoutMs` depends
    // on the kind of mutex: a process-local one never waits.
    virtual bool tryLock(uint32_t timeoutMs) = 0;
};

// Holds a mutex for the lifetime of a scope.
class CMutexLock {
public:
    explicit CMutexLock(IMutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~CMutexLock() { m_mutex.unlock(); }
    CMutexLock(const CMutexLock&) = delete;
    CMutexLock& operator=(const CMutexLock&) = delete;

private:
    IMutex& m_mutex;
};

} // namespace kore
