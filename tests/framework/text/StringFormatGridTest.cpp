// Differential tests: the formatter against the C library's snprintf over a grid of fields.
// Each grid format repeats one field for every test value ("%5d\n%5d\n..."), so one formatter
// covers many values and the grid stays fast, also under Wine.

#include "framework/errors/CInvalidArgError.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kore_test {

using namespace kore;

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
    const Count& width;
    const Count& precision;
    char letter;
    char flags[8]; // as written, including a "0" written as the width
    char text[24]; // the whole field as written

    Field(unsigned mask, const Count& w, const Count& p, char l) : width(w), precision(p), letter(l)
    {
        char* f = flags;
        for (unsigned bit = 0; bit < 5; ++bit)
            if (mask & (1u << bit))
                *f++ = "-+ #0"[bit];
        if (w.text[0] == '0')
            *f++ = '0';
        *f = 0;
        std::snprintf(text, sizeof text, "%%%s%s%s%c", flags, w.given ? w.text : "", p.text, l);
    }
    bool has(char flag) const { return std::strchr(flags, flag) != nullptr; }
    // Negative "*" values count as 0.
    int widthValue() const { return width.given ? std::max(width.value, 0) : 0; }
    int precisionValue() const { return std::max(precision.value, 0); }
    // The field for snprintf, with "*" resolved and the flags in `skip` left out.
    void cField(char* out, const char* skip, int cWidth, int cPrecision, const char* length, char conversion) const
    {
        *out++ = '%';
        for (const char* f = flags; *f; ++f)
            if (!std::strchr(skip, *f))
                *out++ = *f;
        if (cWidth > 0)
            out += std::sprintf(out, "%d", cWidth);
        if (precision.given)
            out += std::sprintf(out, ".%d", cPrecision);
        std::sprintf(out, "%s%c", length, conversion);
    }
    void pushCounts(CStringFormat& f) const
    {
        if (std::strchr(width.text, '*'))
            f.pushInt(width.value);
        if (std::strchr(precision.text, '*'))
            f.pushInt(precision.value);
    }
};

constexpr size_t kOut = 1024;

template <class T>
size_t cPrint(char* out, const char* cFormat, T value)
{
    const int n = std::snprintf(out, kOut, cFormat, value);
    EXPECT_TRUE(n >= 0 && n < static_cast<int>(kOut)) << cFormat;
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
                    if (std::strlen(field.flags) <= 5)
                        check(field);
                    else
                        EXPECT_THROW(CStringFormat{field.text}, CInvalidArgError) << field.text;
                }
            }
        }
    }
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
    const bool unsignedLetter = std::strchr("xXo", field.letter) != nullptr;
    const char conversion = unsignedLetter ? field.letter : v.isSigned ? 'd' : 'u';
    const bool signShown = conversion == 'd' && (static_cast<int64_t>(v.bits) < 0 || field.has('+') || field.has(' '));
    const char* prefix = !field.has('#') || !unsignedLetter ? ""
                         : field.letter == 'o'              ? "0"
                         : field.letter == 'x'              ? "0x"
                                                            : "0X";
    const int prefixLength = static_cast<int>(std::strlen(prefix));
    const int width = field.widthValue();
    int precision = field.precisionValue();
    if (field.has('0') && !field.has('-') && field.precision.given)
        precision = std::max(precision, width - prefixLength);
    char cFormat[32];
    field.cField(cFormat, conversion == 'd' ? "#" : "#+ ", width - prefixLength + (signShown ? 1 : 0), precision, "ll",
                 conversion);
    size_t n = conversion == 'd' ? cPrint(out, cFormat, static_cast<long long>(v.bits))
                                 : cPrint(out, cFormat, static_cast<unsigned long long>(v.bits));
    if (prefixLength) {
        size_t at = 0;
        while (!field.has('-') && at < n && out[at] == ' ')
            ++at;
        std::memmove(out + at + prefixLength, out + at, n - at);
        std::memcpy(out + at, prefix, static_cast<size_t>(prefixLength));
        n += static_cast<size_t>(prefixLength);
    }
    return n;
}

// Formats every value with one formatter and compares the result with the expected texts, one a
// line, so that a failure shows the values that differ as a diff.
template <class Value, class Push, class Expect>
void checkRow(const Field& field, const std::vector<Value>& values, const Push& push, const Expect& expect)
{
    std::string format;
    for (size_t i = 0; i < values.size(); ++i)
        (format += field.text) += '\n';
    CStringFormat f(format.c_str());
    std::string expected;
    char out[kOut];
    for (const Value& v : values) {
        field.pushCounts(f);
        push(f, v);
        expected.append(out, expect(field, v, out)) += '\n';
    }
    const P<IString> result = f.getResult();
    const std::u16string_view units(reinterpret_cast<const char16_t*>(result->getBuffer()),
                                    result->getByteLength() / 2);
    if (std::equal(units.begin(), units.end(), expected.begin(), expected.end()))
        return;
    EXPECT_EQ(result->toUTF8(), expected) << field.text;
}

} // namespace

TEST(StringFormatGrid, IntegersMatchTheCLibraryExceptWhereDocumented)
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
}

TEST(StringFormatGrid, FloatingPointMatchesTheCLibrary)
{
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
            [](const Field& fd, double v, char* out) {
                char cFormat[32];
                fd.cField(cFormat, "", fd.widthValue(), fd.precisionValue(), "", fd.letter);
                return cPrint(out, cFormat, v);
            });
    });
}

} // namespace kore_test
