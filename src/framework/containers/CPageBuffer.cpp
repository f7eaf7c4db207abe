#include "framework/containers/CPageBuffer.h"

#include "framework/PlatformSupport.h"
#include "framework/errors/COutOfmemoryException.h"

#include <cstring>
#include <new>
#include <utility>

namespace kore {

namespace {

constexpr std::align_val_t kHeapAlignment{64};

// Small blocks (the tables of single setString calls, say) come from the heap: a system call to
// map and one to unmap each would cost far more than the block's use.
bool fromHeap(std::size_t bytes)
{
    return bytes < CPageBuffer::kHeapLimit;
}

void release(uint8_t* data, std::size_t size) noexcept
{
    if (!data)
        return;
    if (fromHeap(size))
        ::operator delete(data, kHeapAlignment);
    else
        platform::freePages(data, size);
}

} // namespace

CPageBuffer::CPageBuffer(std::size_t bytes) : m_size(bytes)
{
    if (bytes == 0)
        return;
    if (fromHeap(bytes)) {
        m_data = static_cast<uint8_t*>(::operator new(bytes, kHeapAlignment, std::nothrow));
        if (m_data)
            std::memset(m_data, 0, bytes);
    } else {
        m_data = static_cast<uint8_t*>(platform::allocatePages(bytes));
    }
    if (!m_data)
        throw COutOfmemoryException();
}

CPageBuffer::CPageBuffer(CPageBuffer&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0))
{
}

CPageBuffer& CPageBuffer::operator=(CPageBuffer&& other) noexcept
{
    if (this != &other) {
        release(m_data, m_size);
        m_data = std::exchange(other.m_data, nullptr);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

CPageBuffer::~CPageBuffer()
{
    release(m_data, m_size);
}

void CPageBuffer::grow(std::size_t bytes)
{
    if (bytes <= m_size)
        return;
    CPageBuffer bigger(bytes);
    if (m_size)
        std::memcpy(bigger.m_data, m_data, m_size);
    *this = std::move(bigger);
}

} // namespace kore
