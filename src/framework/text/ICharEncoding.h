#pragma once
// A character encoding: measures, encodes and decodes characters in caller-supplied byte buffers.
// Encodings are stateless shared services. No operation allocates, and none throws except the
// code-page encoding's unsupported backward operations: failure is the offset value kFail.

#include "framework/objects/IBase.h"

#include <cstdint>

namespace kore {

class ICharEncoding : public virtual IBase {
public:
    static constexpr uint32_t kFail = 0xFFFFFFFF;

    virtual uint32_t getId() const = 0;
    virtual const char* getName() const = 0;
    virtual uint32_t getMaxCharSize() const = 0;
    // Writes `ch` at `off`; returns the offset after it, or `off` when it does not fit or cannot
    // be encoded.
    virtual uint32_t encodeChar(uint32_t ch, uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Bytes `ch` needs; 0 when it cannot be encoded.
    virtual uint32_t getEncodedSize(uint32_t ch) const = 0;
    // Size of the valid character starting at `off`, or kFail.
    virtual uint32_t getCharSizeAt(const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Number of valid characters from `off` to `len`; invalid bytes are not counted.
    virtual uint32_t countChars(const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Byte length of a buffer ending in a NUL code unit, terminator excluded.
    virtual uint32_t getTerminatedLength(const uint8_t* buf) const = 0;
    // Offset at which character `n` (from 0) begins, i.e. the offset after n characters; kFail
    // when the buffer holds fewer.
    virtual uint32_t getCharOffset(const uint8_t* buf, uint32_t len, uint32_t n) const = 0;
    // First offset at or after `off` where a valid character begins, or kFail.
    virtual uint32_t findCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Decodes the character at `off` into `out`; returns the offset after it, or kFail.
    virtual uint32_t decodeCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Decodes the first valid character at or after `off`, skipping invalid bytes.
    virtual uint32_t decodeChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    virtual bool supportsReverse() const = 0;
    // Start of the last valid character that begins before `off`, or kFail.
    virtual uint32_t findPrevCharStart(const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Decodes the character ending exactly at `off`; returns its start, or kFail.
    virtual uint32_t decodePrevCharStrict(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Decodes the nearest valid character starting before `off`, skipping invalid bytes.
    virtual uint32_t decodePrevChar(uint32_t& out, const uint8_t* buf, uint32_t len, uint32_t off) const = 0;
    // Decodes up to `max` characters forwards with decodeChar. `count` receives the number decoded;
    // `offsets[i]`, when given, the offset at which character i was looked for. Returns the offset
    // after the last character decoded, or `off` when none was.
    virtual uint32_t decodeChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                 uint32_t off, uint32_t* offsets) const = 0;
    // The same backwards with decodePrevChar; `offsets[i]` receives the start of character i.
    // Returns the start of the last character decoded, or `off` when none was.
    virtual uint32_t decodePrevChars(uint32_t* out, uint32_t max, uint32_t& count, const uint8_t* buf, uint32_t len,
                                     uint32_t off, uint32_t* offsets) const = 0;
};

} // namespace kore
