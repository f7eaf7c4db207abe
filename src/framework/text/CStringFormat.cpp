#include "framework/text/CStringFormat.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace kore {

namespace {

// A formatter is often a stack object, which an error must not keep a reference to; errors
// describe it instead.
const char* const kObjectDescription = "class kore::CStringFormat object";

const char* const kMismatch = "argument does not match the field's format specification for '";
const char* const kInvalidFormat = "invalid format string in '";
const char* const kTooManyFlags = "too many field flags specified in '";
const char* const kWidthExpected = "expected integer value (field width) in '";
const char* const kPrecisionExpected = "expected integer value (field precision) in '";
const char* const kWidthRange = "field width out of range in '";
const char* const kPrecisionRange = "field precision out of range in '";
const char* const kInvalidChar = "invalid character code point in '";

// The byte length of a UTF-16 CString is 32-bit; keep the output within it.
constexpr size_t kMaxUnits = 0x7FFFFFF0;

bool isHighSurrogate(uint32_t u)
{
    return u >= 0xD800 && u <= 0xDBFF;
}
bool isLowSurrogate(uint32_t u)
{
    return u >= 0xDC00 && u <= 0xDFFF;
}

// Grows `out` by `units` and returns where they start. Every write is sized first, so a failed
// allocation leaves `out` as it was.
char16_t* growBy(std::u16string& out, size_t units)
{
    const size_t at = out.size();
    if (units > kMaxUnits - at)
        throw COutOfmemoryException();
    try {
        out.resize(at + units);
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
    return out.data() + at;
}

char16_t* appendUnit(char16_t* p, uint32_t cp)
{
    if (cp < 0x10000) {
        *p++ = static_cast<char16_t>(cp);
    } else {
        const uint32_t v = cp - 0x10000;
        *p++ = static_cast<char16_t>(0xD800 | (v >> 10));
        *p++ = static_cast<char16_t>(0xDC00 | (v & 0x3FF));
    }
    return p;
}

// Appends up to `maxChars` characters of `text` to `out` and returns how many were appended.
// Every character the string counts is written, so widths and precisions come out right: a
// surrogate code point (which UTF-8 and UTF-32 text may carry, UTF-16 cannot) becomes U+FFFD.
// Latin-1 and UTF-16 text, the common cases, is copied without virtual calls.
uint32_t appendText(std::u16string& out, const IString& text, uint32_t maxChars)
{
    const uint8_t* buf = text.getBuffer();
    const uint32_t len = text.getByteLength();
    const uint32_t id = text.getEncoding()->getId();
    const size_t at = out.size();

    if (id == CLatin1CharEncoding::kId) {
        const uint32_t n = std::min(len, maxChars);
        char16_t* p = growBy(out, n);
        for (uint32_t i = 0; i < n; ++i)
            p[i] = buf[i];
        return n;
    }

    if (id == CUTF16CharEncoding::kId) {
        const uint32_t units = len / 2;
        char16_t* const start = growBy(out, std::min<uint64_t>(units, 2ull * maxChars));
        char16_t* p = start;
        uint32_t chars = 0;
        // Units are little-endian; read bytewise, the buffer need not be aligned.
        auto unitAt = [buf](uint32_t i) { return static_cast<uint32_t>(buf[2 * i] | (buf[2 * i + 1] << 8)); };
        for (uint32_t i = 0; i < units && chars < maxChars; ++i) {
            const uint32_t u = unitAt(i);
            if (isHighSurrogate(u)) {
                if (i + 1 < units && isLowSurrogate(unitAt(i + 1))) {
                    *p++ = static_cast<char16_t>(u);
                    *p++ = static_cast<char16_t>(unitAt(++i));
                    ++chars;
                }
                continue; // a lone high surrogate is not a character
            }
            if (isLowSurrogate(u))
                continue;
            *p++ = static_cast<char16_t>(u);
            ++chars;
        }
        out.resize(at + static_cast<size_t>(p - start));
        return chars;
    }

    const uint32_t bound = std::min(text.getLength(), maxChars);
    char16_t* const start = growBy(out, 2ull * bound);
    char16_t* p = start;
    uint32_t chars = 0;
    CCharCursor cursor(text);
    for (uint32_t cp = 0; chars < bound && cursor.next(cp);) {
        if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            cp = 0xFFFD;
        p = appendUnit(p, cp);
        ++chars;
    }
    out.resize(at + static_cast<size_t>(p - start));
    return chars;
}

// Reads a run of decimal digits; `overflow` is set when it exceeds a signed 32-bit value.
int32_t readCount(const char16_t* f, size_t n, size_t& pos, bool& overflow)
{
    int64_t value = 0;
    for (; pos < n && f[pos] >= u'0' && f[pos] <= u'9'; ++pos) {
        value = value * 10 + (f[pos] - u'0');
        if (value > CStringFormat::kMaxCount) {
            overflow = true;
            value = CStringFormat::kMaxCount;
        }
    }
    return static_cast<int32_t>(value);
}

uint32_t kindOf(char16_t letter)
{
    switch (letter) {
    case u'c':
    case u'C': return CStringFormat::kChar;
    case u'd':
    case u'i':
    case u'o':
    case u'x':
    case u'X':
    case u'u': return CStringFormat::kInteger;
    case u'e':
    case u'E':
    case u'f':
    case u'g':
    case u'G': return CStringFormat::kFloat;
    case u's':
    case u'S': return CStringFormat::kString;
    default: return CStringFormat::kNone;
    }
}

size_t writeDecimal(char* p, uint32_t value)
{
    char digits[10];
    size_t n = 0;
    do {
        digits[n++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value);
    for (size_t i = 0; i < n; ++i)
        p[i] = digits[n - 1 - i];
    return n;
}

} // namespace

CStringFormat::CStringFormat(const CStringArg& format)
{
    // CStringArg made from a null P holds no string: an empty format.
    if (const IString* text = format.operator->())
        appendText(m_format, *text, IString::kUnknown);
    try {
        m_output.reserve(m_format.size() + 64);
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
    goToNextFormatField();
}

CStringFormat::~CStringFormat() = default;

void CStringFormat::pushInt(int64_t value)
{
    doInt(static_cast<uint64_t>(value), true);
}

void CStringFormat::pushUInt(uint64_t value)
{
    doInt(value, false);
}

void CStringFormat::pushDouble(double value)
{
    doDouble(value);
}

void CStringFormat::pushChar(uint32_t codePoint)
{
    doChar(codePoint);
}

void CStringFormat::pushString(const CStringArg& value)
{
    if (const IString* text = value.operator->()) {
        doString(*text);
    } else {
        const CStringArg empty(u"");
        doString(empty.get());
    }
}

P<IString> CStringFormat::getResult() const
{
    if (!isComplete())
        throw CInvalidObjectStateError(nullptr, "CStringFormat: not all parameters have been pushed in yet.",
                                       kObjectDescription);
    // The output is always well-formed UTF-16 (appendText and the writers below keep it so), so
    // its characters are its units less the second halves of pairs; no decoding needed.
    const uint32_t units = static_cast<uint32_t>(m_output.size());
    uint32_t chars = units;
    for (const char16_t u : m_output)
        chars -= isLowSurrogate(u) ? 1 : 0;
    return make<CUTF16String>(m_output.data(), units * 2, chars, CString::kCopy);
}

void CStringFormat::goToNextFormatField()
{
    if (m_position == kEnd)
        return;
    m_kind = kNone;
    m_letter = 0;
    m_zeroPad = m_leftJustify = m_alternate = m_plusSign = m_spaceSign = false;
    m_widthPending = m_precisionPending = false;
    m_width = m_precision = kNotGiven;
    m_specLength = 1;

    const char16_t* f = m_format.data();
    const size_t n = m_format.size();
    size_t pos = m_position;
    for (;;) {
        const size_t hit = m_format.find(u'%', pos);
        if (hit == std::u16string::npos) {
            std::copy(f + pos, f + n, growBy(m_output, n - pos));
            m_position = kEnd;
            return;
        }
        if (hit + 1 < n && f[hit + 1] == u'%') {
            // "%%": the text before it and one "%".
            std::copy(f + pos, f + hit + 1, growBy(m_output, hit + 1 - pos));
            pos = hit + 2;
            continue;
        }
        std::copy(f + pos, f + hit, growBy(m_output, hit - pos));
        pos = hit + 1;
        break;
    }
    scanField(pos);
}

// Reads one field from just after its "%". A malformed field is read to its end before the error
// is thrown, and then stands as a string field: the formatter stays usable and getResult() keeps
// refusing until the field is filled.
void CStringFormat::scanField(size_t& pos)
{
    const char16_t* f = m_format.data();
    const size_t n = m_format.size();

    bool tooManyFlags = false;
    for (; pos < n; ++pos) {
        const char16_t c = f[pos];
        if (c == u'-')
            m_leftJustify = true;
        else if (c == u'+')
            m_plusSign = true;
        else if (c == u'0')
            m_zeroPad = true;
        else if (c == u' ')
            m_spaceSign = true;
        else if (c == u'#')
            m_alternate = true;
        else
            break;
        // The rebuilt field text holds "%" and at most five flag characters.
        if (m_specLength == 6)
            tooManyFlags = true;
        else
            m_spec[m_specLength++] = static_cast<char>(c);
    }

    bool overflow = false;
    if (pos < n && f[pos] == u'*') {
        m_widthPending = true;
        ++pos;
    } else {
        const size_t start = pos;
        const int32_t width = readCount(f, n, pos, overflow);
        if (pos != start)
            m_width = width;
    }

    if (pos < n && f[pos] == u'.') {
        ++pos;
        if (pos < n && f[pos] == u'*') {
            m_precisionPending = true;
            ++pos;
        } else {
            m_precision = readCount(f, n, pos, overflow); // "." alone is precision 0
        }
    }

    if (pos < n) {
        switch (f[pos]) {
        case u'l':
        case u'h':
            // l, ll, h, hh
            if (pos + 1 < n && f[pos + 1] == f[pos])
                ++pos;
            ++pos;
            break;
        case u'L':
        case u'z':
        case u'j':
        case u't': ++pos; break;
        case u'I':
            // Only "I64"; a lone "I" is read as the (invalid) conversion letter.
            if (pos + 2 < n && f[pos + 1] == u'6' && f[pos + 2] == u'4')
                pos += 3;
            break;
        default: break;
        }
    }

    const char16_t letter = pos < n ? f[pos] : 0;
    if (pos < n) {
        ++pos;
        if (isHighSurrogate(letter) && pos < n && isLowSurrogate(f[pos]))
            ++pos;
    }
    m_position = static_cast<uint32_t>(pos);
    m_letter = letter;
    m_kind = kindOf(letter);

    if (tooManyFlags || overflow || m_kind == kNone) {
        m_kind = kString;
        m_letter = u's';
        // A count out of range is refused, not kept: clamped, it would pad the string to 2^31.
        if (overflow)
            m_width = m_precision = kNotGiven;
        fail("CStringFormat::goToNextFormatField", tooManyFlags ? kTooManyFlags : kInvalidFormat);
    }
}

void CStringFormat::doInt(uint64_t bits, bool isSigned)
{
    if (m_widthPending || m_precisionPending) {
        const bool negative = isSigned && static_cast<int64_t>(bits) < 0;
        if (!negative && bits > static_cast<uint64_t>(kMaxCount))
            fail("CStringFormat::doInt", m_widthPending ? kWidthRange : kPrecisionRange);
        const int32_t count = negative ? 0 : static_cast<int32_t>(bits);
        if (m_widthPending) {
            m_width = count;
            m_widthPending = false;
        } else {
            m_precision = count;
            m_precisionPending = false;
        }
        return;
    }
    switch (m_kind) {
    case kFloat:
        doDouble(isSigned ? static_cast<double>(static_cast<int64_t>(bits)) : static_cast<double>(bits));
        return;
    case kChar: {
        const bool inRange = isSigned ? static_cast<int64_t>(bits) >= 0 && bits <= 0x10FFFF : bits <= 0x10FFFF;
        // Anything outside the code point range is refused by doChar.
        doChar(inRange ? static_cast<uint32_t>(bits) : 0xFFFFFFFF);
        return;
    }
    case kInteger:
        writeInteger(bits, isSigned);
        goToNextFormatField();
        return;
    default: fail("CStringFormat::doInt", kMismatch);
    }
}

void CStringFormat::writeInteger(uint64_t bits, bool isSigned)
{
    // x, X and o read the value as unsigned; every other letter follows the argument.
    uint32_t base = 10;
    if (m_letter == u'x' || m_letter == u'X') {
        base = 16;
        isSigned = false;
    } else if (m_letter == u'o') {
        base = 8;
        isSigned = false;
    }
    const bool negative = isSigned && static_cast<int64_t>(bits) < 0;
    uint64_t magnitude = negative ? 0 - bits : bits;

    // Digits, least significant first; constant divisors keep the loops cheap.
    const char* set = m_letter == u'x' ? "0123456789abcdef" : "0123456789ABCDEF";
    char digits[24];
    int32_t digitCount = 0;
    if (base == 10) {
        for (; magnitude; magnitude /= 10)
            digits[digitCount++] = static_cast<char>('0' + magnitude % 10);
    } else if (base == 16) {
        for (; magnitude; magnitude >>= 4)
            digits[digitCount++] = set[magnitude & 15];
    } else {
        for (; magnitude; magnitude >>= 3)
            digits[digitCount++] = static_cast<char>('0' + (magnitude & 7));
    }

    int64_t count = std::max<int64_t>(m_precision == kNotGiven ? 1 : m_precision, digitCount);
    const int64_t prefixLength = !m_alternate ? 0 : base == 16 ? 2 : base == 8 ? 1 : 0;
    count += prefixLength;
    int64_t leading = 0;
    int64_t trailing = 0;
    if (m_width != kNotGiven && count < m_width) {
        if (m_leftJustify)
            trailing = m_width - count;
        else if (m_zeroPad)
            count = m_width;
        else
            leading = m_width - count;
    }
    char16_t sign = 0;
    if (isSigned)
        sign = negative ? u'-' : m_plusSign ? u'+' : m_spaceSign ? u' ' : 0;

    // Padding is always spaces here: zero padding widens the digits instead.
    char16_t* p = growBy(m_output, static_cast<size_t>(leading + (sign ? 1 : 0) + count + trailing));
    p = std::fill_n(p, leading, u' ');
    if (sign)
        *p++ = sign;
    if (prefixLength) {
        *p++ = u'0';
        if (base == 16)
            *p++ = m_letter;
    }
    const int64_t area = count - prefixLength;
    std::fill_n(p, area - digitCount, u'0');
    p += area - digitCount;
    for (int32_t i = digitCount; i > 0;)
        *p++ = static_cast<char16_t>(digits[--i]);
    std::fill_n(p, trailing, u' ');
}

void CStringFormat::doDouble(double value)
{
    checkNotPending("CStringFormat::doDouble");
    if (m_kind != kFloat)
        fail("CStringFormat::doDouble", kMismatch);
    rebuildSpec(m_letter);
    // Room for the widest result: 308 integer digits for f (and g), plus sign, point, precision
    // (21 when not given) and exponent, with margins.
    const size_t base = m_letter == u'e' || m_letter == u'E' ? 1 : 308;
    size_t size = std::max<size_t>(base, m_width == kNotGiven ? 0 : static_cast<size_t>(m_width));
    size += m_precision == kNotGiven ? 21 : 1 + static_cast<size_t>(m_precision);
    if (m_letter != u'f')
        size += 21;
    size += 21;
    formatWithRuntime(size, value);
    goToNextFormatField();
}

void CStringFormat::doString(const IString& value)
{
    checkNotPending("CStringFormat::doString");
    if (m_kind != kString)
        fail("CStringFormat::doString", kMismatch);
    writeString(value);
    goToNextFormatField();
}

void CStringFormat::writeString(const IString& value)
{
    const uint32_t n = value.getLength();
    if (m_precision != kNotGiven && n > static_cast<uint32_t>(m_precision)) {
        // Cut to the precision; a cut string is not padded.
        appendText(m_output, value, static_cast<uint32_t>(m_precision));
        return;
    }
    const size_t pad = m_width != kNotGiven && static_cast<uint32_t>(m_width) > n ? m_width - n : 0;
    const char16_t padChar = m_zeroPad ? u'0' : u' ';
    if (!m_leftJustify)
        std::fill_n(growBy(m_output, pad), pad, padChar);
    appendText(m_output, value, IString::kUnknown);
    if (m_leftJustify)
        std::fill_n(growBy(m_output, pad), pad, padChar);
}

void CStringFormat::doChar(uint32_t codePoint)
{
    if (m_widthPending || m_precisionPending || m_kind == kInteger) {
        doInt(codePoint, true);
        return;
    }
    if (m_kind != kChar)
        fail("CStringFormat::doChar", kMismatch);
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        fail("CStringFormat::doChar", kInvalidChar);
    if (codePoint > 127) {
        m_kind = kString;
        const CStringArg one(static_cast<char32_t>(codePoint));
        writeString(one.get());
    } else {
        rebuildSpec(u'c');
        formatWithRuntime(std::max<size_t>(m_width == kNotGiven ? 0 : static_cast<size_t>(m_width), 1) + 1,
                          static_cast<int>(codePoint));
    }
    goToNextFormatField();
}

void CStringFormat::checkNotPending(const char* context) const
{
    if (m_widthPending)
        fail(context, kWidthExpected);
    if (m_precisionPending)
        fail(context, kPrecisionExpected);
}

void CStringFormat::rebuildSpec(char16_t letter)
{
    // C defines only "-" and the width for "c"; the other flags and a precision are undefined
    // there (the usual runtimes ignore them), so they are not passed on.
    const bool number = letter != u'c';
    uint32_t len = 1;
    if (m_leftJustify)
        m_spec[len++] = '-';
    if (m_plusSign && number)
        m_spec[len++] = '+';
    if (m_spaceSign && number)
        m_spec[len++] = ' ';
    if (m_alternate && number)
        m_spec[len++] = '#';
    if (m_zeroPad && number)
        m_spec[len++] = '0';
    if (m_width != kNotGiven)
        len += static_cast<uint32_t>(writeDecimal(m_spec + len, static_cast<uint32_t>(m_width)));
    if (number && m_precision != kNotGiven) {
        m_spec[len++] = '.';
        len += static_cast<uint32_t>(writeDecimal(m_spec + len, static_cast<uint32_t>(m_precision)));
    }
    m_spec[len++] = static_cast<char>(letter);
    m_spec[len] = 0;
    m_specLength = len;
}

void CStringFormat::growScratch(size_t size)
{
    if (size <= m_scratchSize)
        return;
    // Nothing larger could be appended to the output anyway.
    if (size > kMaxUnits)
        throw COutOfmemoryException();
    try {
        m_scratch.reset(new char[size]);
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
    m_scratchSize = size;
}

template <class T>
void CStringFormat::formatWithRuntime(size_t scratchSize, T value)
{
    growScratch(scratchSize);
    int written = std::snprintf(m_scratch.get(), m_scratchSize, m_spec, value);
    if (written >= 0 && static_cast<size_t>(written) >= m_scratchSize) {
        // The size rule leaves room for every value; this only guards against a runtime that
        // writes more than it should.
        growScratch(static_cast<size_t>(written) + 1);
        written = std::snprintf(m_scratch.get(), m_scratchSize, m_spec, value);
    }
    // snprintf fails only for results beyond INT_MAX characters.
    if (written < 0)
        throw COutOfmemoryException();
    const char* s = m_scratch.get();
    char16_t* p = growBy(m_output, static_cast<size_t>(written));
    for (int i = 0; i < written; ++i)
        p[i] = static_cast<unsigned char>(s[i]);
}

void CStringFormat::fail(const char* context, const char* message) const
{
    P<IString> text =
        keepText(message)->concat(CStringArg(m_format.data(), static_cast<uint32_t>(m_format.size())))->concat("'");
    throw CInvalidArgError(nullptr, context, text, kObjectDescription);
}

} // namespace kore
