#pragma once
// Reads JSON text (RFC 8259) into a tree of variants: objects become CVariantMap (a repeated key
// keeps its last value), arrays CVariantArray, strings CString (UTF-16), true and false CBool,
// null CNull. A number without fraction or exponent becomes CInt when it fits 32 bits, CInt64
// when it fits 64 bits; any other number, and "-0", becomes CDouble (one that underflows reads
// as zero, one too large for a double is an error).
//
// Whitespace between tokens is space, tab, line feed and carriage return. Strings take every
// escape of RFC 8259; "\u" escapes of a surrogate pair make one character, and a surrogate
// without its partner reads as U+FFFD. Control characters must be escaped inside strings.
//
// Every failure throws CJsonParserError ("JSONParser Error"), never anything else: text that
// ends early or breaks the grammar, objects and arrays nested deeper than kMaxDepth (so that no
// input can exhaust the stack), and, for parseUTF8, bytes that are not UTF-8. Its description is
// one of "could not parse boolean value", "stream size to small for reading unicode char",
// "could not parse unicode escaped string", or a message naming the character position.
//
// A parser belongs to one thread at a time.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kore {

class CJsonParser : public CObject {
public:
    // Objects and arrays inside one another, counted from 1 for the outermost.
    static constexpr uint32_t kMaxDepth = 512;

    // The one value that `text` holds, with optional whitespace around it.
    P<IBase> parse(const CStringArg& text);
    // The same for UTF-8 bytes (a file's content), decoded completely before parsing.
    P<IBase> parseUTF8(std::string_view bytes);

    // Characters read so far by the last parse: where it stopped or failed.
    uint32_t getPosition() const noexcept { return m_position; }

private:
    static constexpr uint32_t kEnd = 0xFFFFFFFF;

    // The current character, kEnd behind the text.
    uint32_t peek() const noexcept { return m_current; }
    // Returns the current character and moves on.
    uint32_t take();
    void skipWhitespace();
    void expect(char c, const char* what);

    P<IBase> parseValue(uint32_t depth);
    // The items between "{" or "[" and `close`, separated by ",", each read by parseItem.
    template <class ParseItem>
    void parseItems(uint32_t depth, uint32_t close, const char* expectation, const ParseItem& parseItem);
    P<IBase> parseObject(uint32_t depth);
    P<IBase> parseArray(uint32_t depth);
    P<IString> parseString();
    P<IBase> parseBoolean();
    P<IBase> parseNull();
    P<IBase> parseNumber();
    // The code unit of the four hexadecimal digits after "\u".
    uint32_t readUnicodeEscape();

    [[noreturn]] void fail(const char* message) const;
    [[noreturn]] void failHere(const char* what) const;

    std::optional<CCharCursor> m_cursor;
    uint32_t m_current = kEnd;
    uint32_t m_position = 0;
    // Text of the string being read, reused between strings.
    std::u16string m_text;
};

} // namespace kore
