#include "framework/win32/CGlobalMutexImpl.h"

#include "framework/CException.h"
#include "framework/CString.h"

namespace kore::win32 {

CGlobalMutexImpl::CGlobalMutexImpl(const CStringArg& name) : m_name(keepText(name))
{
    CWCharString wide(*m_name);
    m_handle = CreateMutexW(nullptr, FALSE, wide.c_str());
    if (!m_handle)
        throw CException("", keepText("Error createing global mutex ")->concat(m_name));
}

CGlobalMutexImpl::~CGlobalMutexImpl()
{
    CloseHandle(m_handle);
}

void CGlobalMutexImpl::lock()
{
    DWORD result = WaitForSingleObject(m_handle, INFINITE);
    if (result == WAIT_ABANDONED) {
        // The previous owner died holding it: hand the inherited ownership back and ask anew.
        ReleaseMutex(m_handle);
        result = WaitForSingleObject(m_handle, INFINITE);
    }
    if (result != WAIT_OBJECT_0)
        throw CException("", keepText("Error locking global mutex ")->concat(m_name));
}

void CGlobalMutexImpl::unlock()
{
    ReleaseMutex(m_handle);
}

bool CGlobalMutexImpl::tryLock(uint32_t timeoutMs)
{
    DWORD result = WaitForSingleObject(m_handle, timeoutMs);
    if (result == WAIT_ABANDONED) {
        ReleaseMutex(m_handle);
        result = WaitForSingleObject(m_handle, timeoutMs);
    }
    return result == WAIT_OBJECT_0;
}

} // namespace kore::win32
