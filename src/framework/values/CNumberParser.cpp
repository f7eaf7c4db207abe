#include "framework/values/CNumberParser.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CParseError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/IString.h"

#include <charconv>
#include <string>

namespace kore {

namespace {

[[noreturn]] void failInteger()
{
    throw CParseError("Error parsing integer.");
}

[[noreturn]] void failDouble()
{
    throw CParseError(getLocalizedText("kore.CDouble.parseError", "Error parsing floating point value."));
}

uint32_t digitValue(uint32_t cp)
{
    if (cp >= '0' && cp <= '9')
        return cp - '0';
    if (cp >= 'A' && cp <= 'Z')
        return cp - 'A' + 10;
    if (cp >= 'a' && cp <= 'z')
        return cp - 'a' + 10;
    return 36;
}

// Reads sign and digits; the whole text must be used.
uint64_t parseMagnitude(const IString& text, uint32_t base, bool allowMinus, bool& negative, const char* method)
{
    if (base < 2 || base > 36)
        throw CInvalidArgError(nullptr, method, "base (must be 2 to 36)", "class kore::CNumberParser");
    CCharCursor cursor(text);
    uint32_t cp = 0;
    bool more = cursor.next(cp);
    negative = false;
    if (more && (cp == '+' || cp == '-')) {
        if (cp == '-') {
            if (!allowMinus)
                failInteger();
            negative = true;
        }
        more = cursor.next(cp);
    }
    uint64_t value = 0;
    bool anyDigit = false;
    for (; more; more = cursor.next(cp)) {
        const uint32_t digit = digitValue(cp);
        if (digit >= base)
            break;
        if (value > (UINT64_MAX - digit) / base)
            failInteger();
        value = value * base + digit;
        anyDigit = true;
    }
    if (!anyDigit || more)
        failInteger();
    return value;
}

bool equalsIgnoreCase(const std::string& text, size_t from, const char* lower)
{
    size_t i = from;
    for (; *lower; ++lower, ++i) {
        if (i >= text.size() || (text[i] | 0x20) != *lower)
            return false;
    }
    return i == text.size();
}

size_t skipDigits(const std::string& text, size_t i)
{
    while (i < text.size() && text[i] >= '0' && text[i] <= '9')
        ++i;
    return i;
}

} // namespace

int64_t CNumberParser::parseInt64(const CStringArg& text, uint32_t base)
{
    bool negative = false;
    const uint64_t magnitude = parseMagnitude(text.get(), base, true, negative, "CNumberParser::parseInt64");
    if (negative) {
        if (magnitude > static_cast<uint64_t>(INT64_MAX) + 1)
            failInteger();
        return static_cast<int64_t>(0 - magnitude);
    }
    if (magnitude > static_cast<uint64_t>(INT64_MAX))
        failInteger();
    return static_cast<int64_t>(magnitude);
}

uint64_t CNumberParser::parseUInt64(const CStringArg& text, uint32_t base)
{
    bool negative = false;
    return parseMagnitude(text.get(), base, false, negative, "CNumberParser::parseUInt64");
}

double CNumberParser::parseDouble(const CStringArg& text)
{
    // Only ASCII can be part of a number.
    std::string ascii;
    ascii.reserve(text->getLength());
    CCharCursor cursor(text.get());
    for (uint32_t cp = 0; cursor.next(cp);) {
        if (cp > 127)
            failDouble();
        ascii.push_back(static_cast<char>(cp));
    }

    size_t i = 0;
    const bool negative = !ascii.empty() && ascii[0] == '-';
    if (!ascii.empty() && (ascii[0] == '-' || ascii[0] == '+'))
        ++i;
    const size_t start = i;
    if (!equalsIgnoreCase(ascii, start, "inf") && !equalsIgnoreCase(ascii, start, "infinity") &&
        !equalsIgnoreCase(ascii, start, "nan")) {
        // The grammar is checked here; from_chars alone would also take "nan(...)".
        const size_t intEnd = skipDigits(ascii, i);
        size_t digits = intEnd - i;
        i = intEnd;
        if (i < ascii.size() && ascii[i] == '.') {
            const size_t fracEnd = skipDigits(ascii, i + 1);
            digits += fracEnd - i - 1;
            i = fracEnd;
        }
        if (digits == 0)
            failDouble();
        if (i < ascii.size() && (ascii[i] == 'e' || ascii[i] == 'E')) {
            ++i;
            if (i < ascii.size() && (ascii[i] == '+' || ascii[i] == '-'))
                ++i;
            const size_t expEnd = skipDigits(ascii, i);
            if (expEnd == i)
                failDouble();
            i = expEnd;
        }
        if (i != ascii.size())
            failDouble();
    }

    // from_chars does not depend on the C locale; it reports overflow and underflow to zero as
    // out of range.
    double value = 0;
    const char* first = ascii.data() + start;
    const char* last = ascii.data() + ascii.size();
    const auto result = std::from_chars(first, last, value, std::chars_format::general);
    if (result.ec != std::errc() || result.ptr != last)
        failDouble();
    return negative ? -value : value;
}

} // namespace kore
