#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutex.h"

#include <windows.h>

namespace kore::win32 {

// Process-local lock: a critical section, recursive for its owner. tryLock never waits.
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
    CRITICAL_SECTION m_section;
};

} // namespace kore::win32
