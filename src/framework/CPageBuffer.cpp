#include "framework/CPageBuffer.h"

#include "framework/COutOfmemoryException.h"
#include "framework/PlatformSupport.h"

#include <cstring>
#include <utility>

namespace kore {

CPageBuffer::CPageBuffer(std::size_t bytes) : m_size(bytes)
{
    if (bytes == 0)
        return;
    m_data = static_cast<uint8_t*>(platform::allocatePages(bytes));
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
        platform::freePages(m_data, m_size);
        m_data = std::exchange(other.m_data, nullptr);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

CPageBuffer::~CPageBuffer()
{
    platform::freePages(m_data, m_size);
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
