#pragma once
// Reads numbers from text, for number boxes and readers of text values. Strict: the whole text
// must be the number, with no spaces around it.
//
// Integers: an optional sign ("+", or "-" for the signed forms only) and at least one digit.
// Digits are "0"-"9" and the letters "A"-"Z" / "a"-"z" as values 10-35; reading stops at the first
// character whose value is not below the base, and any character left over is a failure (so no
// "0x" prefixes). A value outside the result type is a failure. Failures throw CParseError
// "Error parsing integer."; a base outside 2-36 is a programming error (CInvalidArgError).
//
// Floating point: an optional sign, then digits with an optional "." (at least one digit on
// either side), then an optional exponent "e"/"E", optional sign, digits; or "inf", "infinity" or
// "nan" in any case (what the formatter writes for them). Independent of the C locale. A value
// too large for a double, or one that is not zero but rounds to zero, is a failure. Failures
// throw CParseError with the localised "kore.CDouble.parseError" text.

#include "framework/text/CStringArg.h"

#include <cstdint>

namespace kore {

class CNumberParser {
public:
    static int64_t parseInt64(const CStringArg& text, uint32_t base = 10);
    static uint64_t parseUInt64(const CStringArg& text, uint32_t base = 10);
    static double parseDouble(const CStringArg& text);

    CNumberParser() = delete;
};

} // namespace kore
