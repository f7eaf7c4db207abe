#include "framework/io/CMemoryStream.h"

#include "framework/errors/CEndOfStreamError.h"
#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/errors/CStreamClosedError.h"
#include "framework/io/IURI.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace kore {

CMemoryStream::CMemoryStream(const void* data, size_t length)
{
    if (length > 0 && !data)
        throw CInvalidArgError(nullptr, "CMemoryStream::CMemoryStream", "data", "CMemoryStream");
    try {
        m_data.assign(static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + length);
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
}

CMemoryStream::~CMemoryStream() = default;

P<IURI> CMemoryStream::getURI() const
{
    return nullptr;
}

void CMemoryStream::close()
{
    m_closed = true;
    std::vector<uint8_t>().swap(m_data);
    m_position = 0;
}

void CMemoryStream::checkOpen() const
{
    if (m_closed)
        throw CStreamClosedError(nullptr);
}

void CMemoryStream::checkBuffer(const void* buffer, uint32_t count, const char* method) const
{
    checkOpen();
    if (count > 0 && !buffer)
        throw CInvalidArgError(this, method, "buffer");
}

uint32_t CMemoryStream::readSome(void* buffer, uint32_t count)
{
    checkBuffer(buffer, count, "CMemoryStream::readSome");
    const int64_t length = getLength();
    if (m_position >= length)
        return 0;
    const auto n = static_cast<uint32_t>(std::min<int64_t>(count, length - m_position));
    if (n > 0)
        std::memcpy(buffer, m_data.data() + m_position, n);
    m_position += n;
    return n;
}

uint32_t CMemoryStream::read(void* buffer, uint32_t count)
{
    checkBuffer(buffer, count, "CMemoryStream::read");
    if (count == 0)
        return 0;
    if (m_position > getLength() || count > getLength() - m_position)
        throw CEndOfStreamError(nullptr);
    return readSome(buffer, count);
}

uint32_t CMemoryStream::write(const void* buffer, uint32_t count)
{
    checkBuffer(buffer, count, "CMemoryStream::write");
    if (count == 0)
        return 0;
    const auto limit = static_cast<int64_t>(std::min<size_t>(m_data.max_size(), std::numeric_limits<int64_t>::max()));
    if (m_position > limit - count)
        throw COutOfmemoryException();
    const int64_t end = m_position + count;
    try {
        if (end > getLength()) {
            // Geometric growth keeps a series of small appends linear; the gap reads as zeros.
            if (static_cast<size_t>(end) > m_data.capacity())
                m_data.reserve(std::min(m_data.max_size(), std::max(static_cast<size_t>(end), m_data.capacity() * 2)));
            m_data.resize(static_cast<size_t>(end), 0);
        }
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    } catch (const std::length_error&) {
        throw COutOfmemoryException();
    }
    std::memcpy(m_data.data() + m_position, buffer, count);
    m_position = end;
    return count;
}

void CMemoryStream::flush()
{
    checkOpen();
}

void CMemoryStream::seek(int64_t position)
{
    checkOpen();
    if (position < 0)
        throw CInvalidArgError(this, "CMemoryStream::seek", "position");
    m_position = position;
}

} // namespace kore
