// The formatter's own rules; plain integer and floating-point fields are checked against the C
// library in StringFormatGridTest.cpp.

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <gtest/gtest.h>

namespace kore_test {

using namespace kore;

namespace {

std::string utf8(const P<IString>& s)
{
    return s->toUTF8();
}

// What `format` throws, with one push of `kind` ('i', 'u', 'd', 's', 'c' or none) of `value`, as
// "method: message" of its CInvalidArgError; the error's description in `description`.
std::string argFailure(const char* format, char kind = 0, int64_t value = 0, std::string* description = nullptr)
{
    try {
        CStringFormat f(format);
        switch (kind) {
        case 'i': f.pushInt(value); break;
        case 'u': f.pushUInt(static_cast<uint64_t>(value)); break;
        case 'd': f.pushDouble(static_cast<double>(value)); break;
        case 's': f.pushString("a"); break;
        case 'c': f.pushChar(static_cast<uint32_t>(value)); break;
        }
    } catch (const CInvalidArgError& e) {
        EXPECT_EQ(e.getObject(), nullptr);
        if (description)
            *description = utf8(e.getDescription());
        return utf8(e.getMethodName()) + ": " + utf8(e.getArgumentName());
    }
    return "no CInvalidArgError";
}

} // namespace

TEST(StringFormat, LiteralTextPercentSignsAndArguments)
{
    EXPECT_EQ(utf8(formatString("100%%")), "100%");
    EXPECT_EQ(utf8(formatString("%%%d%%%%", 5)), "%5%%");
    EXPECT_EQ(utf8(formatString("")), "");
    EXPECT_EQ(utf8(formatString("%s-%s.qorlang", "myapp", u"de-DE")), "myapp-de-DE.qorlang");
    EXPECT_EQ(utf8(formatString("Setting Language: %s", CString::fromUTF8("fr-FR"))), "Setting Language: fr-FR");
    // Length modifiers are read and ignored.
    EXPECT_EQ(utf8(formatString("%ld %lld %hd %hhd %zu %ju %td %I64d %Lf", 1, 2, 3, 4, 5u, 6u, 7, 8, 0.5)),
              "1 2 3 4 5 6 7 8 0.500000");
    // Flags in any order, even repeated.
    EXPECT_EQ(utf8(formatString("[%0-+5d][%+-05d][% 0d]", 3, 3, 3)), "[+3    ][+3    ][ 3]");
    EXPECT_EQ(utf8(formatString("%+ 08.3e", 1.5)), "+1.500e+00");
    EXPECT_EQ(utf8(formatString("%-----d", 1)), "1");
}

// Where integers differ from C: the sign is not counted against the width, the argument's own
// signedness chooses between d and u, a precision does not cancel zero padding, and "#" always
// writes its prefix.
TEST(StringFormat, IntegerRules)
{
    EXPECT_EQ(utf8(formatString("%05d", -42)), "-00042");
    EXPECT_EQ(utf8(formatString("[%5d]", -42)), "[   -42]");
    EXPECT_EQ(utf8(formatString("%u", -5)), "-5");
    EXPECT_EQ(utf8(formatString("%d", UINT64_MAX)), "18446744073709551615");
    EXPECT_EQ(utf8(formatString("%08.3d", 42)), "00000042");
    EXPECT_EQ(utf8(formatString("%#x|%#o|%#.0x", 0, 0, 0)), "0x0|00|0x");
    // Widths and precisions from arguments: negative ones count as 0, unsigned ones are fine, and
    // a character is taken as an integer while a width is pending.
    EXPECT_EQ(utf8(formatString("[%*d][%*d][%.*d]", 4, 7, -4, 7, -1, 0)), "[   7][7][]");
    EXPECT_EQ(utf8(formatString("[%*c]%*d", U'\x03', U'x', 2u, 1)), "[  x] 1");
    EXPECT_EQ(utf8(formatString("[%-*s]", 4, "ab")), "[ab  ]");
}

TEST(StringFormat, StringsCutPadAndKeepCharacters)
{
    EXPECT_EQ(utf8(formatString("%.2s", "abc")), "ab");
    // A cut string is not padded.
    EXPECT_EQ(utf8(formatString("[%10.2s]", "abc")), "[ab]");
    EXPECT_EQ(utf8(formatString("[%5s][%-5s][%05s][%-05s]", "ab", "ab", "ab", "ab")), "[   ab][ab   ][000ab][ab000]");
    // Precision and width count characters, not UTF-16 units or bytes.
    const P<IString> smile = make<CUTF32String>(U"\U0001F600x");
    EXPECT_EQ(utf8(formatString("%.1s|%4s", smile, smile)), "\xF0\x9F\x98\x80|  \xF0\x9F\x98\x80x");
    // Lone surrogates are not characters, in the fast path as everywhere.
    const char16_t broken[] = {u'a', 0xD800, u'b', 0xDC00, u'c', 0};
    EXPECT_EQ(utf8(formatString("%.2s|%s", broken, broken)), "ab|abc");
    // A surrogate code point carried by UTF-8 text still takes its place in the field.
    const P<IString> surrogate = CString::fromUTF8("a\xED\xA0\x80");
    EXPECT_EQ(utf8(formatString("%3s|%.1s", surrogate, surrogate)), " a\xEF\xBF\xBD|a");
    EXPECT_EQ(utf8(formatString("[%s]", P<IString>())), "[]");
    // The output is UTF-16 and keeps every character.
    P<IString> result = formatString(u"\u00E9 %s \U0001F600 %c", CString::fromUTF8("\xE2\x82\xAC"), U'\U0001F600');
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

// Errors name the operation and quote the whole format; they hold no object but describe the
// formatter as a heap formatter describes itself.
TEST(StringFormat, ErrorsCarryContextMessageAndFormat)
{
    const char* const kBad = "invalid format string in '";
    const char* const kMismatch = "argument does not match the field's format specification for '";
    const char* const kWidth = "expected integer value (field width) in '";
    const char* const kPrecision = "expected integer value (field precision) in '";
    const char* const kCodePoint = "invalid character code point in '";
    const std::string kNext = "goToNextFormatField";
    const struct {
        const char* format;
        char kind;
        int64_t value;
        std::string method, message;
    } cases[] = {
        {"a %q", 0, 0, kNext, kBad},
        {"%I32d", 0, 0, kNext, kBad},
        {"%lhd", 0, 0, kNext, kBad},
        {"50%", 0, 0, kNext, kBad},
        {"%99999999999d", 0, 0, kNext, kBad},
        {"%d %q", 'i', 1, kNext, kBad},
        {"%-+ #0-d", 0, 0, kNext, "too many field flags specified in '"},
        {"%-+ #00q", 0, 0, kNext, "too many field flags specified in '"},
        {"%s", 'i', 1, "doInt", kMismatch},
        {"x", 'u', 1, "doInt", kMismatch},
        {"%*d", 'u', 0x80000000, "doInt", "field width out of range in '"},
        {"%.*d", 'i', INT64_MAX, "doInt", "field precision out of range in '"},
        {"%d", 'd', 1, "doDouble", kMismatch},
        {"%*f", 'd', 1, "doDouble", kWidth},
        {"%.*f", 'd', 1, "doDouble", kPrecision},
        {"%c", 's', 0, "doString", kMismatch},
        {"%*s", 's', 0, "doString", kWidth},
        {"%.*s", 's', 0, "doString", kPrecision},
        {"%s", 'c', 'a', "doChar", kMismatch},
        {"%c", 'c', 0xD800, "doChar", kCodePoint},
        {"%c", 'i', -1, "doChar", kCodePoint},
        {"%c", 'u', 0x110000, "doChar", kCodePoint},
    };
    for (const auto& c : cases)
        EXPECT_EQ(argFailure(c.format, c.kind, c.value),
                  "CStringFormat::" + c.method + ": " + c.message + c.format + "'");
    std::string description;
    argFailure("%q", 0, 0, &description);
    EXPECT_EQ(description, "An invalid argument was passed to method 'CStringFormat::goToNextFormatField' of "
                           "'class kore::CStringFormat object': invalid format string in '%q'");
    EXPECT_EQ(utf8(make<CStringFormat>(u"%s")->toString()), "class kore::CStringFormat object");
}

// The result is refused until every field is filled; a rejected argument changes nothing, and a
// malformed field stands as a string field while the rest of the format still follows.
TEST(StringFormat, ResultOnlyWhenCompleteAndConsistentAfterAnError)
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
    EXPECT_THROW(f.pushDouble(1.0), CInvalidArgError);
    EXPECT_THROW(f.pushString("x"), CInvalidArgError);
    f.pushInt(2);
    EXPECT_EQ(utf8(f.getResult()), "1 2");
    EXPECT_EQ(utf8(f.getResult()), "1 2");
    CStringFormat pendingWidth("%*d");
    pendingWidth.pushInt(3);
    EXPECT_THROW(pendingWidth.getResult(), CInvalidObjectStateError);
    CStringFormat g("%d %q!%d");
    EXPECT_THROW(g.pushInt(1), CInvalidArgError);
    EXPECT_EQ(g.getFieldKind(), CStringFormat::kString);
    EXPECT_THROW(g.getResult(), CInvalidObjectStateError);
    g.pushString("?");
    g.pushInt(2);
    EXPECT_EQ(utf8(g.getResult()), "1 ?!2");
    // A width out of range goes with its field's error instead of padding to 2^31.
    CStringFormat h("%d%99999999999s|");
    EXPECT_THROW(h.pushInt(1), CInvalidArgError);
    h.pushString("x");
    EXPECT_EQ(utf8(h.getResult()), "1x|");
    CStringFormat done("end");
    EXPECT_THROW(done.pushInt(1), CInvalidArgError);
    EXPECT_EQ(utf8(done.getResult()), "end");
}

// Widths and precisions stop at kMaxCount: one more is refused before anything is allocated,
// whether written in the format or pushed for a "*" (2^31 used to ask for gigabytes).
TEST(StringFormat, WidthsAndPrecisionsAreBounded)
{
    const int64_t max = CStringFormat::kMaxCount;
    const std::string over = std::to_string(max + 1);
    const std::string bad = "goToNextFormatField: invalid format string in '";
    for (const std::string& field :
         {"%" + over + "d", "%." + over + "f", "%" + over + "s", std::string("%.2147483647f")})
        EXPECT_EQ(argFailure(field.c_str()), "CStringFormat::" + bad + field + "'") << field;
    for (const auto& [format, value, message] : {std::tuple{"%*s", max + 1, "field width"},
                                                 {"%.*s", max + 1, "field precision"},
                                                 {"%*d", int64_t(INT32_MAX), "field width"},
                                                 {"%.*f", int64_t(0x7FFFFFF0), "field precision"}})
        EXPECT_EQ(argFailure(format, 'i', value),
                  std::string("CStringFormat::doInt: ") + message + " out of range in '" + format + "'");
    // The limit itself is allowed, written or pushed.
    EXPECT_EQ(formatString(("%" + std::to_string(max) + "d").c_str(), 7)->getLength(), uint32_t(max));
    EXPECT_EQ(formatString("%-*s|", max, "x")->getLength(), uint32_t(max + 1));
    EXPECT_EQ(formatString("%.*d", max, 1)->getLength(), uint32_t(max));
}

} // namespace kore_test
