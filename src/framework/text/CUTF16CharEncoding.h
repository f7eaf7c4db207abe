#pragma once

#include "framework/objects/P.h"
#include "framework/text/CCharEncodingBase.h"

namespace kore {

// The UTF-16 encoding; one shared instance per process.
class CUTF16CharEncoding : public CCharEncodingBase {
public:
    static constexpr uint32_t kId = 0x36314655;

    static P<CUTF16CharEncoding>& instance();

    CUTF16CharEncoding();

    uint32_t getId() const override { return kId; }
    const char* getName() const override { return "UTF-16"; }
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
