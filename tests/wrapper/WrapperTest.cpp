// The C++ layer qor_lang2.hpp compiled as C++17, the oldest standard it supports, with its
// header-only parts: placeholders and UTF conversions. What it asks of the library is checked
// against the real one (WrapperExportsTest); only these inline parts are used here, so no library
// is linked.
#include "qor_lang2.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Format, PlacesArgumentsByNumberAndLeavesWhatItCannotFillAsWritten)
{
    const std::pair<const char*, const char*> rows[] = {
        {"{0} of {1}", "7 of Ünal"},
        {"{1} von {0}, {0}!", "Ünal von 7, 7!"},
        {"{2}{3}{4}", "-1.5ab"},
        {"{{0}} {{ }} {{{0}}}", "{0} { } {7}"},
        {"{5} {x} {-1} {} { 0} {0 } {0:d}", "{5} {x} {-1} {} { 0} {0 } {0:d}"},
        {"{ } { }} }{ } {", "{ } { } }{ } {"},
        {"{00}{01}", "7Ünal"},
        {"{99999999999999999999}", "{99999999999999999999}"},
        {"{0", "{0"},
        {"", ""},
        {"no placeholders", "no placeholders"}};
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(qor_lang2::format(text, 7, "Ünal", -1.5, 'a', std::string("b")), expected) << text;
        EXPECT_EQ(qor_lang2::format(qor_lang2::toUtf16(text), 7, u"Ünal", -1.5, 'a', std::string("b")),
                  qor_lang2::toUtf16(expected))
            << text;
    }
    EXPECT_EQ(qor_lang2::format("{0}", u"Привіт 🌍"), "Привіт 🌍") << "text arguments of the other kind convert";
    EXPECT_EQ(qor_lang2::format(u"{0}", "€"), u"€");
    EXPECT_EQ(qor_lang2::format("{0} {1}", 1234567.0, 18446744073709551615ull), "1.23457e+06 18446744073709551615");
    EXPECT_EQ(qor_lang2::format("{0}{1}"), "{0}{1}");
}

TEST(Utf, ConversionsRoundTripAndReplaceWhatIsNotText)
{
    for (const char* text :
         {"", "plain", "ß é", "€ ✓ 日本語", "𝄞 🌍 \xF4\x8F\xBF\xBF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"}) {
        EXPECT_EQ(qor_lang2::toUtf8(qor_lang2::toUtf16(text)), text) << text;
    }
    EXPECT_EQ(qor_lang2::toUtf16("\xF0\x9F\x8C\x8D"), u"\xD83C\xDF0D");

    const std::pair<std::string, std::u16string> invalid[] = {
        {"a\x80z", u"a\xFFFDz"}, // a stray continuation byte
        {"a\xC3", u"a\xFFFD"}, // cut at the end
        {"a\xE2\x82z", u"a\xFFFDz"}, // cut before an ASCII character, which survives
        {"\xC0\xAF", u"\xFFFD\xFFFD"}, // an overlong lead is no lead
        {"\xE0\x80\xAF", u"\xFFFD"}, // overlong
        {"\xED\xA0\x80", u"\xFFFD"}, // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD"}, // beyond U+10FFFF
        {"\xFF", u"\xFFFD"},
    };
    for (const auto& [bytes, expected] : invalid)
        EXPECT_EQ(qor_lang2::toUtf16(bytes), expected) << testing::PrintToString(bytes);

    EXPECT_EQ(qor_lang2::toUtf8(u"a\xD800z"), "a\uFFFDz");
    EXPECT_EQ(qor_lang2::toUtf8(u"a\xDC00\xD83C"), "a\uFFFD\uFFFD") << "a reversed pair is two strays";
}

} // namespace
