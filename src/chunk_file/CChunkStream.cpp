#include "chunk_file/CChunkStream.h"

#include "chunk_file/IChunkHolder.h"
#include "chunk_file/LittleEndian.h"
#include "chunk_file/Offsets.h"

#include <exception>
#include <limits>

namespace chf {

CChunkStream::CChunkStream(IChunkHolder* holder, IStream* parent, int64_t base, int64_t length)
    : m_holder(holder), m_parent(parent), m_base(base), m_length(length), m_originalLength(length)
{
    m_parent->addRef();
    if (m_holder)
        m_holder->addRef();
}

uint32_t CChunkStream::addRef()
{
    return ++m_refCount;
}

uint32_t CChunkStream::release()
{
    if (--m_refCount != 0)
        return m_refCount;
    // The write-back can fail (a read-only adapter, say). It runs here rather than in the
    // destructor so that the failure reaches the caller and every reference is still dropped.
    IChunkHolder* const holder = m_holder;
    IStream* const parent = m_parent;
    std::exception_ptr failure;
    try {
        writeBackLength();
    } catch (...) {
        failure = std::current_exception();
    }
    if (holder)
        holder->detachChild(this);
    delete this;
    try {
        // The holder's own write-back runs now if this was its last child and reference.
        if (holder)
            holder->release();
    } catch (...) {
        if (!failure)
            failure = std::current_exception();
    }
    parent->release();
    if (failure)
        std::rethrow_exception(failure);
    return 0;
}

void CChunkStream::writeBackLength()
{
    if (m_length == m_originalLength || m_deleted)
        return;
    uint8_t bytes[8];
    le::store64(bytes, static_cast<uint64_t>(m_length));
    m_parent->setPosition(m_base - 8);
    m_parent->write(bytes, 8);
    m_originalLength = m_length;
}

int64_t CChunkStream::getPosition()
{
    return m_position;
}

int64_t CChunkStream::getLength()
{
    return m_length;
}

void CChunkStream::setPosition(int64_t position)
{
    m_position = position;
}

int64_t CChunkStream::write(const void* buffer, int32_t count)
{
    const int64_t end = saturatingAdd(m_position, count);
    if (end > m_length) {
        // Hostile space operations can leave a length far below zero; the growth saturates
        // like every other offset here instead of overflowing.
        int64_t grow = 0;
        if (__builtin_sub_overflow(end, m_length, &grow))
            grow = std::numeric_limits<int64_t>::max();
        const int64_t at = saturatingAdd(m_base, m_length);
        m_parent->setPosition(at);
        m_parent->insertSpace(grow);
        if (m_holder)
            m_holder->onSpaceInserted(this, at, grow);
        m_length = saturatingAdd(m_length, grow);
    }
    m_parent->setPosition(saturatingAdd(m_base, m_position));
    const int64_t result = m_parent->write(buffer, count);
    m_position = end;
    return result;
}

int64_t CChunkStream::read(void* buffer, int32_t count)
{
    // Not limited to the chunk: readers know their sizes, only the position is kept inside.
    m_parent->setPosition(saturatingAdd(m_base, m_position));
    m_parent->read(buffer, count);
    m_position += count;
    if (m_position > m_length)
        m_position = m_length;
    return m_length;
}

void CChunkStream::insertSpace(int64_t count)
{
    const int64_t at = saturatingAdd(m_base, m_position);
    m_parent->setPosition(at);
    m_parent->insertSpace(count);
    onSpaceInserted(this, at, count);
}

void CChunkStream::removeSpace(int64_t count)
{
    const int64_t at = saturatingAdd(m_base, m_position);
    m_parent->setPosition(at);
    m_parent->removeSpace(count);
    onSpaceRemoved(this, at, count);
}

// Comparisons against the end are written as differences from the base: hostile lengths near the
// 64-bit limit must not overflow.
void CChunkStream::onSpaceInserted(CChunkStream*, int64_t at, int64_t count)
{
    if (at < m_base)
        m_base = saturatingAdd(m_base, count);
    else if (at - m_base <= m_length)
        m_length = saturatingAdd(m_length, count);
}

void CChunkStream::onSpaceRemoved(CChunkStream*, int64_t at, int64_t count)
{
    if (at >= m_base) {
        if (at - m_base <= m_length)
            m_length -= count;
    } else if (count - (m_base - at) < m_length) {
        m_base -= count;
    } else {
        m_deleted = true;
    }
}

} // namespace chf
