#include "framework/values/CJsonParser.h"

#include "framework/errors/CJsonParserError.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"
#include "framework/text/UTF8Decoding.h"
#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt64.h"
#include "framework/values/CNull.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <charconv>
#include <system_error>

namespace kore {

namespace {

bool isDigit(uint32_t c)
{
    return c >= '0' && c <= '9';
}

int hexValue(uint32_t c)
{
    if (isDigit(c))
        return static_cast<int>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<int>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<int>(c - 'A' + 10);
    return -1;
}

constexpr char16_t kReplacement = 0xFFFD;

// Out of range for a double: true when the number is so small that it reads as zero (its first
// significant digit lies after the decimal point by more than the exponent brings back), false
// when it is too large. `text` is a number of the JSON grammar.
bool underflows(std::string_view text)
{
    const size_t e = text.find_first_of("eE");
    const std::string_view mantissa = text.substr(0, e);
    const size_t point = mantissa.find('.');
    const size_t intEnd = point == std::string_view::npos ? mantissa.size() : point;
    const size_t firstDigit = mantissa.find_first_of("123456789");
    // The power of ten of the first significant digit, before the exponent.
    int64_t magnitude =
        firstDigit < intEnd ? static_cast<int64_t>(intEnd - firstDigit) : -static_cast<int64_t>(firstDigit - intEnd);
    if (e != std::string_view::npos) {
        std::string_view exponent = text.substr(e + 1);
        const bool negative = !exponent.empty() && exponent[0] == '-';
        if (!exponent.empty() && (exponent[0] == '-' || exponent[0] == '+'))
            exponent.remove_prefix(1);
        int64_t value = 0;
        for (char c : exponent)
            value = std::min<int64_t>(value * 10 + (c - '0'), int64_t{1} << 40);
        magnitude += negative ? -value : value;
    }
    return magnitude < 0;
}

} // namespace

P<IBase> CJsonParser::parseUTF8(std::string_view bytes)
{
    // A framework string holds at most 0xFFFFFFFE bytes: 0x7FFFFFFF UTF-16 units.
    if (bytes.size() > 0x7FFFFFFF) {
        m_position = 0;
        throw CJsonParserError(formatString("the text is too large (%u bytes)", static_cast<uint64_t>(bytes.size())));
    }
    std::u16string text;
    size_t bad = 0;
    if (!decodeUTF8(bytes, text, &bad)) {
        m_position = 0;
        throw CJsonParserError(formatString("invalid UTF-8 at byte %u", static_cast<uint64_t>(bad)));
    }
    const uint32_t byteLength = CString::unitsToBytes(static_cast<uint32_t>(text.size()), 2);
    return parse(CUTF16String(text.data(), byteLength, IString::kUnknown, CString::kBorrow));
}

P<IBase> CJsonParser::parse(const CStringArg& text)
{
    m_cursor.emplace(text.get());
    m_position = 0;
    m_current = kEnd;
    uint32_t first = 0;
    if (m_cursor->next(first))
        m_current = first;
    struct Reset {
        CJsonParser& parser;
        ~Reset() { parser.m_cursor.reset(); }
    } reset{*this};

    skipWhitespace();
    P<IBase> value = parseValue(1);
    skipWhitespace();
    if (peek() != kEnd)
        failHere("unexpected text after the value");
    return value;
}

uint32_t CJsonParser::take()
{
    const uint32_t c = m_current;
    if (c == kEnd)
        return c;
    ++m_position;
    if (!m_cursor->next(m_current))
        m_current = kEnd;
    return c;
}

void CJsonParser::skipWhitespace()
{
    for (uint32_t c = peek(); c == ' ' || c == '\t' || c == '\n' || c == '\r'; c = peek())
        take();
}

void CJsonParser::expect(char c, const char* what)
{
    if (peek() != static_cast<uint32_t>(c))
        failHere(what);
    take();
}

void CJsonParser::fail(const char* message) const
{
    throw CJsonParserError(message);
}

void CJsonParser::failHere(const char* what) const
{
    if (peek() == kEnd)
        throw CJsonParserError(
            formatString("%s: the text ends at character %u", what, static_cast<uint64_t>(m_position)));
    throw CJsonParserError(formatString("%s at character %u", what, static_cast<uint64_t>(m_position)));
}

P<IBase> CJsonParser::parseValue(uint32_t depth)
{
    switch (peek()) {
    case '{': return parseObject(depth);
    case '[': return parseArray(depth);
    case '"': return parseString();
    case 't':
    case 'f': return parseBoolean();
    case 'n': return parseNull();
    default:
        if (peek() == '-' || isDigit(peek()))
            return parseNumber();
        failHere("expected a value");
    }
}

template <class ParseItem>
void CJsonParser::parseItems(uint32_t depth, uint32_t close, const char* expectation, const ParseItem& parseItem)
{
    if (depth > kMaxDepth)
        failHere("objects and arrays nested too deeply");
    take(); // "{" or "["
    skipWhitespace();
    if (peek() == close) {
        take();
        return;
    }
    for (;;) {
        parseItem();
        skipWhitespace();
        if (peek() == close) {
            take();
            return;
        }
        expect(',', expectation);
        skipWhitespace();
    }
}

P<IBase> CJsonParser::parseObject(uint32_t depth)
{
    auto map = make<CVariantMap>();
    parseItems(depth, '}', "expected ',' or '}' in an object", [&] {
        if (peek() != '"')
            failHere("expected a string as the member's name");
        P<IString> key = parseString();
        skipWhitespace();
        expect(':', "expected ':' after the member's name");
        skipWhitespace();
        map->set(key, parseValue(depth + 1));
    });
    return map;
}

P<IBase> CJsonParser::parseArray(uint32_t depth)
{
    auto array = make<CVariantArray>();
    parseItems(depth, ']', "expected ',' or ']' in an array", [&] { array->add(parseValue(depth + 1)); });
    return array;
}

uint32_t CJsonParser::readUnicodeEscape()
{
    uint32_t unit = 0;
    for (int i = 0; i < 4; ++i) {
        if (peek() == kEnd)
            fail("stream size to small for reading unicode char");
        const int digit = hexValue(take());
        if (digit < 0)
            fail("could not parse unicode escaped string");
        unit = unit * 16 + static_cast<uint32_t>(digit);
    }
    return unit;
}

P<IString> CJsonParser::parseString()
{
    take(); // the opening quote
    m_text.clear();
    // A high surrogate from "\u" waits here for its low half.
    char16_t high = 0;
    auto flushHigh = [&] {
        if (high)
            m_text.push_back(kReplacement);
        high = 0;
    };
    for (;;) {
        const uint32_t c = peek();
        if (c == kEnd)
            failHere("unterminated string");
        if (c < 0x20)
            failHere("control character in a string");
        take();
        if (c == '"')
            break;
        if (c != '\\') {
            flushHigh();
            appendUTF16(c, m_text);
            continue;
        }
        const uint32_t escaped = peek();
        if (escaped == kEnd)
            failHere("unterminated escape");
        if (escaped == 'u') {
            take();
            const auto unit = static_cast<char16_t>(readUnicodeEscape());
            const bool isHigh = unit >= 0xD800 && unit <= 0xDBFF;
            const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
            if (high && isLow) {
                m_text.push_back(high);
                m_text.push_back(unit);
                high = 0;
                continue;
            }
            flushHigh();
            if (isHigh)
                high = unit;
            else
                m_text.push_back(isLow ? kReplacement : unit);
            continue;
        }
        flushHigh();
        char16_t plain = 0;
        switch (escaped) {
        case '"': plain = u'"'; break;
        case '\\': plain = u'\\'; break;
        case '/': plain = u'/'; break;
        case 'b': plain = u'\b'; break;
        case 'f': plain = u'\f'; break;
        case 'n': plain = u'\n'; break;
        case 'r': plain = u'\r'; break;
        case 't': plain = u'\t'; break;
        default: failHere("invalid escape in a string");
        }
        take();
        m_text.push_back(plain);
    }
    flushHigh();
    return CString::fromUTF16(m_text);
}

P<IBase> CJsonParser::parseBoolean()
{
    // Four characters against "true", else against "fals" and then one more "e".
    char buffer[4] = {};
    for (char& c : buffer) {
        const uint32_t cp = take();
        c = cp < 0x80 ? static_cast<char>(cp) : '?';
    }
    const std::string_view four(buffer, 4);
    if (four == "true")
        return make<CBool>(true);
    if (four == "fals" && take() == 'e')
        return make<CBool>(false);
    fail("could not parse boolean value");
}

P<IBase> CJsonParser::parseNull()
{
    for (char expected : std::string_view("null")) {
        if (peek() != static_cast<uint32_t>(expected))
            failHere("could not parse null value");
        take();
    }
    return make<CNull>();
}

P<IBase> CJsonParser::parseNumber()
{
    std::string text;
    auto digits = [&](const char* what) {
        if (!isDigit(peek()))
            failHere(what);
        while (isDigit(peek()))
            text.push_back(static_cast<char>(take()));
    };
    if (peek() == '-')
        text.push_back(static_cast<char>(take()));
    if (peek() == '0')
        text.push_back(static_cast<char>(take()));
    else
        digits("expected a digit in a number");
    bool integral = true;
    if (peek() == '.') {
        integral = false;
        text.push_back(static_cast<char>(take()));
        digits("expected a digit after the decimal point");
    }
    if (peek() == 'e' || peek() == 'E') {
        integral = false;
        text.push_back(static_cast<char>(take()));
        if (peek() == '-' || peek() == '+')
            text.push_back(static_cast<char>(take()));
        digits("expected a digit in the exponent");
    }

    const char* first = text.data();
    const char* last = first + text.size();
    if (integral) {
        int64_t value = 0;
        const auto result = std::from_chars(first, last, value);
        // "-0" stays a double: an integer would lose the sign, and the printer writes -0.0 as
        // "-0", which must read back as what it was printed from.
        if (result.ec == std::errc() && result.ptr == last && !(value == 0 && text[0] == '-'))
            return makeInteger(value);
    }
    double value = 0;
    const auto result = std::from_chars(first, last, value);
    if (result.ec == std::errc::result_out_of_range) {
        if (!underflows(text))
            fail("number too large for a floating-point value");
        value = text[0] == '-' ? -0.0 : 0.0;
    }
    return make<CDouble>(value);
}

} // namespace kore
