#pragma once
// Writes a tree of variants as JSON text. Objects are CVariantMap (members in the map's key
// order), arrays CVariantArray, scalars a string (IString), CInt ("%d"), CInt64 ("%d" as a signed
// 64-bit value), CBool, CDouble ("%g": six significant digits, so the text may lack a decimal
// point) and CNull; a null pointer prints as null too. The class is tested in that order.
//
// Compact output has no whitespace at all; pretty output puts every member and element on a line
// of its own, indented by one tab per level, and writes an empty object as "{", two line feeds
// and "}". Strings escape only the reverse solidus, the double quote, backspace, form feed, line
// feed, carriage return and tab; every other character, control characters included, is written
// as it is, so text holding other control characters does not read back as JSON.
//
// A printer belongs to one thread at a time.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/IString.h"

#include <string>

namespace kore {

class CJsonPrinter : public CObject {
public:
    // A `lossless` printer writes text that always reads back as the same tree, for files: control
    // characters as "\u" escapes, floating-point numbers as CDouble::toExactString gives them
    // instead of with "%g", and it refuses infinities and NaN, which JSON cannot hold
    // (CInvalidArgError).
    explicit CJsonPrinter(bool pretty = false, bool lossless = false) : m_pretty(pretty), m_lossless(lossless) {}

    bool isPretty() const noexcept { return m_pretty; }

    // The text of `value` as a new UTF-16 string. Throws CInvalidArgError for an object that is
    // no variant and for maps and arrays nested deeper than CJsonParser::kMaxDepth (the tree is
    // then not printed at all).
    P<IString> print(const IBase* value);
    // The same, appended to `out`.
    void print(const IBase* value, std::u16string& out);

    // `text` with the JSON escapes applied, appended to `out` (no quotes); with `allControls`
    // the other control characters too, as "\u" escapes.
    static void appendEscaped(const IString& text, std::u16string& out, bool allControls = false);

private:
    void printValue(const IBase* value, std::u16string& out);
    // Everything but maps and arrays. Kept out of printValue so that the frame of the recursion
    // stays small: deep trees must not exhaust a thread's stack.
    [[gnu::noinline]] void printScalar(const IBase& scalar, std::u16string& out);
    template <class Container, class PrintItems>
    void printContainer(char16_t open, char16_t close, const Container& container, const PrintItems& printItems,
                        std::u16string& out);
    // "," and, when pretty, a line feed, before every item but the first; then the indent.
    void beginItem(bool first, std::u16string& out) const;

    const bool m_pretty;
    const bool m_lossless;
    // One tab per level of nesting.
    std::u16string m_indent;
};

} // namespace kore
