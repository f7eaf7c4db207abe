// Differential tests: the formatter against the C library's snprintf over a grid of fields.
// Each grid format repeats one field for every test value ("%5d|%5d|..."), so one formatter
// covers many values and the grid stays fast, also under Wine.

#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CStringFormat.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
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
    std::string flags; // as written, including a "0" written as the width
    const Count* width;
    const Count* precision;
    char letter;

    bool has(char flag) const { return flags.find(flag) != std::string::npos; }
    // Negative "*" values count as 0.
    int widthValue() const { return width->value < 0 ? 0 : width->value; }
    int precisionValue() const { return precision->value < 0 ? 0 : precision->value; }
    std::string text() const
    {
        std::string t = "%" + flags;
        if (width->given)
            t += width->text;
        return t + precision->text + letter;
    }
    // The same field for snprintf, with "*" resolved.
    std::string cText(const std::string& cFlags, int cWidth, bool cPrecisionGiven, int cPrecision,
                      const char* length, char conversion) const
    {
        std::string t = "%" + cFlags;
        if (cWidth > 0)
            t += std::to_string(cWidth);
        if (cPrecisionGiven)
            t += "." + std::to_string(cPrecision);
        return t + length + conversion;
    }
    void pushCounts(CStringFormat& f) const
    {
        if (width->text[0] == '*')
            f.pushInt(width->value);
        if (precision->text[0] == '.' && precision->text[1] == '*')
            f.pushInt(precision->value);
    }
};

template <class T>
std::string cFormat(const std::string& spec, T value)
{
    char buffer[1024];
    const int n = std::snprintf(buffer, sizeof buffer, spec.c_str(), value);
    EXPECT_TRUE(n >= 0 && n < static_cast<int>(sizeof buffer)) << spec;
    return std::string(buffer, static_cast<size_t>(n));
}

// Calls `check(field)` for every field of the grid and letter; a literal "0" width is one more
// flag, so six flags in all must be refused.
template <class Check>
void forEachField(const char* letters, const Check& check)
{
    for (const char* letter = letters; *letter; ++letter) {
        for (unsigned mask = 0; mask < 32; ++mask) {
            std::string flags;
            for (unsigned bit = 0; bit < 5; ++bit)
                if (mask & (1u << bit))
                    flags += kFlagChars[bit];
            for (const Count& width : kWidths) {
                for (const Count& precision : kPrecisions) {
                    Field field{flags, &width, &precision, *letter};
                    if (width.text[0] == '0')
                        field.flags += '0';
                    if (field.flags.size() > 5) {
                        try {
                            CStringFormat f(field.text().c_str());
                            ADD_FAILURE() << "six flags accepted in " << field.text();
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

std::vector<std::string> split(const std::string& s)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t bar; (bar = s.find('|', start)) != std::string::npos; start = bar + 1)
        parts.push_back(s.substr(start, bar - start));
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
    for (size_t i : {size_t{0}, size_t{1}, powers.size() / 2, powers.size() - 2, powers.size() - 1}) {
        for (uint64_t v : {powers[i] - 1, powers[i], powers[i] + 1}) {
            values.push_back({v, false});
            if (v <= static_cast<uint64_t>(INT64_MAX)) {
                values.push_back({v, true});
                values.push_back({0 - v, true});
            }
        }
    }
    return values;
}

// The C library's output adjusted for this formatter's documented deviations:
// - the argument's signedness chooses d or u (x, X and o stay), and the sign is not counted
//   against the width;
// - a precision does not cancel zero padding: the digits are widened to the width instead;
// - "#" always writes its prefix ("0x", "0X", "0"), counted in the width, in front of the digits.
// "+", " " and "0" go to the C library; "#" is applied here.
std::string expectInt(const Field& field, IntValue v)
{
    const bool unsignedLetter = field.letter == 'x' || field.letter == 'X' || field.letter == 'o';
    const char conversion = unsignedLetter ? field.letter : v.isSigned ? 'd' : 'u';
    const bool negative = conversion == 'd' && static_cast<int64_t>(v.bits) < 0;
    const bool signShown = conversion == 'd' && (negative || field.has('+') || field.has(' '));
    const std::string prefix = !field.has('#') || !unsignedLetter ? ""
                               : field.letter == 'o'             ? "0"
                               : field.letter == 'x'             ? "0x"
                                                                 : "0X";
    std::string cFlags;
    for (char c : field.flags)
        if (c != '#')
            cFlags += c;
    const int prefixLength = static_cast<int>(prefix.size());
    const int width = field.width->given ? field.widthValue() : 0;
    const int cWidth = width - prefixLength + (signShown ? 1 : 0);
    bool precisionGiven = field.precision->given;
    int precision = field.precisionValue();
    if (field.has('0') && !field.has('-') && precisionGiven)
        precision = std::max(precision, width - prefixLength);
    std::string body = conversion == 'd'
        ? cFormat(field.cText(cFlags, cWidth, precisionGiven, precision, "ll", 'd'), static_cast<long long>(v.bits))
        : cFormat(field.cText(cFlags, cWidth, precisionGiven, precision, "ll", conversion),
                  static_cast<unsigned long long>(v.bits));
    if (!prefix.empty()) {
        const size_t at = field.has('-') ? 0 : body.find_first_not_of(' ');
        body.insert(at == std::string::npos ? body.size() : at, prefix);
    }
    return body;
}

// Formats every value with one formatter and reports the first mismatching value.
template <class Value, class Push, class Expect>
void checkRow(const Field& field, const std::vector<Value>& values, const Push& push, const Expect& expect,
              const std::function<std::string(const Value&)>& describe)
{
    std::string format;
    for (size_t i = 0; i < values.size(); ++i)
        format += field.text() + "|";
    CStringFormat f(format.c_str());
    for (const Value& v : values) {
        field.pushCounts(f);
        push(f, v);
    }
    const std::vector<std::string> got = split(f.getResult()->toUTF8());
    ASSERT_EQ(got.size(), values.size()) << field.text();
    for (size_t i = 0; i < values.size(); ++i) {
        const std::string expected = expect(field, values[i]);
        if (got[i] != expected) {
            ADD_FAILURE() << field.text() << " (width " << field.width->value << ", precision "
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
    const std::vector<double> values = {0.0,      -0.0,     1.0,     -1.0,      0.5,     1.0 / 3,
                                        -2.5,     123456.789, 1e-5,  9.5e22,    4.9e-324, 2.2250738585072009e-308,
                                        DBL_MIN,  DBL_MAX,  -DBL_MAX, 1e300,    inf,     -inf,
                                        nan,      -nan};
    forEachField("eEfgG", [&](const Field& field) {
        checkRow<double>(
            field, values, [](CStringFormat& f, double v) { f.pushDouble(v); },
            [](const Field& fd, double v) {
                return cFormat(fd.cText(fd.flags, fd.width->given ? fd.widthValue() : 0, fd.precision->given,
                                        fd.precisionValue(), "", fd.letter),
                               v);
            },
            [](const double& v) { return cFormat("%.17g", v); });
    });
}

} // namespace kore_test
