#include "framework/text/CUTF8CharEncoding.h"

#include "framework/objects/CGlobalObjFactory.h"

namespace kore {

namespace {
P<CUTF8CharEncoding> create()
{
    return make<CUTF8CharEncoding>();
}
} // namespace

// The strict decoder as a plain function, so that the block operations can inline it.
static inline uint32_t decodeStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off)
{
    if (off >= len)
        return ICharEncoding::kFail;
    const uint8_t lead = buf[off];
    if (lead < 0x80) {
        out = lead;
        return off + 1;
    }
    uint32_t size = 0;
    uint32_t value = 0;
    if ((lead & 0xE0) == 0xC0) {
        size = 2;
        value = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        size = 3;
        value = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        size = 4;
        value = lead & 0x07;
    } else {
        return ICharEncoding::kFail; // a continuation byte, or 11111xxx
    }
    // A crude guard against overlong forms: a lead without payload bits is rejected outright
    // (0xC0, 0xE0, 0xF0), even where the sequence would be well formed.
    if (value == 0 || len - off < size)
        return ICharEncoding::kFail;
    for (uint32_t i = 1; i < size; ++i) {
        const uint8_t b = buf[off + i];
        if ((b & 0xC0) != 0x80)
            return ICharEncoding::kFail;
        value = (value << 6) | (b & 0x3F);
    }
    if (value > 0x10FFFF)
        return ICharEncoding::kFail;
    out = value;
    return off + size;
}

P<CUTF8CharEncoding>& CUTF8CharEncoding::instance()
{
    return CGlobalObjFactory::accessor<CUTF8CharEncoding, &create>();
}

CUTF8CharEncoding::CUTF8CharEncoding() : CCharEncodingBase(1)
{
}

uint32_t CUTF8CharEncoding::getMaxCharSize() const
{
    return 4;
}

uint32_t CUTF8CharEncoding::getEncodedSize(uint32_t ch) const
{
    if (ch < 0x80)
        return 1;
    if (ch < 0x800)
        return 2;
    if (ch < 0x10000)
        return 3; // surrogates included: they are encoded like any other three-byte character
    if (ch < 0x110000)
        return 4;
    return 0;
}

uint32_t CUTF8CharEncoding::encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const
{
    const uint32_t size = getEncodedSize(ch);
    if (size == 0 || off > len || len - off < size)
        return off;
    uint8_t* p = buf + off;
    switch (size) {
    case 1: p[0] = static_cast<uint8_t>(ch); break;
    case 2:
        p[0] = static_cast<uint8_t>(0xC0 | (ch >> 6));
        p[1] = static_cast<uint8_t>(0x80 | (ch & 0x3F));
        break;
    case 3:
        p[0] = static_cast<uint8_t>(0xE0 | (ch >> 12));
        p[1] = static_cast<uint8_t>(0x80 | ((ch >> 6) & 0x3F));
        p[2] = static_cast<uint8_t>(0x80 | (ch & 0x3F));
        break;
    default:
        p[0] = static_cast<uint8_t>(0xF0 | (ch >> 18));
        p[1] = static_cast<uint8_t>(0x80 | ((ch >> 12) & 0x3F));
        p[2] = static_cast<uint8_t>(0x80 | ((ch >> 6) & 0x3F));
        p[3] = static_cast<uint8_t>(0x80 | (ch & 0x3F));
        break;
    }
    return off + size;
}

uint32_t CUTF8CharEncoding::countChars(const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return countCharsWith(decodeStrict, 1, buf, len, off);
}

uint32_t CUTF8CharEncoding::getTerminatedLength(const uint8_t* buf) const
{
    uint32_t n = 0;
    while (buf[n] != 0)
        ++n;
    return n;
}

uint32_t CUTF8CharEncoding::decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return decodeStrict(out, buf, len, off);
}

uint32_t CUTF8CharEncoding::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                        uint32_t off, uint32_t* offsets) const
{
    return decodeCharsWith(decodeStrict, 1, out, max, count, buf, len, off, offsets);
}

} // namespace kore
