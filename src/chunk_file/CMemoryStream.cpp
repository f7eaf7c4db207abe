#include "chunk_file/CMemoryStream.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace chf {

CMemoryStream::CMemoryStream(std::vector<uint8_t> bytes) : m_bytes(std::move(bytes))
{
}

int64_t CMemoryStream::getPosition()
{
    return m_position;
}

int64_t CMemoryStream::getLength()
{
    return static_cast<int64_t>(m_bytes.size());
}

void CMemoryStream::setPosition(int64_t position)
{
    m_position = position;
}

int64_t CMemoryStream::write(const void* buffer, int32_t count)
{
    if (m_position < 0)
        throw std::exception();
    if (count <= 0)
        return 0;
    const auto position = static_cast<size_t>(m_position);
    const size_t end = position + static_cast<size_t>(count);
    if (end > m_bytes.size())
        m_bytes.resize(end);
    std::memcpy(m_bytes.data() + position, buffer, static_cast<size_t>(count));
    m_position += count;
    return count;
}

int64_t CMemoryStream::read(void* buffer, int32_t count)
{
    if (m_position < 0)
        throw std::exception();
    if (count <= 0 || m_position >= getLength())
        return 0;
    const int64_t delivered = std::min<int64_t>(count, getLength() - m_position);
    std::memcpy(buffer, m_bytes.data() + m_position, static_cast<size_t>(delivered));
    m_position += delivered;
    return delivered;
}

void CMemoryStream::truncate(int64_t newLength)
{
    if (newLength < 0)
        throw std::exception();
    if (newLength < getLength())
        m_bytes.resize(static_cast<size_t>(newLength));
}

void CMemoryStream::extend(int64_t newLength)
{
    if (newLength > getLength())
        m_bytes.resize(static_cast<size_t>(newLength));
}

} // namespace chf
