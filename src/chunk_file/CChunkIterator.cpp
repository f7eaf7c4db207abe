#include "chunk_file/CChunkIterator.h"

#include "chunk_file/LittleEndian.h"
#include "chunk_file/Offsets.h"

#include <exception>
#include <limits>

namespace chf {

namespace {

// A chunk must end this far below the 64-bit limit, so that the header offsets of the chunk
// after it can always be computed.
constexpr int64_t kLastChunkEnd = std::numeric_limits<int64_t>::max() - CChunkIterator::kChunkHeaderSize;

} // namespace

CChunkIterator::CChunkIterator(IChunkHolder* holder, IStream* parent, int64_t base, int64_t length)
    : CChunkStream(holder, parent, base, length)
{
}

uint32_t CChunkIterator::addRef()
{
    return CChunkStream::addRef();
}

uint32_t CChunkIterator::release()
{
    return CChunkStream::release();
}

void CChunkIterator::detachChild(CChunkStream* child)
{
    if (child->m_previous)
        child->m_previous->m_next = child->m_next;
    if (child->m_next)
        child->m_next->m_previous = child->m_previous;
    if (m_firstChild == child)
        m_firstChild = child->m_next;
    child->m_next = nullptr;
    child->m_previous = nullptr;
}

void CChunkIterator::rewind()
{
    m_position = 0;
    m_currentOffset = 0;
    endOfSequence();
}

bool CChunkIterator::endOfSequence()
{
    m_onChunk = false;
    m_currentId = 0;
    m_currentSize = 0;
    return false;
}

bool CChunkIterator::nextChunk()
{
    int64_t offset = m_currentOffset;
    if (m_onChunk &&
        !(addWithoutOverflow(offset, kChunkHeaderSize, offset) && addWithoutOverflow(offset, m_currentSize, offset)))
        return endOfSequence();
    m_position = offset;
    m_currentOffset = offset;

    int64_t headerEnd = 0;
    int64_t absoluteHeaderEnd = 0;
    if (!addWithoutOverflow(offset, kChunkHeaderSize, headerEnd) || headerEnd > m_length ||
        !addWithoutOverflow(m_base, headerEnd, absoluteHeaderEnd) || absoluteHeaderEnd > m_parent->getLength())
        return endOfSequence();

    uint8_t idBytes[4] = {};
    uint8_t sizeBytes[8] = {};
    read(idBytes, sizeof idBytes);
    read(sizeBytes, sizeof sizeBytes);
    m_currentId = le::load32(idBytes);
    int64_t size = static_cast<int64_t>(le::load64(sizeBytes));
    // An open child may have grown or shrunk without having written its size back yet.
    for (CChunkStream* child = m_firstChild; child; child = child->m_next) {
        if (child->m_base == absoluteHeaderEnd) {
            size = child->m_length;
            break;
        }
    }

    int64_t end = 0;
    if (size < 0 || !addWithoutOverflow(headerEnd, size, end) || end > kLastChunkEnd ||
        !addWithoutOverflow(absoluteHeaderEnd, size, end) || end > kLastChunkEnd) {
        m_position = offset;
        return endOfSequence();
    }
    m_currentSize = size;
    m_onChunk = true;
    return true;
}

bool CChunkIterator::findChunk(uint32_t id)
{
    while (nextChunk()) {
        if (m_currentId == id)
            return true;
    }
    return false;
}

bool CChunkIterator::findFirstChunk(uint32_t id)
{
    rewind();
    return findChunk(id);
}

template <class TChild>
TChild* CChunkIterator::openChild()
{
    int64_t base = 0;
    if (!addWithoutOverflow(m_base, m_currentOffset, base) || !addWithoutOverflow(base, kChunkHeaderSize, base))
        throw std::exception();
    // Chunk streams read the file stream directly, never through this iterator.
    auto* child = new TChild(static_cast<IChunkHolder*>(this), m_parent, base, m_currentSize);
    child->m_next = m_firstChild;
    if (m_firstChild)
        m_firstChild->m_previous = child;
    m_firstChild = child;
    return child;
}

CChunkStream* CChunkIterator::openChunkStream()
{
    return openChild<CChunkStream>();
}

CChunkIterator* CChunkIterator::openChunkIterator()
{
    return openChild<CChunkIterator>();
}

// The current chunk is adjusted after this stream's own base: a change before the whole sequence
// (an earlier sibling of this iterator) therefore moves the remembered chunk position twice.
void CChunkIterator::onSpaceInserted(CChunkStream* origin, int64_t at, int64_t count)
{
    CChunkStream::onSpaceInserted(origin, at, count);
    const int64_t header = saturatingAdd(m_base, m_currentOffset);
    if (at <= header)
        m_currentOffset = saturatingAdd(m_currentOffset, count); // the chunk moved back
    else if (m_onChunk && at - header >= kChunkHeaderSize && at - header - kChunkHeaderSize <= m_currentSize)
        m_currentSize = saturatingAdd(m_currentSize, count); // inside the chunk's data or at its end
    notifyChildren(origin, at, count, true);
}

// Unlike an insertion, a removal exactly at the current chunk's header takes the chunk away.
void CChunkIterator::onSpaceRemoved(CChunkStream* origin, int64_t at, int64_t count)
{
    CChunkStream::onSpaceRemoved(origin, at, count);
    const int64_t header = saturatingAdd(m_base, m_currentOffset);
    if (!m_onChunk) {
        if (at <= header)
            m_currentOffset -= count;
    } else if (at < header) {
        m_currentOffset -= count;
    } else if (at == header) {
        endOfSequence();
    } else if (at - header >= kChunkHeaderSize && at - header - kChunkHeaderSize <= m_currentSize) {
        m_currentSize -= count;
    }
    notifyChildren(origin, at, count, false);
}

void CChunkIterator::notifyChildren(CChunkStream* origin, int64_t at, int64_t count, bool inserted)
{
    // Children hear it without an origin, so they never pass it back up.
    for (CChunkStream* child = m_firstChild; child; child = child->m_next) {
        if (child == origin || (m_skipAdjacent && at - child->m_base == child->m_length))
            continue;
        if (inserted)
            child->onSpaceInserted(nullptr, at, count);
        else
            child->onSpaceRemoved(nullptr, at, count);
    }
    if (origin && m_holder) {
        if (inserted)
            m_holder->onSpaceInserted(this, at, count);
        else
            m_holder->onSpaceRemoved(this, at, count);
    }
}

} // namespace chf
