#pragma once

#include "framework/objects/P.h"
#include "framework/text/CCharEncodingBase.h"

namespace kore {

// The UTF-8 encoding; one shared instance per process.
//
// Compatibility rule: it refuses every sequence led by 0xC0, 0xE0 or 0xF0, even a well-formed one,
// so it cannot read U+0800-U+0FFF (Samaritan to Tibetan: Devanagari, Thai, ...) nor U+10000-U+3FFFF
// (most emoji). Strings in this encoding keep that rule for the files and callers that expect it.
// Text from outside (file names, paths, command lines, UTF-8 files) goes through
// CString::fromUTF8 / tryFromUTF8 and toUTF8, which read and write all of UTF-8.
class CUTF8CharEncoding : public CCharEncodingBase {
public:
    static constexpr uint32_t kId = 0x38465455;

    static P<CUTF8CharEncoding>& instance();

    CUTF8CharEncoding();

    uint32_t getId() const override { return kId; }
    const char* getName() const override { return "UTF-8"; }
    uint32_t getMaxCharSize() const override;
    uint32_t encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getEncodedSize(uint32_t ch) const override;
    uint32_t countChars(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getTerminatedLength(const uint8_t* buf) const override;
    uint32_t decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const final;
    uint32_t decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len, uint32_t off,
                         uint32_t* offsets) const override;
};

} // namespace kore
