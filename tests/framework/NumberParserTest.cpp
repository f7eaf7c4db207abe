#include "framework/CInvalidArgError.h"
#include "framework/CNumberParser.h"
#include "framework/CParseError.h"
#include "framework/CString.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kore_test {

using namespace kore;

std::string parseFailure(const std::function<void()>& parse)
{
    try {
        parse();
    } catch (const CParseError& e) {
        return e.getDescription()->toUTF8();
    }
    return "no CParseError";
}

TEST(NumberParser, IntegersInEveryBase)
{
    EXPECT_EQ(CNumberParser::parseInt64("0"), 0);
    EXPECT_EQ(CNumberParser::parseInt64("-42"), -42);
    EXPECT_EQ(CNumberParser::parseInt64("+42"), 42);
    EXPECT_EQ(CNumberParser::parseInt64("007"), 7);
    EXPECT_EQ(CNumberParser::parseInt64("ff", 16), 255);
    EXPECT_EQ(CNumberParser::parseInt64("Ff", 16), 255);
    EXPECT_EQ(CNumberParser::parseInt64("zz", 36), 35 * 36 + 35);
    EXPECT_EQ(CNumberParser::parseInt64("-101", 2), -5);
    EXPECT_EQ(CNumberParser::parseInt64(u"123"), 123);
    EXPECT_EQ(CNumberParser::parseInt64("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(CNumberParser::parseInt64("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(CNumberParser::parseUInt64("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(CNumberParser::parseUInt64("ffffffffffffffff", 16), UINT64_MAX);
    EXPECT_EQ(CNumberParser::parseUInt64("+1"), 1u);
}

TEST(NumberParser, IntegerFailures)
{
    const char* bad[] = {"", "-", "+", " 1", "1 ", "1x", "12a", "0x10", "--1", "+-1", "1.0",
                         "9223372036854775808", "-9223372036854775809", "\xB2" /* Latin-1 superscript 2 */};
    for (const char* text : bad)
        EXPECT_EQ(parseFailure([&] { CNumberParser::parseInt64(text); }), "Error parsing integer.") << text;
    EXPECT_EQ(parseFailure([] { CNumberParser::parseInt64("19", 8); }), "Error parsing integer.");
    for (const char* text : {"-0", "-1", "18446744073709551616", "99999999999999999999999"})
        EXPECT_EQ(parseFailure([&] { CNumberParser::parseUInt64(text); }), "Error parsing integer.") << text;
    EXPECT_THROW(CNumberParser::parseInt64("1", 1), CInvalidArgError);
    EXPECT_THROW(CNumberParser::parseUInt64("1", 37), CInvalidArgError);
}

TEST(NumberParser, FloatingPoint)
{
    EXPECT_EQ(CNumberParser::parseDouble("1.5"), 1.5);
    EXPECT_EQ(CNumberParser::parseDouble("-2"), -2.0);
    EXPECT_EQ(CNumberParser::parseDouble("+.5"), 0.5);
    EXPECT_EQ(CNumberParser::parseDouble("3."), 3.0);
    EXPECT_EQ(CNumberParser::parseDouble("1e3"), 1000.0);
    EXPECT_EQ(CNumberParser::parseDouble("1.25E-2"), 0.0125);
    EXPECT_EQ(CNumberParser::parseDouble("0.1"), 0.1);
    EXPECT_EQ(CNumberParser::parseDouble("4.9406564584124654e-324"), 4.9406564584124654e-324);
    EXPECT_EQ(CNumberParser::parseDouble("1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_TRUE(std::signbit(CNumberParser::parseDouble("-0")));
    EXPECT_EQ(CNumberParser::parseDouble("-INF"), -HUGE_VAL);
    EXPECT_EQ(CNumberParser::parseDouble("Infinity"), HUGE_VAL);
    EXPECT_TRUE(std::isnan(CNumberParser::parseDouble("nan")));
    EXPECT_TRUE(std::isnan(CNumberParser::parseDouble("-nan")));
}

TEST(NumberParser, FloatingPointFailures)
{
    const char* bad[] = {"", "-", ".", "e5", ".e5", "1e", "1e+", " 1", "1 ", "1,5", "0x10", "1.2.3",
                         "infinit", "nan(1)", "1e400", "-1e400", "1e-400", "--1"};
    for (const char* text : bad)
        EXPECT_EQ(parseFailure([&] { CNumberParser::parseDouble(text); }), "Error parsing floating point value.")
            << text;
    EXPECT_EQ(parseFailure([] { CNumberParser::parseDouble(CString::fromUTF8("1\xE2\x80\xAF")); }),
              "Error parsing floating point value.");
}

} // namespace kore_test
