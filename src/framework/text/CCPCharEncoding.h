#pragma once

#include "framework/objects/P.h"
#include "framework/text/CCharEncodingBase.h"

namespace kore {

// The process's 8-bit "ANSI" code page: one byte per character when decoding. Decoding and
// encoding go through the platform (see CodePage.h); reading backwards is not supported.
class CCPCharEncoding : public CCharEncodingBase {
public:
    static constexpr uint32_t kId = 0x47504443;

    static P<CCPCharEncoding>& instance();

    CCPCharEncoding();

    uint32_t getId() const override { return kId; }
    const char* getName() const override { return "CodePage"; }
    uint32_t getMaxCharSize() const override;
    uint32_t encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getEncodedSize(uint32_t ch) const override;
    uint32_t getCharSizeAt(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t countChars(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getTerminatedLength(const uint8_t* buf) const override;
    uint32_t getCharOffset(const uint8_t* buf, uint32_t len, uint32_t n) const override;
    uint32_t decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const final;
    uint32_t decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len, uint32_t off,
                         uint32_t* offsets) const override;
    bool supportsReverse() const override { return false; }
    // The backward operations throw CMethodNotImplementedError.
    uint32_t findPrevCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodePrevCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodePrevChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t decodePrevChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                             uint32_t off, uint32_t* offsets) const override;
};

} // namespace kore
