#pragma once
// Shared algorithms of the encodings, written in terms of the strict single-character decoder.
// Each concrete encoding supplies its identity, the strict decoder and encoder, and overrides
// whatever it can do more directly.

#include "framework/objects/CObject.h"
#include "framework/text/ICharEncoding.h"

namespace kore {

class CCharEncodingBase : public CObject, public ICharEncoding {
public:
    uint32_t getCharSizeAt(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t countChars(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getCharOffset(const uint8_t* buf, uint32_t len, uint32_t n) const override;
    uint32_t findCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodeChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const override;
    bool supportsReverse() const override { return true; }
    uint32_t findPrevCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodePrevCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodePrevChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len, uint32_t off,
                         uint32_t* offsets) const override;
    uint32_t decodePrevChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                             uint32_t off, uint32_t* offsets) const override;

protected:
    // `unit` is the size of one code unit: invalid input is skipped one unit at a time.
    explicit CCharEncodingBase(uint32_t unit) : m_unit(unit) {}

    // decodeChars with the encoding's strict decoder called directly (and inlined) rather than
    // through the vtable: the block operation is the hot path of every string read. Same results
    // as the generic decodeChars.
    template <class Decode>
    static uint32_t decodeCharsWith(const Decode& decode, uint32_t unit, uint32_t* out, uint32_t max, uint32_t& count,
                                    const uint8_t* buf, uint32_t len, uint32_t off, uint32_t* offsets)
    {
        count = 0;
        while (count < max) {
            if (offsets)
                offsets[count] = off;
            uint32_t end = kFail;
            for (uint32_t at = off; at < len; at += unit) {
                end = decode(out[count], buf, len, at);
                if (end != kFail || len - at <= unit)
                    break;
            }
            if (end == kFail)
                break;
            off = end;
            ++count;
        }
        return off;
    }

    // countChars without a virtual call per character: invalid input is skipped a unit at a
    // time, which counts exactly what findCharStart-and-retry would.
    template <class Decode>
    static uint32_t countCharsWith(const Decode& decode, uint32_t unit, const uint8_t* buf, uint32_t len, uint32_t off)
    {
        uint32_t count = 0;
        uint32_t ignored = 0;
        while (off < len && len - off >= unit) {
            const uint32_t end = decode(ignored, buf, len, off);
            if (end == kFail) {
                off += unit;
            } else {
                off = end;
                ++count;
            }
        }
        return count;
    }

    // Where reading backwards from `off` begins: clamped to `len` and to a unit boundary.
    uint32_t backwardStart(uint32_t len, uint32_t off) const;

    const uint32_t m_unit;
};

} // namespace kore
