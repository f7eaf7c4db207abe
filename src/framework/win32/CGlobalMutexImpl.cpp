#include "framework/win32/CGlobalMutexImpl.h"

#include "framework/errors/CException.h"
#include "framework/text/CString.h"

namespace kore::win32 {

CGlobalMutexImpl::CGlobalMutexImpl(const CStringArg& name) : m_name(keepText(name)), m_handle(nullptr)
{
    // The system would take an empty name for "no name" and read a name up to its first U+0000,
    // silently giving a mutex that is not the one asked for: refuse both.
    if (m_name->getLength() != 0 && m_name->find(char32_t(0)) == IString::kNotFound) {
        CWCharString wide(*m_name);
        m_handle = CreateMutexW(nullptr, FALSE, wide.c_str());
    }
    if (!m_handle)
        throw CException("", keepText("Error createing global mutex ")->concat(m_name));
}

CGlobalMutexImpl::~CGlobalMutexImpl()
{
    CloseHandle(m_handle);
}

// The previous owner ended holding it: hand the inherited ownership back and ask anew. An owner
// that died again in between is handed back as well, so that a wait reported as failed never
// leaves the caller owning the mutex.
DWORD CGlobalMutexImpl::waitAnew(DWORD timeoutMs)
{
    DWORD result = WaitForSingleObject(m_handle, timeoutMs);
    if (result == WAIT_ABANDONED) {
        ReleaseMutex(m_handle);
        result = WaitForSingleObject(m_handle, timeoutMs);
        if (result == WAIT_ABANDONED)
            ReleaseMutex(m_handle);
    }
    return result;
}

void CGlobalMutexImpl::lock()
{
    if (waitAnew(INFINITE) != WAIT_OBJECT_0)
        throw CException("", keepText("Error locking global mutex ")->concat(m_name));
}

void CGlobalMutexImpl::unlock()
{
    ReleaseMutex(m_handle);
}

bool CGlobalMutexImpl::tryLock(uint32_t timeoutMs)
{
    return waitAnew(timeoutMs) == WAIT_OBJECT_0;
}

} // namespace kore::win32
