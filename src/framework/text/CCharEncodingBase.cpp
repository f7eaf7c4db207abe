#include "framework/text/CCharEncodingBase.h"

namespace kore {

uint32_t CCharEncodingBase::getCharSizeAt(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    uint32_t ignored = 0;
    const uint32_t end = decodeCharStrict(ignored, buf, len, off);
    return end == kFail ? kFail : end - off;
}

uint32_t CCharEncodingBase::countChars(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    uint32_t count = 0;
    while (off < len) {
        uint32_t size = getCharSizeAt(buf, len, off);
        if (size == kFail) {
            off = findCharStart(buf, len, off);
            if (off == kFail)
                break;
            size = getCharSizeAt(buf, len, off);
        }
        off += size;
        ++count;
    }
    return count;
}

uint32_t CCharEncodingBase::getCharOffset(const uint8_t* buf, uint32_t len, uint32_t n) const
{
    uint32_t off = 0;
    for (uint32_t i = 0; i < n; ++i) {
        off = findCharStart(buf, len, off);
        if (off == kFail)
            return kFail;
        off += getCharSizeAt(buf, len, off);
    }
    return off <= len ? off : kFail;
}

uint32_t CCharEncodingBase::findCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    // `len - off > m_unit` rather than `off + m_unit < len`: no wrap-around near 4 GiB.
    for (; off < len; off += m_unit) {
        if (getCharSizeAt(buf, len, off) != kFail)
            return off;
        if (len - off <= m_unit)
            break;
    }
    return kFail;
}

uint32_t CCharEncodingBase::decodeChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    for (; off < len; off += m_unit) {
        const uint32_t end = decodeCharStrict(out, buf, len, off);
        if (end != kFail)
            return end;
        if (len - off <= m_unit)
            break;
    }
    return kFail;
}

uint32_t CCharEncodingBase::backwardStart(uint32_t len, uint32_t off) const
{
    if (off > len)
        off = len;
    // Units start at offset 0: a trailing partial unit (an odd end of UTF-16, the last 1-3 bytes
    // of UTF-32) is no character, as it is not when reading forwards.
    return off - off % m_unit;
}

uint32_t CCharEncodingBase::findPrevCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    if (off > len)
        off = len;
    if (off == 0)
        return kFail;
    // Characters start on unit boundaries; the one holding `off` itself begins before it.
    for (uint32_t start = backwardStart(len, off - 1);; start -= m_unit) {
        if (getCharSizeAt(buf, len, start) != kFail)
            return start;
        if (start < m_unit)
            return kFail;
    }
}

uint32_t CCharEncodingBase::decodePrevCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    if (off > len || off % m_unit != 0)
        return kFail;
    // Only a sequence that ends exactly at `off` counts; no character is longer than the maximum.
    for (uint32_t size = m_unit; size <= getMaxCharSize() && size <= off; size += m_unit) {
        uint32_t cp = 0;
        if (decodeCharStrict(cp, buf, off, off - size) == off) {
            out = cp;
            return off - size;
        }
    }
    return kFail;
}

uint32_t CCharEncodingBase::decodePrevChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    off = backwardStart(len, off);
    // The character must fit before `off`: decode as if the buffer ended there.
    for (uint32_t start = off; start >= m_unit;) {
        start -= m_unit;
        if (decodeCharStrict(out, buf, off, start) != kFail)
            return start;
    }
    return kFail;
}

uint32_t CCharEncodingBase::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                        uint32_t off, uint32_t* offsets) const
{
    count = 0;
    while (count < max) {
        if (offsets)
            offsets[count] = off;
        const uint32_t end = decodeChar(out[count], buf, len, off);
        if (end == kFail)
            break;
        off = end;
        ++count;
    }
    return off;
}

uint32_t CCharEncodingBase::decodePrevChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf,
                                            uint32_t len, uint32_t off, uint32_t* offsets) const
{
    count = 0;
    while (count < max) {
        const uint32_t start = decodePrevChar(out[count], buf, len, off);
        if (start == kFail)
            break;
        if (offsets)
            offsets[count] = start;
        off = start;
        ++count;
    }
    return off;
}

} // namespace kore
