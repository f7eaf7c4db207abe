#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutex.h"
#include "framework/text/IString.h"

#include <string>

namespace kore::posix {

struct CSharedMutexMapping;

// A named lock shared by every process that opens the same name: a robust, process-shared,
// recursive pthread mutex in a POSIX shared-memory object. Recursive for its owning thread. An
// owner that died holding it (a killed process, an ended thread) leaves it to the next lock or
// tryLock, as an abandoned Windows mutex does.
//
// The shared-memory object is never removed by this class: removing a name while other processes
// still hold it open would let later openers create a second, unrelated mutex of the same name.
class CGlobalMutexImpl : public CObject, public IMutex {
public:
    // Throws CException "Error createing global mutex <name>" for a rejected name (see
    // systemName) or when the system refuses the shared-memory object.
    explicit CGlobalMutexImpl(const CStringArg& name);
    ~CGlobalMutexImpl() override;
    CGlobalMutexImpl(const CGlobalMutexImpl&) = delete;
    CGlobalMutexImpl& operator=(const CGlobalMutexImpl&) = delete;

    // Throws CException "Error locking global mutex <name>" when the lock cannot be taken.
    void lock() override;
    // Releasing a mutex the calling thread does not own does nothing, as on Windows.
    void unlock() override;
    // Waits up to `timeoutMs`: 0 never waits and 0xFFFFFFFF waits without limit (Windows'
    // INFINITE). Failures return false.
    bool tryLock(uint32_t timeoutMs) override;

    // The shared-memory name of a mutex name: "/kore.mutex." followed by the name in UTF-8, with a
    // leading "Global\" or "Local\" dropped (a POSIX system has one namespace), '%' written
    // "%25" and '/' written "%2F". Throws the creation error for an empty name, a name holding
    // U+0000 or any other backslash, or one longer than 240 bytes in that form.
    static std::string systemName(const CStringArg& name);
    // Removes the name from the system, so that the next opener creates a fresh mutex. Only for
    // tools and tests that know no process uses the name any more.
    static void removeSystemName(const CStringArg& name);

private:
    P<IString> m_name;
    // Shared by every object of this process that opened the same name.
    CSharedMutexMapping* m_mapping;
};

} // namespace kore::posix
