#include "framework/values/CJsonPrinter.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/objects/Cast.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CString.h"
#include "framework/text/UTF8Decoding.h"
#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CNull.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <cmath>

namespace kore {

namespace {

void appendText(const P<IString>& text, std::u16string& out)
{
    out += text->toU16();
}

} // namespace

P<IString> CJsonPrinter::print(const IBase* value)
{
    std::u16string out;
    print(value, out);
    return CString::fromUTF16(out);
}

void CJsonPrinter::print(const IBase* value, std::u16string& out)
{
    const size_t start = out.size();
    m_indent.clear();
    try {
        printValue(value, out);
    } catch (...) {
        out.resize(start);
        throw;
    }
}

void CJsonPrinter::appendEscaped(const IString& text, std::u16string& out, bool allControls)
{
    static const char16_t hexDigits[] = u"0123456789abcdef";
    CCharCursor cursor(text);
    for (uint32_t cp = 0; cursor.next(cp);) {
        switch (cp) {
        case '\\': out += u"\\\\"; break;
        case '"': out += u"\\\""; break;
        case '\b': out += u"\\b"; break;
        case '\f': out += u"\\f"; break;
        case '\n': out += u"\\n"; break;
        case '\r': out += u"\\r"; break;
        case '\t': out += u"\\t"; break;
        default:
            if (allControls && cp < 0x20) {
                out += u"\\u00";
                out.push_back(hexDigits[cp >> 4]);
                out.push_back(hexDigits[cp & 15]);
            } else {
                appendUTF16(cp, out);
            }
            break;
        }
    }
}

void CJsonPrinter::beginItem(bool first, std::u16string& out) const
{
    if (!first) {
        out.push_back(u',');
        if (m_pretty)
            out.push_back(u'\n');
    }
    if (m_pretty)
        out += m_indent;
}

template <class Container, class PrintItems>
void CJsonPrinter::printContainer(char16_t open, char16_t close, const Container& container,
                                  const PrintItems& printItems, std::u16string& out)
{
    // Trees are built in code too, and a deeper one (or one that holds itself) would recurse
    // until the stack ends: print no deeper than the parser reads.
    if (m_indent.size() >= CJsonParser::kMaxDepth)
        throw CInvalidArgError(&container, "CJsonPrinter::print", "value (nested deeper than the JSON depth limit)");
    out.push_back(open);
    if (m_pretty)
        out.push_back(u'\n');
    m_indent.push_back(u'\t');
    printItems(container);
    m_indent.pop_back();
    if (m_pretty) {
        out.push_back(u'\n');
        out += m_indent;
    }
    out.push_back(close);
}

void CJsonPrinter::printValue(const IBase* value, std::u16string& out)
{
    if (!value) {
        out += u"null";
    } else if (const auto* map = tryCast<CVariantMap>(value)) {
        printContainer(
            u'{', u'}', *map,
            [&](const CVariantMap& m) {
                bool first = true;
                m.forEach([&](const IString& key, const IBase& member) {
                    beginItem(first, out);
                    first = false;
                    out.push_back(u'"');
                    appendEscaped(key, out, m_lossless);
                    out += m_pretty ? u"\": " : u"\":";
                    printValue(&member, out);
                });
            },
            out);
    } else if (const auto* array = tryCast<CVariantArray>(value)) {
        printContainer(
            u'[', u']', *array,
            [&](const CVariantArray& a) {
                for (uint32_t i = 0; i < a.getCount(); ++i) {
                    beginItem(i == 0, out);
                    printValue(a.get(i).get(), out);
                }
            },
            out);
    } else {
        printScalar(*value, out);
    }
}

void CJsonPrinter::printScalar(const IBase& scalar, std::u16string& out)
{
    const IBase* value = &scalar;
    if (const auto* text = tryCast<IString>(value)) {
        out.push_back(u'"');
        appendEscaped(*text, out, m_lossless);
        out.push_back(u'"');
    } else if (const auto* i32 = tryCast<CInt>(value)) {
        appendText(i32->toString(), out);
    } else if (const auto* i64 = tryCast<CInt64>(value)) {
        appendText(i64->toString(), out);
    } else if (const auto* flag = tryCast<CBool>(value)) {
        out += flag->getValue() ? u"true" : u"false";
    } else if (const auto* real = tryCast<CDouble>(value)) {
        if (!m_lossless) {
            appendText(real->toString(), out);
        } else {
            if (!std::isfinite(real->getValue()))
                throw CInvalidArgError(value, "CJsonPrinter::print", "value (not a finite number)");
            appendText(real->toExactString(), out);
        }
    } else if (tryCast<CNull>(value)) {
        out += u"null";
    } else {
        throw CInvalidArgError(value, "CJsonPrinter::print", "value (not a JSON variant)");
    }
}

} // namespace kore
