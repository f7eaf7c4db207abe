#include "framework/text/CLatin1CharEncoding.h"

#include "framework/objects/CGlobalObjFactory.h"

namespace kore {

namespace {
P<CLatin1CharEncoding> create()
{
    return make<CLatin1CharEncoding>();
}
} // namespace

// The strict decoder as a plain function, so that the block operations can inline it.
static inline uint32_t decodeStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off)
{
    if (off >= len)
        return ICharEncoding::kFail;
    out = buf[off];
    return off + 1;
}

P<CLatin1CharEncoding>& CLatin1CharEncoding::instance()
{
    return CGlobalObjFactory::accessor<CLatin1CharEncoding, &create>();
}

CLatin1CharEncoding::CLatin1CharEncoding() : CCharEncodingBase(1)
{
}

uint32_t CLatin1CharEncoding::getMaxCharSize() const
{
    return 1;
}

// Nothing is unencodable: what Latin-1 lacks becomes "?".
uint32_t CLatin1CharEncoding::getEncodedSize(uint32_t) const
{
    return 1;
}

uint32_t CLatin1CharEncoding::encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const
{
    if (off >= len)
        return off;
    buf[off] = ch < 0x100 ? static_cast<uint8_t>(ch) : static_cast<uint8_t>('?');
    return off + 1;
}

uint32_t CLatin1CharEncoding::getTerminatedLength(const uint8_t* buf) const
{
    uint32_t n = 0;
    while (buf[n] != 0)
        ++n;
    return n;
}

uint32_t CLatin1CharEncoding::decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return decodeStrict(out, buf, len, off);
}

uint32_t CLatin1CharEncoding::getCharSizeAt(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len ? 1 : kFail;
}

uint32_t CLatin1CharEncoding::countChars(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len ? len - off : 0;
}

uint32_t CLatin1CharEncoding::getCharOffset(const uint8_t*, uint32_t len, uint32_t n) const
{
    return n <= len ? n : kFail;
}

uint32_t CLatin1CharEncoding::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf,
                                          uint32_t len, uint32_t off, uint32_t* offsets) const
{
    return decodeCharsWith(decodeStrict, 1, out, max, count, buf, len, off, offsets);
}

} // namespace kore
