#include "FrameworkTest.h"

#include "framework/errors/CParseError.h"
#include "framework/values/CNumberParser.h"

#include <cmath>

namespace kore_test {

TEST(NumberParser, IntegersInEveryBaseFloatingPointAndFailures)
{
    // clang-format off
    const struct {
        const char* text;
        uint32_t base;
        int64_t value;
    } integers[] = {{"0", 10, 0}, {"-42", 10, -42}, {"+42", 10, 42}, {"007", 10, 7}, {"ff", 16, 255}, {"Ff", 16, 255},
                    {"zz", 36, 35 * 36 + 35}, {"-101", 2, -5}, {"9223372036854775807", 10, INT64_MAX},
                    {"-9223372036854775808", 10, INT64_MIN}};
    const std::pair<const char*, double> reals[] = {{"1.5", 1.5}, {"-2", -2.0}, {"+.5", 0.5}, {"3.", 3.0},
        {"1e3", 1000.0}, {"1.25E-2", 0.0125}, {"0.1", 0.1}, {"4.9406564584124654e-324", 4.9406564584124654e-324},
        {"1.7976931348623157e308", 1.7976931348623157e308}, {"-INF", -HUGE_VAL}, {"Infinity", HUGE_VAL}};
    // clang-format on
    for (const auto& c : integers)
        EXPECT_EQ(CNumberParser::parseInt64(c.text, c.base), c.value) << c.text;
    EXPECT_EQ(CNumberParser::parseInt64(u"123"), 123);
    EXPECT_EQ(CNumberParser::parseUInt64("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(CNumberParser::parseUInt64("ffffffffffffffff", 16), UINT64_MAX);
    EXPECT_EQ(CNumberParser::parseUInt64("+1"), 1u);
    for (const auto& [text, value] : reals)
        EXPECT_EQ(CNumberParser::parseDouble(text), value) << text;
    EXPECT_TRUE(std::signbit(CNumberParser::parseDouble("-0")));
    EXPECT_TRUE(std::isnan(CNumberParser::parseDouble("nan")));
    EXPECT_TRUE(std::isnan(CNumberParser::parseDouble("-nan")));
    // The whole text must be the number: no spaces, prefixes, stray characters, overflow or underflow.
    const auto failure = [](auto parse) { return descriptionOf<CParseError>(parse); };
    for (const char* text : {"", "-", "+", " 1", "1 ", "1x", "12a", "0x10", "--1", "+-1", "1.0", "9223372036854775808",
                             "-9223372036854775809", "\xB2" /* Latin-1 superscript 2 */})
        EXPECT_EQ(failure([&] { CNumberParser::parseInt64(text); }), "Error parsing integer.") << text;
    EXPECT_EQ(failure([] { CNumberParser::parseInt64("19", 8); }), "Error parsing integer.");
    for (const char* text : {"-0", "-1", "18446744073709551616", "99999999999999999999999"})
        EXPECT_EQ(failure([&] { CNumberParser::parseUInt64(text); }), "Error parsing integer.") << text;
    EXPECT_THROW(CNumberParser::parseInt64("1", 1), CInvalidArgError);
    EXPECT_THROW(CNumberParser::parseUInt64("1", 37), CInvalidArgError);
    for (const char* text : {"",          "-",      ".",     "e5",     ".e5",    "1e",      "1e+",
                             " 1",        "1 ",     "1,5",   "0x10",   "1.2.3",  "infinit", "nan(123)",
                             "-nan(123)", "nan(1)", "1e400", "-1e400", "1e-400", "--1",     "1\xE2\x80\xAF"})
        EXPECT_EQ(failure([&] { CNumberParser::parseDouble(CString::fromUTF8(text)); }),
                  "Error parsing floating point value.")
            << text;
}

} // namespace kore_test
