#include "framework/text/CUTF16CharEncoding.h"

#include "framework/objects/CGlobalObjFactory.h"

namespace kore {

namespace {
P<CUTF16CharEncoding> create()
{
    return make<CUTF16CharEncoding>();
}

// Units are in the machine's (little-endian) order; read bytewise to stay alignment-safe.
uint32_t unitAt(const uint8_t* buf, uint32_t off)
{
    return static_cast<uint32_t>(buf[off]) | (static_cast<uint32_t>(buf[off + 1]) << 8);
}

void putUnit(uint8_t* buf, uint32_t off, uint32_t unit)
{
    buf[off] = static_cast<uint8_t>(unit);
    buf[off + 1] = static_cast<uint8_t>(unit >> 8);
}

bool isHigh(uint32_t u)
{
    return u >= 0xD800 && u <= 0xDBFF;
}
bool isLow(uint32_t u)
{
    return u >= 0xDC00 && u <= 0xDFFF;
}
} // namespace

// The strict decoder as a plain function, so that the block operations can inline it.
static inline uint32_t decodeStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off)
{
    if (off >= len || len - off < 2)
        return ICharEncoding::kFail;
    const uint32_t u = unitAt(buf, off);
    if (isLow(u))
        return ICharEncoding::kFail;
    if (!isHigh(u)) {
        out = u;
        return off + 2;
    }
    if (len - off < 4)
        return ICharEncoding::kFail;
    const uint32_t low = unitAt(buf, off + 2);
    if (!isLow(low))
        return ICharEncoding::kFail;
    out = 0x10000 + ((u & 0x3FF) << 10) + (low & 0x3FF);
    return off + 4;
}

P<CUTF16CharEncoding>& CUTF16CharEncoding::instance()
{
    return CGlobalObjFactory::accessor<CUTF16CharEncoding, &create>();
}

CUTF16CharEncoding::CUTF16CharEncoding() : CCharEncodingBase(2)
{
}

uint32_t CUTF16CharEncoding::getMaxCharSize() const
{
    return 4;
}

uint32_t CUTF16CharEncoding::getEncodedSize(uint32_t ch) const
{
    if (ch >= 0xD800 && ch <= 0xDFFF)
        return 0;
    if (ch < 0x10000)
        return 2;
    if (ch < 0x110000)
        return 4;
    return 0;
}

uint32_t CUTF16CharEncoding::encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const
{
    const uint32_t size = getEncodedSize(ch);
    if (size == 0 || off > len || len - off < size)
        return off;
    if (size == 2) {
        putUnit(buf, off, ch);
    } else {
        const uint32_t v = ch - 0x10000;
        putUnit(buf, off, 0xD800 | (v >> 10));
        putUnit(buf, off + 2, 0xDC00 | (v & 0x3FF));
    }
    return off + size;
}

uint32_t CUTF16CharEncoding::countChars(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    // Every string argument is counted, so this loop is on the look-up path: most units are
    // characters of their own; only surrogates need a second look.
    uint32_t count = 0;
    while (off < len && len - off >= 2) {
        const uint32_t u = unitAt(buf, off);
        if (u < 0xD800 || u > 0xDFFF) {
            ++count;
            off += 2;
        } else if (isHigh(u) && len - off >= 4 && isLow(unitAt(buf, off + 2))) {
            ++count;
            off += 4;
        } else {
            off += 2; // a lone surrogate is not a character
        }
    }
    return count;
}

uint32_t CUTF16CharEncoding::getTerminatedLength(const uint8_t* buf) const
{
    uint32_t n = 0;
    while (unitAt(buf, n) != 0)
        n += 2;
    return n;
}

uint32_t CUTF16CharEncoding::decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return decodeStrict(out, buf, len, off);
}

uint32_t CUTF16CharEncoding::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                         uint32_t off, uint32_t* offsets) const
{
    return decodeCharsWith(decodeStrict, 2, out, max, count, buf, len, off, offsets);
}

} // namespace kore
