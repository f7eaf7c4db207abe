#include "framework/text/CUTF32CharEncoding.h"

#include "framework/objects/CGlobalObjFactory.h"

namespace kore {

namespace {
P<CUTF32CharEncoding> create()
{
    return make<CUTF32CharEncoding>();
}
} // namespace

// The strict decoder as a plain function, so that the block operations can inline it.
static inline uint32_t decodeStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off)
{
    if (off >= len || len - off < 4)
        return ICharEncoding::kFail;
    out = static_cast<uint32_t>(buf[off]) | (static_cast<uint32_t>(buf[off + 1]) << 8) |
          (static_cast<uint32_t>(buf[off + 2]) << 16) | (static_cast<uint32_t>(buf[off + 3]) << 24);
    return off + 4;
}

P<CUTF32CharEncoding>& CUTF32CharEncoding::instance()
{
    return CGlobalObjFactory::accessor<CUTF32CharEncoding, &create>();
}

CUTF32CharEncoding::CUTF32CharEncoding() : CCharEncodingBase(4)
{
}

uint32_t CUTF32CharEncoding::getMaxCharSize() const
{
    return 4;
}

// Every 32-bit value is a character, both ways: nothing is validated.
uint32_t CUTF32CharEncoding::getEncodedSize(uint32_t) const
{
    return 4;
}

uint32_t CUTF32CharEncoding::encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const
{
    if (off > len || len - off < 4)
        return off;
    for (int i = 0; i < 4; ++i)
        buf[off + i] = static_cast<uint8_t>(ch >> (8 * i));
    return off + 4;
}

uint32_t CUTF32CharEncoding::getTerminatedLength(const uint8_t* buf) const
{
    uint32_t n = 0;
    while (buf[n] != 0 || buf[n + 1] != 0 || buf[n + 2] != 0 || buf[n + 3] != 0)
        n += 4;
    return n;
}

uint32_t CUTF32CharEncoding::decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return decodeStrict(out, buf, len, off);
}

uint32_t CUTF32CharEncoding::getCharSizeAt(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len && len - off >= 4 ? 4 : kFail;
}

// A trailing partial unit is not a character.
uint32_t CUTF32CharEncoding::countChars(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len ? (len - off) / 4 : 0;
}

uint32_t CUTF32CharEncoding::getCharOffset(const uint8_t*, uint32_t len, uint32_t n) const
{
    if (n > len / 4)
        return kFail;
    return 4 * n;
}

uint32_t CUTF32CharEncoding::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                         uint32_t off, uint32_t* offsets) const
{
    return decodeCharsWith(decodeStrict, 4, out, max, count, buf, len, off, offsets);
}

} // namespace kore
