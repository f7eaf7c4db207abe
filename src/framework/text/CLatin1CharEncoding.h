#pragma once

#include "framework/objects/P.h"
#include "framework/text/CCharEncodingBase.h"

namespace kore {

// The Latin-1 encoding; one shared instance per process.
class CLatin1CharEncoding : public CCharEncodingBase {
public:
    static constexpr uint32_t kId = 0x3154414C;

    static P<CLatin1CharEncoding>& instance();

    CLatin1CharEncoding();

    uint32_t getId() const override { return kId; }
    const char* getName() const override { return "Latin-1"; }
    uint32_t getMaxCharSize() const override;
    uint32_t encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getEncodedSize(uint32_t ch) const override;
    uint32_t getTerminatedLength(const uint8_t* buf) const override;
    uint32_t decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const final;
    uint32_t decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len, uint32_t off,
                         uint32_t* offsets) const override;
    uint32_t getCharSizeAt(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t countChars(const uint8_t* buf, uint32_t len, uint32_t off) const override;
    uint32_t getCharOffset(const uint8_t* buf, uint32_t len, uint32_t n) const override;
};

} // namespace kore
