#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutex.h"
#include "framework/text/IString.h"

#include <windows.h>

namespace kore::win32 {

// A named Win32 mutex shared by every process that opens the same name; recursive for its owner.
// An owner that ended while holding it leaves it abandoned: the next lock or tryLock acquires it.
class CGlobalMutexImpl : public CObject, public IMutex {
public:
    // Throws CException "Error createing global mutex <name>" when the system refuses the name,
    // and for an empty name or one holding U+0000.
    explicit CGlobalMutexImpl(const CStringArg& name);
    ~CGlobalMutexImpl() override;
    CGlobalMutexImpl(const CGlobalMutexImpl&) = delete;
    CGlobalMutexImpl& operator=(const CGlobalMutexImpl&) = delete;

    // Throws CException "Error locking global mutex <name>" when the wait fails.
    void lock() override;
    void unlock() override;
    bool tryLock(uint32_t timeoutMs) override;

private:
    DWORD waitAnew(DWORD timeoutMs);

    P<IString> m_name;
    HANDLE m_handle;
};

} // namespace kore::win32
