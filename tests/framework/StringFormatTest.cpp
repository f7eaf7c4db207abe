#include "framework/CInvalidArgError.h"
#include "framework/CInvalidObjectStateError.h"
#include "framework/COutOfmemoryException.h"
#include "framework/CString.h"
#include "framework/CStringFormat.h"

#include <gtest/gtest.h>

#include <functional>

namespace kore_test {

using namespace kore;

std::string utf8(const P<IString>& s)
{
    return s->toUTF8();
}

// Runs `pushes` on a formatter for `format` and returns what it throws as a CInvalidArgError.
struct ArgFailure {
    std::string method;
    std::string argument;
    std::string description;
    bool objectHeld = false;
};
ArgFailure argFailure(const char* format, const std::function<void(CStringFormat&)>& pushes)
{
    try {
        CStringFormat f(format);
        pushes(f);
    } catch (const CInvalidArgError& e) {
        return {utf8(e.getMethodName()), utf8(e.getArgumentName()), utf8(e.getDescription()),
                e.getObject() != nullptr};
    }
    ADD_FAILURE() << "no CInvalidArgError for " << format;
    return {};
}

TEST(StringFormat, LiteralTextAndPercentSigns)
{
    EXPECT_EQ(utf8(formatString("100%%")), "100%");
    EXPECT_EQ(utf8(formatString("%%%d%%%%", 5)), "%5%%");
    EXPECT_EQ(utf8(formatString("")), "");
    EXPECT_EQ(utf8(formatString("%s-%s.qorlang", "myapp", u"de-DE")), "myapp-de-DE.qorlang");
    EXPECT_EQ(utf8(formatString("Setting Language: %s", CString::fromUTF8("fr-FR"))),
              "Setting Language: fr-FR");
}

TEST(StringFormat, ListedIntegerCases)
{
    EXPECT_EQ(utf8(formatString("[%-5d]", 7)), "[7    ]");
    EXPECT_EQ(utf8(formatString("%05d", -42)), "-00042");
    EXPECT_EQ(utf8(formatString("[%5d]", -42)), "[   -42]");
    EXPECT_EQ(utf8(formatString("%#x %#o", 255, 8)), "0xff 010");
    EXPECT_EQ(utf8(formatString("%u", -5)), "-5");
    EXPECT_EQ(utf8(formatString("%d", UINT64_MAX)), "18446744073709551615");
    EXPECT_EQ(utf8(formatString("%x", -1)), "ffffffffffffffff");
    EXPECT_EQ(utf8(formatString("%08.3d", 42)), "00000042");
    EXPECT_EQ(utf8(formatString("%#x|%#o|%#.0x", 0, 0, 0)), "0x0|00|0x");
    EXPECT_EQ(utf8(formatString("[%.0d]", 0)), "[]");
}

TEST(StringFormat, WidthAndPrecisionFromArguments)
{
    EXPECT_EQ(utf8(formatString("[%*d]", 4, 7)), "[   7]");
    EXPECT_EQ(utf8(formatString("[%*d]", -4, 7)), "[7]");
    EXPECT_EQ(utf8(formatString("[%.*d]", -1, 0)), "[]");
    EXPECT_EQ(utf8(formatString("[%*.*f]", 8, 2, 3.14159)), "[    3.14]");
    EXPECT_EQ(utf8(formatString("[%-*s]", 4, "ab")), "[ab  ]");
    // A character is taken as an integer while a width is pending.
    EXPECT_EQ(utf8(formatString("[%*c]", U'\x03', U'x')), "[  x]");
    EXPECT_EQ(utf8(formatString("%*d", 2u, 1)), " 1");
}

TEST(StringFormat, LengthModifiersAreIgnored)
{
    EXPECT_EQ(utf8(formatString("%ld %lld %hd %hhd %zu %ju %td %I64d %Lf", 1, 2, 3, 4, 5u, 6u, 7, 8, 0.5)),
              "1 2 3 4 5 6 7 8 0.500000");
}

TEST(StringFormat, FlagsInAnyOrder)
{
    EXPECT_EQ(utf8(formatString("[%0-+5d][%+-05d][% 0d]", 3, 3, 3)), "[+3    ][+3    ][ 3]");
    EXPECT_EQ(utf8(formatString("%+ 08.3e", 1.5)), "+1.500e+00");
    // Five flags, even repeated ones, are fine.
    EXPECT_EQ(utf8(formatString("%-----d", 1)), "1");
}

TEST(StringFormat, StringsCutPadAndKeepCharacters)
{
    EXPECT_EQ(utf8(formatString("%.2s", "abc")), "ab");
    // A cut string is not padded.
    EXPECT_EQ(utf8(formatString("[%10.2s]", "abc")), "[ab]");
    EXPECT_EQ(utf8(formatString("[%5s][%-5s][%05s][%-05s]", "ab", "ab", "ab", "ab")),
              "[   ab][ab   ][000ab][ab000]");
    // Precision and width count characters, not UTF-16 units or bytes.
    const P<IString> smile = make<CUTF32String>(U"\U0001F600x");
    EXPECT_EQ(utf8(formatString("%.1s|%4s", smile, smile)), "\xF0\x9F\x98\x80|  \xF0\x9F\x98\x80x");
    // Lone surrogates are not characters, in the fast path as everywhere.
    const char16_t broken[] = {u'a', 0xD800, u'b', 0xDC00, u'c', 0};
    EXPECT_EQ(utf8(formatString("%.2s|%s", broken, broken)), "ab|abc");
    // A surrogate code point carried by UTF-8 text still takes its place in the field.
    const P<IString> surrogate = CString::fromUTF8("a\xED\xA0\x80");
    EXPECT_EQ(utf8(formatString("%3s|%.1s", surrogate, surrogate)), " a\xEF\xBF\xBD|a");
    const P<IString> none;
    EXPECT_EQ(utf8(formatString("[%s]", none)), "[]");
}

TEST(StringFormat, OutputIsUTF16AndKeepsEveryCharacter)
{
    const P<IString> format = make<CUTF16String>(u"\u00E9 %s \U0001F600 %c");
    P<IString> result = formatString(format, CString::fromUTF8("\xE2\x82\xAC"), U'\U0001F600');
    EXPECT_STREQ(result->getEncoding()->getName(), "UTF-16");
    EXPECT_EQ(utf8(result), "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF0\x9F\x98\x80");
    EXPECT_EQ(result->getLength(), 7u);
}

TEST(StringFormat, Characters)
{
    // Above 127 through the string path: width honoured, zero flag pads with "0".
    EXPECT_EQ(utf8(formatString("[%3c][%-3c][%03c]", u'\u00E9', u'\u00E9', u'\u00E9')),
              "[  \xC3\xA9][\xC3\xA9  ][00\xC3\xA9]");
    // Up to 127 through the C runtime, which pads with spaces only.
    EXPECT_EQ(utf8(formatString("[%3c][%-3c][%03c][%C]", 'a', 'b', 'c', u'd')), "[  a][b  ][  c][d]");
    // An integer field takes a character as its code; a character field takes an integer as one.
    EXPECT_EQ(utf8(formatString("%d %c %c", U'A', 66, 0x20ACu)), "65 B \xE2\x82\xAC");
    // A floating-point field takes integers, unsigned ones by their unsigned value.
    EXPECT_EQ(utf8(formatString("%.0f %.0f", -3, UINT64_MAX)), "-3 18446744073709551616");
}

TEST(StringFormat, ResultTakenTooEarly)
{
    CStringFormat f("%d %d");
    f.pushInt(1);
    try {
        f.getResult();
        FAIL() << "no error";
    } catch (const CInvalidObjectStateError& e) {
        EXPECT_EQ(utf8(e.getState()), "CStringFormat: not all parameters have been pushed in yet.");
        EXPECT_EQ(e.getObject(), nullptr);
    }
    f.pushInt(2);
    EXPECT_EQ(utf8(f.getResult()), "1 2");
    EXPECT_EQ(utf8(f.getResult()), "1 2");

    CStringFormat pendingWidth("%*d");
    pendingWidth.pushInt(3);
    EXPECT_THROW(pendingWidth.getResult(), CInvalidObjectStateError);
}

TEST(StringFormat, ErrorsCarryContextMessageAndFormat)
{
    struct Case {
        const char* format;
        std::function<void(CStringFormat&)> pushes;
        const char* method;
        const char* message;
    };
    const Case cases[] = {
        {"a %q", {}, "goToNextFormatField", "invalid format string in '"},
        {"%I32d", {}, "goToNextFormatField", "invalid format string in '"},
        {"%lhd", {}, "goToNextFormatField", "invalid format string in '"},
        {"50%", {}, "goToNextFormatField", "invalid format string in '"},
        {"%99999999999d", {}, "goToNextFormatField", "invalid format string in '"},
        {"%-+ #0-d", {}, "goToNextFormatField", "too many field flags specified in '"},
        {"%-+ #00q", {}, "goToNextFormatField", "too many field flags specified in '"},
        {"%d %q", [](CStringFormat& f) { f.pushInt(1); }, "goToNextFormatField", "invalid format string in '"},
        {"%s", [](CStringFormat& f) { f.pushInt(1); }, "doInt", "argument does not match the field's format specification for '"},
        {"x", [](CStringFormat& f) { f.pushUInt(1); }, "doInt", "argument does not match the field's format specification for '"},
        {"%*d", [](CStringFormat& f) { f.pushUInt(0x80000000u); }, "doInt", "field width out of range in '"},
        {"%.*d", [](CStringFormat& f) { f.pushInt(INT64_MAX); }, "doInt", "field precision out of range in '"},
        {"%d", [](CStringFormat& f) { f.pushDouble(1); }, "doDouble", "argument does not match the field's format specification for '"},
        {"%*f", [](CStringFormat& f) { f.pushDouble(1); }, "doDouble", "expected integer value (field width) in '"},
        {"%.*f", [](CStringFormat& f) { f.pushDouble(1); }, "doDouble", "expected integer value (field precision) in '"},
        {"%c", [](CStringFormat& f) { f.pushString("a"); }, "doString", "argument does not match the field's format specification for '"},
        {"%*s", [](CStringFormat& f) { f.pushString("a"); }, "doString", "expected integer value (field width) in '"},
        {"%.*s", [](CStringFormat& f) { f.pushString("a"); }, "doString", "expected integer value (field precision) in '"},
        {"%s", [](CStringFormat& f) { f.pushChar('a'); }, "doChar", "argument does not match the field's format specification for '"},
        {"%c", [](CStringFormat& f) { f.pushChar(0xD800); }, "doChar", "invalid character code point in '"},
        {"%c", [](CStringFormat& f) { f.pushInt(-1); }, "doChar", "invalid character code point in '"},
        {"%c", [](CStringFormat& f) { f.pushUInt(0x110000); }, "doChar", "invalid character code point in '"},
    };
    for (const Case& c : cases) {
        const ArgFailure failure = argFailure(c.format, c.pushes ? c.pushes : [](CStringFormat&) {});
        EXPECT_EQ(failure.method, std::string("CStringFormat::") + c.method) << c.format;
        EXPECT_EQ(failure.argument, std::string(c.message) + c.format + "'") << c.format;
        EXPECT_FALSE(failure.objectHeld);
    }
    EXPECT_EQ(argFailure("%q", {}).description,
              "An invalid argument was passed to method 'CStringFormat::goToNextFormatField' of "
              "'class kore::CStringFormat object': invalid format string in '%q'");
}

TEST(StringFormat, StaysConsistentAfterAnError)
{
    // A rejected argument changes nothing.
    CStringFormat f("[%d]");
    EXPECT_THROW(f.pushDouble(1.0), CInvalidArgError);
    EXPECT_THROW(f.pushString("x"), CInvalidArgError);
    f.pushInt(5);
    EXPECT_EQ(utf8(f.getResult()), "[5]");

    // A malformed field stands as a string field; the rest of the format still follows.
    CStringFormat g("%d %q!%d");
    EXPECT_THROW(g.pushInt(1), CInvalidArgError);
    EXPECT_EQ(g.getFieldKind(), CStringFormat::kString);
    EXPECT_THROW(g.getResult(), CInvalidObjectStateError);
    g.pushString("?");
    g.pushInt(2);
    EXPECT_EQ(utf8(g.getResult()), "1 ?!2");

    CStringFormat done("end");
    EXPECT_THROW(done.pushInt(1), CInvalidArgError);
    EXPECT_EQ(utf8(done.getResult()), "end");
}

TEST(StringFormat, HeapFormatterIsAnObject)
{
    P<CStringFormat> f = make<CStringFormat>(u"%s=%g");
    f->pushString(u"pi");
    f->pushDouble(3.25);
    EXPECT_EQ(utf8(f->getResult()), "pi=3.25");
    EXPECT_EQ(f->getRefCount(), 1);
    // Errors describe a formatter as the formatter describes itself.
    EXPECT_EQ(utf8(f->toString()), "class kore::CStringFormat object");
}

TEST(StringFormat, OutputBeyondAStringIsRefusedBeforeAllocating)
{
    CStringFormat wide("%2147483647d");
    EXPECT_THROW(wide.pushInt(1), COutOfmemoryException);
    EXPECT_EQ(wide.getFieldKind(), CStringFormat::kInteger);
    CStringFormat precise("%.2147483647f");
    EXPECT_THROW(precise.pushDouble(1.0), COutOfmemoryException);
    CStringFormat padded("%*s");
    padded.pushInt(INT32_MAX);
    EXPECT_THROW(padded.pushString("x"), COutOfmemoryException);
}

} // namespace kore_test
