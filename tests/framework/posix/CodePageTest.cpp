// The POSIX code page is Windows-1252 both ways; glibc's iconv is an independent oracle for it.

#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CCPString.h"
#include "framework/text/CUTF16String.h"

#include <gtest/gtest.h>

#include <iconv.h>

#include <vector>

namespace kore_test {

using namespace kore;

namespace {

// Converts `in` with iconv; empty when iconv rejects it.
std::vector<uint8_t> convert(const char* to, const char* from, std::vector<char> in)
{
    iconv_t cd = iconv_open(to, from);
    char buffer[16];
    char* src = in.data();
    char* dst = buffer;
    size_t srcLeft = in.size(), dstLeft = sizeof(buffer);
    const size_t rc = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
    iconv_close(cd);
    return rc == static_cast<size_t>(-1) || srcLeft != 0 ? std::vector<uint8_t>() : std::vector<uint8_t>(buffer, dst);
}

} // namespace

// Every byte decodes to what iconv makes of it (0 where the code page defines nothing); every code
// point of the Basic Multilingual Plane encodes to the byte iconv makes, or to nothing where iconv
// has none, so each of the 256 bytes is reached from exactly the code point it decodes to.
TEST(CodePagePosix, BothWaysAsIconvSays)
{
    iconv_t probe = iconv_open("UTF-32LE", "WINDOWS-1252");
    if (probe == reinterpret_cast<iconv_t>(-1))
        GTEST_SKIP() << "iconv has no WINDOWS-1252";
    iconv_close(probe);
    const ICharEncoding& cp = *CCPCharEncoding::instance();
    for (uint32_t b = 0; b < 256; ++b) {
        const std::vector<uint8_t> utf32 = convert("UTF-32LE", "WINDOWS-1252", {static_cast<char>(b)});
        ASSERT_TRUE(utf32.empty() || utf32.size() == 4u);
        const uint32_t want = utf32.empty() ? 0 : utf32[0] | utf32[1] << 8 | utf32[2] << 16 | uint32_t{utf32[3]} << 24;
        const uint8_t byte = static_cast<uint8_t>(b);
        uint32_t got = 0xDEADBEEF;
        EXPECT_EQ(cp.decodeCharStrict(got, &byte, 1, 0), 1u);
        EXPECT_EQ(got, want) << "byte " << b;
    }
    uint32_t encodable = 0;
    for (uint32_t ch = 0; ch < 0x10000; ++ch) {
        if (ch >= 0xD800 && ch <= 0xDFFF)
            continue;
        const std::vector<uint8_t> want =
            convert("WINDOWS-1252", "UTF-32LE", {static_cast<char>(ch), static_cast<char>(ch >> 8), 0, 0});
        uint8_t buf[8] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
        const uint32_t end = cp.encodeChar(ch, buf, 8, 2);
        ASSERT_EQ(std::vector<uint8_t>(buf + 2, buf + end), want) << std::hex << "U+" << ch;
        ASSERT_EQ(cp.getEncodedSize(ch), want.size()) << std::hex << "U+" << ch;
        encodable += want.empty() ? 0 : 1;
    }
    EXPECT_EQ(encodable, 251u); // 256 bytes less the five the code page leaves undefined
}

TEST(CodePagePosix, EuroSignRoundTripsThroughTheCodePage)
{
    const CCPString cp(CUTF16String(u"\u20AC\u00E9\u4E00"));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(cp.getBuffer()), cp.getByteLength()), "\x80\xE9"); // no U+4E00
    EXPECT_EQ(cp.getLength(), 2u);
    EXPECT_EQ(CUTF16String(cp).toU16(), u"\u20AC\u00E9");
}

} // namespace kore_test
