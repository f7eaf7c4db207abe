#include "chunk_file/CBaseStream.h"

#include "chunk_file/Offsets.h"

#include <algorithm>

namespace chf {

uint32_t CBaseStream::addRef()
{
    return ++m_refCount;
}

uint32_t CBaseStream::release()
{
    if (--m_refCount != 0)
        return m_refCount;
    delete this;
    return 0;
}

uint8_t* CBaseStream::shiftBuffer()
{
    if (!m_shiftBuffer) {
        m_shiftBuffer = std::make_unique<uint8_t[]>(kShiftBufferSize);
        m_shiftBufferSize = kShiftBufferSize;
    }
    return m_shiftBuffer.get();
}

void CBaseStream::insertSpace(int64_t count)
{
    if (count == 0)
        return;
    uint8_t* const buffer = shiftBuffer();
    const int64_t blockSize = m_shiftBufferSize;
    const int64_t length = getLength();
    int64_t source = std::max(length - blockSize, getPosition());
    int64_t destination = saturatingAdd(source, count);
    if (destination > length)
        extend(destination);
    while (source < length) {
        const auto piece = static_cast<int32_t>(std::min(blockSize, length - source));
        setPosition(source);
        read(buffer, piece);
        setPosition(destination);
        write(buffer, piece);
        source += piece;
        destination += piece;
    }
}

void CBaseStream::removeSpace(int64_t count)
{
    if (count == 0)
        return;
    uint8_t* const buffer = shiftBuffer();
    const int64_t blockSize = m_shiftBufferSize;
    const int64_t length = getLength();
    int64_t destination = getPosition();
    int64_t source = saturatingAdd(destination, count);
    while (source < length) {
        const auto piece = static_cast<int32_t>(std::min(blockSize, length - source));
        setPosition(source);
        read(buffer, piece);
        setPosition(destination);
        write(buffer, piece);
        source += piece;
        destination += piece;
    }
    truncate(length - count);
}

void CBaseStream::extend(int64_t newLength)
{
    static constexpr uint8_t kZeros[4096] = {};
    const int64_t length = getLength();
    if (newLength <= length)
        return;
    const int64_t position = getPosition();
    setPosition(length);
    for (int64_t left = newLength - length; left > 0;) {
        const auto piece = static_cast<int32_t>(std::min<int64_t>(left, sizeof kZeros));
        write(kZeros, piece);
        left -= piece;
    }
    setPosition(position);
}

} // namespace chf
