#include "framework/text/CCPCharEncoding.h"

#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/CodePage.h"

namespace kore {

namespace {
P<CCPCharEncoding> create()
{
    return make<CCPCharEncoding>();
}

constexpr uint32_t kScratch = 16;
} // namespace

// The strict decoder as a plain function, so that the block operations can inline it.
static inline uint32_t decodeStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off)
{
    if (off >= len)
        return ICharEncoding::kFail;
    out = platform::codePageDecode(buf[off]);
    return off + 1;
}

P<CCPCharEncoding>& CCPCharEncoding::instance()
{
    return CGlobalObjFactory::accessor<CCPCharEncoding, &create>();
}

CCPCharEncoding::CCPCharEncoding() : CCharEncodingBase(1)
{
}

uint32_t CCPCharEncoding::getMaxCharSize() const
{
    return platform::codePageMaxCharSize();
}

uint32_t CCPCharEncoding::getEncodedSize(uint32_t ch) const
{
    if (ch > 0xFFFF)
        return 0;
    uint8_t scratch[kScratch];
    return platform::codePageEncode(ch, scratch);
}

uint32_t CCPCharEncoding::encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const
{
    if (ch > 0xFFFF || off > len)
        return off;
    // Near the end of the buffer the size is checked first; a character that cannot be placed
    // there answers 0, not `off` (callers of this encoding rely on that difference).
    if (len - off < getMaxCharSize()) {
        const uint32_t size = getEncodedSize(ch);
        if (size == 0 || size > len - off)
            return 0;
    }
    uint8_t scratch[kScratch];
    const uint32_t size = platform::codePageEncode(ch, scratch);
    if (size == 0 || size > len - off)
        return off;
    for (uint32_t i = 0; i < size; ++i)
        buf[off + i] = scratch[i];
    return off + size;
}

uint32_t CCPCharEncoding::getCharSizeAt(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len ? 1 : kFail;
}

uint32_t CCPCharEncoding::countChars(const uint8_t*, uint32_t len, uint32_t off) const
{
    return off < len ? len - off : 0;
}

uint32_t CCPCharEncoding::getTerminatedLength(const uint8_t* buf) const
{
    uint32_t n = 0;
    while (buf[n] != 0)
        ++n;
    return n;
}

uint32_t CCPCharEncoding::getCharOffset(const uint8_t*, uint32_t len, uint32_t n) const
{
    return n <= len ? n : kFail;
}

// One byte is one character: multibyte code pages are deliberately not decoded as such.
uint32_t CCPCharEncoding::decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const
{
    return decodeStrict(out, buf, len, off);
}

uint32_t CCPCharEncoding::findPrevCharStart(const uint8_t*, uint32_t, uint32_t) const
{
    throw CMethodNotImplementedError(this, "");
}

uint32_t CCPCharEncoding::decodePrevCharStrict(uint32_t&, const uint8_t*, uint32_t, uint32_t) const
{
    throw CMethodNotImplementedError(this, "");
}

uint32_t CCPCharEncoding::decodePrevChar(uint32_t&, const uint8_t*, uint32_t, uint32_t) const
{
    throw CMethodNotImplementedError(this, "");
}

uint32_t CCPCharEncoding::decodePrevChars(uint32_t*, uint32_t, uint32_t&, const uint8_t*, uint32_t, uint32_t,
                                          uint32_t*) const
{
    throw CMethodNotImplementedError(this, "");
}

uint32_t CCPCharEncoding::decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                      uint32_t off, uint32_t* offsets) const
{
    return decodeCharsWith(decodeStrict, 1, out, max, count, buf, len, off, offsets);
}

} // namespace kore
