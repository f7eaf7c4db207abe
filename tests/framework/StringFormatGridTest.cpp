// Differential tests: the formatter against the C library's snprintf over a grid of fields.
// Each grid format repeats one field for every test value ("%5d|%5d|..."), so one formatter
// covers many values and the grid stays fast, also under Wine.

#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CStringFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

const char kFlagChars[] = "-+ #0";

// A width or precision: not given, literal digits, or "*" with the value pushed for it.
struct Count {
    const char* text;
    int value;
    bool given;
};
const Count kWidths[] = {{"", 0, false}, {"0", 0, false}, {"1", 1, true}, {"5", 5, true},
                         {"20", 20, true}, {"*", 7, true}, {"*", -3, true}};
const Count kPrecisions[] = {{"", 0, false}, {".", 0, true},   {".0", 0, true}, {".1", 1, true},
                             {".5", 5, true}, {".20", 20, true}, {".*", 3, true}, {".*", -2, true}};

struct Field {
    const Count* width;
    const Count* precision;
    char letter;
    char flags[8]; // as written, including a "0" written as the width
    bool left, plus, space, alternate, zero;
    char text[24]; // the whole field as written

    Field(unsigned mask, const Count& w, const Count& p, char l) : width(&w), precision(&p), letter(l)
    {
        char* f = flags;
        for (unsigned bit = 0; bit < 5; ++bit)
            if (mask & (1u << bit))
                *f++ = kFlagChars[bit];
        if (w.text[0] == '0')
            *f++ = '0';
        *f = 0;
        left = std::strchr(flags, '-');
        plus = std::strchr(flags, '+');
        space = std::strchr(flags, ' ');
        alternate = std::strchr(flags, '#');
        zero = std::strchr(flags, '0');
        std::snprintf(text, sizeof text, "%%%s%s%s%c", flags, w.given ? w.text : "", p.text, l);
    }
    size_t flagCount() const { return std::strlen(flags); }
    // Negative "*" values count as 0.
    int widthValue() const { return width->value < 0 ? 0 : width->value; }
    int precisionValue() const { return precision->value < 0 ? 0 : precision->value; }
    // A field for snprintf, with "*" resolved; the flags in `skip` are left out.
    void cSpec(char* out, const char* skip, int cWidth, bool precisionGiven, int cPrecision, const char* length,
               char conversion) const
    {
        *out++ = '%';
        for (const char* f = flags; *f; ++f)
            if (!std::strchr(skip, *f))
                *out++ = *f;
        if (cWidth > 0)
            out += std::sprintf(out, "%d", cWidth);
        if (precisionGiven)
            out += std::sprintf(out, ".%d", cPrecision);
        std::sprintf(out, "%s%c", length, conversion);
    }
    void pushCounts(CStringFormat& f) const
    {
        if (width->text[0] == '*')
            f.pushInt(width->value);
        if (precision->text[0] == '.' && precision->text[1] == '*')
            f.pushInt(precision->value);
    }
};

constexpr size_t kOut = 1024;

template <class T>
size_t cFormat(char* out, const char* spec, T value)
{
    const int n = std::snprintf(out, kOut, spec, value);
    EXPECT_TRUE(n >= 0 && n < static_cast<int>(kOut)) << spec;
    return static_cast<size_t>(n);
}

// Calls `check(field)` for every field of the grid and letter; a literal "0" width is one more
// flag, so six flags in all must be refused.
template <class Check>
void forEachField(const char* letters, const Check& check)
{
    for (const char* letter = letters; *letter; ++letter) {
        for (unsigned mask = 0; mask < 32; ++mask) {
            for (const Count& width : kWidths) {
                for (const Count& precision : kPrecisions) {
                    const Field field(mask, width, precision, *letter);
                    if (field.flagCount() > 5) {
                        try {
                            CStringFormat f(field.text);
                            ADD_FAILURE() << "six flags accepted in " << field.text;
                        } catch (const CInvalidArgError&) {
                        }
                        continue;
                    }
                    check(field);
                }
            }
        }
    }
}

// The parts of a UTF-16 result between "|", as narrow text: all grid output is ASCII.
std::vector<std::string> split(const IString& s)
{
    const auto* units = reinterpret_cast<const char16_t*>(s.getBuffer());
    const size_t count = s.getByteLength() / 2;
    std::vector<std::string> parts(1);
    for (size_t i = 0; i < count; ++i) {
        if (units[i] == u'|')
            parts.emplace_back();
        else
            parts.back() += units[i] < 128 ? static_cast<char>(units[i]) : '?';
    }
    parts.pop_back();
    return parts;
}

struct IntValue {
    uint64_t bits;
    bool isSigned;
};

// Powers of the base and their neighbours, the extremes, and small values; signed and unsigned.
std::vector<IntValue> intValues(unsigned base)
{
    std::vector<IntValue> values;
    for (int64_t v : {int64_t{0}, int64_t{1}, int64_t{-1}, int64_t{42}, int64_t{-42}, INT64_MIN, INT64_MAX})
        values.push_back({static_cast<uint64_t>(v), true});
    for (uint64_t v : {uint64_t{0}, uint64_t{42}, UINT64_MAX, uint64_t{1} << 63})
        values.push_back({v, false});
    std::vector<uint64_t> powers;
    for (uint64_t p = base; p <= UINT64_MAX / base; p *= base)
        powers.push_back(p);
    powers.push_back(powers.back() * base); // the largest power that fits
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
size_t expectInt(const Field& field, IntValue v, char* out)
{
    const bool unsignedLetter = field.letter == 'x' || field.letter == 'X' || field.letter == 'o';
    const char conversion = unsignedLetter ? field.letter : v.isSigned ? 'd' : 'u';
    const bool negative = conversion == 'd' && static_cast<int64_t>(v.bits) < 0;
    const bool signShown = conversion == 'd' && (negative || field.plus || field.space);
    const char* prefix = !field.alternate || !unsignedLetter ? ""
                         : field.letter == 'o'               ? "0"
                         : field.letter == 'x'               ? "0x"
                                                             : "0X";
    const int prefixLength = static_cast<int>(std::strlen(prefix));
    const int width = field.width->given ? field.widthValue() : 0;
    const bool precisionGiven = field.precision->given;
    int precision = field.precisionValue();
    if (field.zero && !field.left && precisionGiven)
        precision = std::max(precision, width - prefixLength);
    char spec[32];
    field.cSpec(spec, conversion == 'd' ? "#" : "#+ ", width - prefixLength + (signShown ? 1 : 0), precisionGiven, precision, "ll", conversion);
    size_t n = conversion == 'd' ? cFormat(out, spec, static_cast<long long>(v.bits))
                                 : cFormat(out, spec, static_cast<unsigned long long>(v.bits));
    if (prefixLength) {
        size_t at = 0;
        while (!field.left && at < n && out[at] == ' ')
            ++at;
        std::memmove(out + at + prefixLength, out + at, n - at);
        std::memcpy(out + at, prefix, static_cast<size_t>(prefixLength));
        n += static_cast<size_t>(prefixLength);
    }
    return n;
}

// Formats every value with one formatter and compares the result with the expected texts joined
// by "|"; reports the first mismatching value.
template <class Value, class Push, class Expect>
void checkRow(const Field& field, const std::vector<Value>& values, const Push& push, const Expect& expect,
              const std::function<std::string(const Value&)>& describe)
{
    std::string format;
    for (size_t i = 0; i < values.size(); ++i)
        (format += field.text) += '|';
    CStringFormat f(format.c_str());
    for (const Value& v : values) {
        field.pushCounts(f);
        push(f, v);
    }
    std::u16string joined;
    char out[kOut];
    for (const Value& v : values) {
        const size_t n = expect(field, v, out);
        joined.append(out, out + n);
        joined += u'|';
    }
    const P<IString> result = f.getResult();
    if (std::u16string_view(reinterpret_cast<const char16_t*>(result->getBuffer()), result->getByteLength() / 2) ==
        joined)
        return;
    const std::vector<std::string> got = split(*result);
    ASSERT_EQ(got.size(), values.size()) << field.text;
    for (size_t i = 0; i < values.size(); ++i) {
        const std::string expected(out, expect(field, values[i], out));
        if (got[i] != expected) {
            ADD_FAILURE() << field.text << " (width " << field.width->value << ", precision "
                          << field.precision->value << ") of " << describe(values[i]) << ": got \""
                          << got[i] << "\", expected \"" << expected << "\"";
            return;
        }
    }
}

} // namespace

TEST(StringFormatGrid, IntegersMatchTheCLibraryExceptWhereDocumented)
{
    const std::vector<IntValue> decimal = intValues(10);
    const std::vector<IntValue> hex = intValues(16);
    const std::vector<IntValue> octal = intValues(8);
    forEachField("diuxXo", [&](const Field& field) {
        const std::vector<IntValue>& values = field.letter == 'o' ? octal : field.letter == 'x' || field.letter == 'X' ? hex : decimal;
        checkRow<IntValue>(
            field, values,
            [](CStringFormat& f, IntValue v) {
                if (v.isSigned)
                    f.pushInt(static_cast<int64_t>(v.bits));
                else
                    f.pushUInt(v.bits);
            },
            expectInt,
            [](const IntValue& v) {
                return v.isSigned ? std::to_string(static_cast<int64_t>(v.bits)) : std::to_string(v.bits) + "u";
            });
    });
}

TEST(StringFormatGrid, FloatingPointMatchesTheCLibrary)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    // Zeros, small and rounding-prone values, the smallest and largest denormals, the largest
    // double (309 digits with "f"), infinities and NaNs of both signs.
    const std::vector<double> values = {0.0,  -0.0,   1.0,      -2.5,   0.5,
                                        1.0 / 3, 123456.789, 9.5e-5, 9.5e22, 4.9e-324,
                                        2.2250738585072009e-308, -DBL_MAX, inf, -inf, nan,
                                        -nan};
    forEachField("eEfgG", [&](const Field& field) {
        checkRow<double>(
            field, values, [](CStringFormat& f, double v) { f.pushDouble(v); },
            [](const Field& fd, double v, char* out) {
                char spec[32];
                fd.cSpec(spec, "", fd.width->given ? fd.widthValue() : 0, fd.precision->given, fd.precisionValue(),
                         "", fd.letter);
                return cFormat(out, spec, v);
            },
            [](const double& v) {
                char out[kOut];
                return std::string(out, cFormat(out, "%.17g", v));
            });
    });
}

} // namespace kore_test
