// The formatter: plain integer and floating-point fields against the C library over a grid of
// fields, and its own rules. Each grid format repeats one field for every test value
// ("%5d\n%5d\n..."), so one formatter covers many values and the grid stays fast, also under Wine.

#include "FrameworkTest.h"

#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/text/CStringFormat.h"

#include <algorithm>
#include <cfloat>
#include <cstdio>
#include <cstring>
#include <limits>

namespace kore_test {
namespace {

// A width or precision: not given, literal digits, or "*" with the value pushed for it.
struct Count {
    const char* text;
    int value;
    bool given;
};
const Count kWidths[] = {{"", 0, false},   {"0", 0, false}, {"1", 1, true}, {"5", 5, true},
                         {"20", 20, true}, {"*", 7, true},  {"*", -3, true}};
const Count kPrecisions[] = {{"", 0, false},  {".", 0, true},    {".0", 0, true}, {".1", 1, true},
                             {".5", 5, true}, {".20", 20, true}, {".*", 3, true}, {".*", -2, true}};

struct Field {
    const Count &width, &precision;
    char letter;
    std::string flags, text; // flags as written, including a "0" written as the width; the whole field

    bool has(char flag) const { return flags.find(flag) != std::string::npos; }
    int widthValue() const { return width.given ? std::max(width.value, 0) : 0; } // negative "*" counts as 0
    // The field for snprintf, with "*" resolved and the flags in `skip` left out.
    std::string cField(const char* skip, int cWidth, int cPrecision, const std::string& conversion) const
    {
        std::string out = "%";
        for (char f : flags)
            if (!std::strchr(skip, f))
                out += f;
        if (cWidth > 0)
            out += std::to_string(cWidth);
        return out + (precision.given ? "." + std::to_string(std::max(cPrecision, 0)) : "") + conversion;
    }
};

const auto utf8 = [](const P<IString>& s) { return s->toUTF8(); };

template <class T>
std::string cPrint(const std::string& cFormat, T value)
{
    char out[1024];
    const int n = std::snprintf(out, sizeof out, cFormat.c_str(), value);
    EXPECT_TRUE(n >= 0 && n < static_cast<int>(sizeof out)) << cFormat;
    return std::string(out, static_cast<size_t>(std::clamp(n, 0, static_cast<int>(sizeof out) - 1)));
}

// Formats every value of `values` with one formatter, in a format that repeats the field for each,
// and compares the result with the texts `expect` gives, one a line, so that a failure shows the
// values that differ as a diff.
template <class Value, class Push, class Expect>
void checkRow(const Field& field, const std::vector<Value>& values, const Push& push, const Expect& expect)
{
    std::string format, expected;
    for (size_t i = 0; i < values.size(); ++i)
        (format += field.text) += '\n';
    CStringFormat f(format.c_str());
    for (const Value& v : values) {
        if (std::strchr(field.width.text, '*'))
            f.pushInt(field.width.value);
        if (std::strchr(field.precision.text, '*'))
            f.pushInt(field.precision.value);
        push(f, v);
        expected += expect(field, v) + '\n';
    }
    EXPECT_EQ(utf8(f.getResult()), expected) << field.text;
}

// Calls `check(field)` for every field of the grid and letter; a literal "0" width is one more
// flag, so six flags in all must be refused.
template <class Check>
void forEachField(const char* letters, const Check& check)
{
    for (const char* letter = letters; *letter; ++letter)
        for (unsigned mask = 0; mask < 32; ++mask)
            for (const Count& width : kWidths)
                for (const Count& precision : kPrecisions) {
                    std::string flags;
                    for (unsigned bit = 0; bit < 5; ++bit)
                        if (mask & (1u << bit))
                            flags += "-+ #0"[bit];
                    if (width.text[0] == '0')
                        flags += '0';
                    const Field field{width, precision, *letter, flags,
                                      "%" + flags + (width.given ? width.text : "") + precision.text + *letter};
                    if (flags.size() <= 5)
                        check(field);
                    else
                        EXPECT_THROW(CStringFormat{field.text.c_str()}, CInvalidArgError) << field.text;
                }
}

struct IntValue {
    uint64_t bits;
    bool isSigned;
};

// Powers of the base and their neighbours, the extremes, and small values; signed and unsigned.
std::vector<IntValue> intValues(uint64_t base)
{
    std::vector<IntValue> values = {{0, true},
                                    {1, true},
                                    {0 - uint64_t{1}, true},
                                    {42, true},
                                    {0 - uint64_t{42}, true},
                                    {uint64_t{1} << 63, true},
                                    {INT64_MAX, true},
                                    {0, false},
                                    {42, false},
                                    {UINT64_MAX, false},
                                    {uint64_t{1} << 63, false}};
    std::vector<uint64_t> powers = {base};
    while (powers.back() <= UINT64_MAX / base)
        powers.push_back(powers.back() * base); // up to the largest power that fits
    for (size_t i : {size_t{0}, powers.size() / 2, powers.size() - 1}) {
        for (uint64_t v : {powers[i] - 1, powers[i], powers[i] + 1}) {
            values.push_back({v, false});
            if (v <= static_cast<uint64_t>(INT64_MAX))
                values.push_back({v, true});
            if (i < powers.size() - 1)
                values.push_back({0 - v, true});
        }
    }
    return values;
}

// The C library's output adjusted for this formatter's documented deviations:
// - the argument's signedness chooses d or u (x, X and o stay), and the sign is not counted
//   against the width;
// - a precision does not cancel zero padding: the digits are widened to the width instead;
// - "#" always writes its prefix ("0x", "0X", "0"), counted in the width, in front of the digits.
// "0" goes to the C library, "+" and " " only for d (some runtimes wrongly apply " " to u);
// "#" is applied here.
std::string expectInt(const Field& field, IntValue v)
{
    const bool unsignedLetter = std::strchr("xXo", field.letter) != nullptr;
    const char conversion = unsignedLetter ? field.letter : v.isSigned ? 'd' : 'u';
    const bool signShown = conversion == 'd' && (static_cast<int64_t>(v.bits) < 0 || field.has('+') || field.has(' '));
    const std::string prefix = !field.has('#') || !unsignedLetter ? ""
                               : field.letter == 'o'              ? "0"
                               : field.letter == 'x'              ? "0x"
                                                                  : "0X";
    const int width = field.widthValue() - static_cast<int>(prefix.size());
    int precision = std::max(field.precision.value, 0);
    if (field.has('0') && !field.has('-') && field.precision.given)
        precision = std::max(precision, width);
    const std::string cFormat =
        field.cField(conversion == 'd' ? "#" : "#+ ", width + signShown, precision, std::string("ll") + conversion);
    std::string out = conversion == 'd' ? cPrint(cFormat, static_cast<long long>(v.bits))
                                        : cPrint(cFormat, static_cast<unsigned long long>(v.bits));
    return out.insert(field.has('-') ? 0 : std::min(out.find_first_not_of(' '), out.size()), prefix);
}

// What `format` throws, with one push of `kind` ('i', 'u', 'd', 's', 'c' or none) of `value`, as
// "method: message" of its CInvalidArgError.
std::string argFailure(const char* format, char kind = 0, int64_t value = 0)
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
        return utf8(e.getMethodName()) + ": " + utf8(e.getArgumentName());
    }
    return "no CInvalidArgError";
}

} // namespace

TEST(StringFormatGrid, NumbersMatchTheCLibraryExceptWhereDocumented)
{
    const std::vector<IntValue> decimal = intValues(10), hex = intValues(16), octal = intValues(8);
    forEachField("diuxXo", [&](const Field& field) {
        checkRow(
            field,
            field.letter == 'o'               ? octal
            : std::strchr("xX", field.letter) ? hex
                                              : decimal,
            [](CStringFormat& f, IntValue v) {
                v.isSigned ? f.pushInt(static_cast<int64_t>(v.bits)) : f.pushUInt(v.bits);
            },
            expectInt);
    });
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    // Zeros, small and rounding-prone values, the smallest and largest denormals, the largest
    // double (309 digits with "f"), infinities and NaNs of both signs.
    const std::vector<double> values = {
        0.0,      -0.0, 1.0,  -2.5, 0.5, 1.0 / 3, 123456.789, 9.5e-5, 9.5e22, 4.9e-324, 2.2250738585072009e-308,
        -DBL_MAX, inf,  -inf, nan,  -nan};
    forEachField("eEfgG", [&](const Field& field) {
        checkRow(
            field, values, [](CStringFormat& f, double v) { f.pushDouble(v); },
            [](const Field& fd, double v) {
                return cPrint(fd.cField("", fd.widthValue(), fd.precision.value, std::string(1, fd.letter)), v);
            });
    });
}

TEST(StringFormat, LiteralTextArgumentsStringsAndCharacters)
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
    EXPECT_EQ(utf8(formatString("%-----d", 1)), "1");
    // Where integers differ from C (the sign is not counted against the width, the argument's own
    // signedness chooses between d and u, a precision does not cancel zero padding, "#" always
    // writes its prefix, negative widths and precisions count as 0) the grid above checks. Unsigned
    // widths are fine, and a character is taken as an integer while a width is pending.
    EXPECT_EQ(utf8(formatString("[%*c]%*d[%-*s]", U'\x03', U'x', 2u, 1, 4, "ab")), "[  x] 1[ab  ]");
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
    // Above 127 through the string path: width honoured, zero flag pads with "0".
    EXPECT_EQ(utf8(formatString("[%3c][%-3c][%03c]", u'\u00E9', u'\u00E9', u'\u00E9')),
              "[  \xC3\xA9][\xC3\xA9  ][00\xC3\xA9]");
    // Up to 127 through the C runtime, which pads with spaces only.
    EXPECT_EQ(utf8(formatString("[%3c][%-3c][%03c][%C]", 'a', 'b', 'c', u'd')), "[  a][b  ][  c][d]");
    // An integer field takes a character as its code; a character field takes an integer as one.
    EXPECT_EQ(utf8(formatString("%d %c %c", U'A', 66, 0x20ACu)), "65 B \xE2\x82\xAC");
    // Every character type is a character; plain char reads as Latin-1, not as a negative number.
    EXPECT_EQ(utf8(formatString("%c%c%c", '\xE9', u'\u00E9', U'\u00E9')), "\xC3\xA9\xC3\xA9\xC3\xA9");
    // ... and so none fills a floating-point field, as an integer would.
    for (const auto& push : {+[] { formatString("%f", 'A'); }, +[] { formatString("%f", u'A'); },
                             +[] { formatString("%f", U'A'); }, +[] { formatString("%f", L'A'); }})
        EXPECT_THROW(push(), CInvalidArgError);
    // A floating-point field takes integers, unsigned ones by their unsigned value.
    EXPECT_EQ(utf8(formatString("%.0f %.0f", -3, UINT64_MAX)), "-3 18446744073709551616");
}

// Errors name the operation and quote the whole format; they hold no object but describe the
// formatter as a heap formatter describes itself.
TEST(StringFormat, ErrorsCarryContextMessageAndFormatAndCountsAreBounded)
{
    const char* const kBad = "invalid format string in '";
    const char* const kMismatch = "argument does not match the field's format specification for '";
    const char* const kWidth = "expected integer value (field width) in '";
    const char* const kPrecision = "expected integer value (field precision) in '";
    const char* const kCodePoint = "invalid character code point in '";
    const char* const kFlags = "too many field flags specified in '";
    const std::string kNext = "goToNextFormatField";
    const int64_t max = CStringFormat::kMaxCount;
    // Widths and precisions stop at kMaxCount: one more is refused before anything is allocated,
    // whether written in the format or pushed for a "*" (2^31 used to ask for gigabytes).
    const std::string over = std::to_string(max + 1), overD = "%" + over + "d", overF = "%." + over + "f",
                      overS = "%" + over + "s", kW = "field width out of range in '",
                      kP = "field precision out of range in '";
    // clang-format off
    const struct {
        std::string format;
        char kind;
        int64_t value;
        std::string method, message;
    } cases[] = {
        {"a %q", 0, 0, kNext, kBad}, {"%I32d", 0, 0, kNext, kBad}, {"%lhd", 0, 0, kNext, kBad}, {"50%", 0, 0, kNext, kBad},
        {"%99999999999d", 0, 0, kNext, kBad}, {"%d %q", 'i', 1, kNext, kBad}, {overD, 0, 0, kNext, kBad},
        {overF, 0, 0, kNext, kBad}, {overS, 0, 0, kNext, kBad}, {"%.2147483647f", 0, 0, kNext, kBad},
        {"%-+ #0-d", 0, 0, kNext, kFlags}, {"%-+ #00q", 0, 0, kNext, kFlags}, {"%s", 'i', 1, "doInt", kMismatch},
        {"x", 'u', 1, "doInt", kMismatch}, {"%*d", 'u', 0x80000000, "doInt", kW}, {"%*s", 'i', max + 1, "doInt", kW},
        {"%*d", 'i', INT32_MAX, "doInt", kW}, {"%.*d", 'i', INT64_MAX, "doInt", kP}, {"%.*s", 'i', max + 1, "doInt", kP},
        {"%.*f", 'i', 0x7FFFFFF0, "doInt", kP}, {"%d", 'd', 1, "doDouble", kMismatch}, {"%*f", 'd', 1, "doDouble", kWidth},
        {"%.*f", 'd', 1, "doDouble", kPrecision}, {"%c", 's', 0, "doString", kMismatch}, {"%*s", 's', 0, "doString", kWidth},
        {"%.*s", 's', 0, "doString", kPrecision}, {"%s", 'c', 'a', "doChar", kMismatch},
        {"%c", 'c', 0xD800, "doChar", kCodePoint}, {"%c", 'i', -1, "doChar", kCodePoint},
        {"%c", 'u', 0x110000, "doChar", kCodePoint}};
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(argFailure(c.format.c_str(), c.kind, c.value),
                  "CStringFormat::" + c.method + ": " + c.message + c.format + "'");
    EXPECT_EQ(descriptionOf<CInvalidArgError>([] { CStringFormat("%q"); }),
              "An invalid argument was passed to method 'CStringFormat::goToNextFormatField' of "
              "'class kore::CStringFormat object': invalid format string in '%q'");
    EXPECT_EQ(utf8(make<CStringFormat>(u"%s")->toString()), "class kore::CStringFormat object");
    // The limit itself is allowed, written or pushed.
    EXPECT_EQ(formatString(("%" + std::to_string(max) + "d").c_str(), 7)->getLength(), uint32_t(max));
    EXPECT_EQ(formatString("%-*s|", max, "x")->getLength(), uint32_t(max + 1));
    EXPECT_EQ(formatString("%.*d", max, 1)->getLength(), uint32_t(max));

    // The result is refused until every field is filled; a rejected argument changes nothing, and a
    // malformed field stands as a string field while the rest of the format still follows.
    CStringFormat f("%d %d");
    f.pushInt(1);
    expectThrown<CInvalidObjectStateError>([&] { f.getResult(); },
                                           [](const CInvalidObjectStateError& e) {
                                               EXPECT_EQ(utf8(e.getState()),
                                                         "CStringFormat: not all parameters have been pushed in yet.");
                                               EXPECT_EQ(e.getObject(), nullptr);
                                           });
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

} // namespace kore_test
