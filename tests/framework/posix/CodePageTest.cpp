// The POSIX code page is Windows-1252 both ways; glibc's iconv is an independent oracle for it.

#include "framework/CCPCharEncoding.h"
#include "framework/CCPString.h"
#include "framework/CUTF16String.h"

#include <gtest/gtest.h>

#include <iconv.h>

#include <vector>

namespace kore_test {

using namespace kore;

namespace {

// Converts `in` with iconv; false when iconv rejects it.
bool convert(const char* to, const char* from, std::vector<char> in, std::vector<uint8_t>& out)
{
    iconv_t cd = iconv_open(to, from);
    if (cd == reinterpret_cast<iconv_t>(-1))
        return false;
    char buffer[16];
    char* src = in.data();
    size_t srcLeft = in.size();
    char* dst = buffer;
    size_t dstLeft = sizeof(buffer);
    const size_t rc = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
    iconv_close(cd);
    if (rc == static_cast<size_t>(-1) || srcLeft != 0)
        return false;
    out.assign(buffer, dst);
    return true;
}

bool oracleAvailable()
{
    iconv_t cd = iconv_open("UTF-32LE", "WINDOWS-1252");
    if (cd == reinterpret_cast<iconv_t>(-1))
        return false;
    iconv_close(cd);
    return true;
}

} // namespace

TEST(CodePagePosix, EveryByteDecodesAsIconvSays)
{
    if (!oracleAvailable())
        GTEST_SKIP() << "iconv has no WINDOWS-1252";
    const ICharEncoding& cp = *CCPCharEncoding::instance();
    for (uint32_t b = 0; b < 256; ++b) {
        std::vector<uint8_t> utf32;
        uint32_t want = 0; // what the code page does not define decodes as 0
        if (convert("UTF-32LE", "WINDOWS-1252", {static_cast<char>(b)}, utf32)) {
            ASSERT_EQ(utf32.size(), 4u);
            want = utf32[0] | utf32[1] << 8 | utf32[2] << 16 | static_cast<uint32_t>(utf32[3]) << 24;
        }
        const uint8_t byte = static_cast<uint8_t>(b);
        uint32_t got = 0xDEADBEEF;
        EXPECT_EQ(cp.decodeCharStrict(got, &byte, 1, 0), 1u);
        EXPECT_EQ(got, want) << "byte " << b;
    }
}

// The other way: every code point of the Basic Multilingual Plane encodes to the byte iconv makes,
// or to nothing where iconv has no byte for it; so each of the 256 bytes is reached from exactly
// the code point it decodes to.
TEST(CodePagePosix, EveryBasicPlaneCodePointEncodesAsIconvSays)
{
    if (!oracleAvailable())
        GTEST_SKIP() << "iconv has no WINDOWS-1252";
    const ICharEncoding& cp = *CCPCharEncoding::instance();
    uint32_t encodable = 0;
    for (uint32_t ch = 0; ch < 0x10000; ++ch) {
        if (ch >= 0xD800 && ch <= 0xDFFF)
            continue;
        std::vector<char> in = {static_cast<char>(ch), static_cast<char>(ch >> 8), 0, 0};
        std::vector<uint8_t> want;
        if (!convert("WINDOWS-1252", "UTF-32LE", in, want))
            want.clear();
        uint8_t buf[8] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
        const uint32_t end = cp.encodeChar(ch, buf, 8, 2);
        const std::vector<uint8_t> got(buf + 2, buf + end);
        ASSERT_EQ(got, want) << std::hex << "U+" << ch;
        ASSERT_EQ(cp.getEncodedSize(ch), want.size()) << std::hex << "U+" << ch;
        encodable += want.empty() ? 0 : 1;
    }
    EXPECT_EQ(encodable, 251u); // 256 bytes less the five the code page leaves undefined
}

TEST(CodePagePosix, EuroSignRoundTripsThroughTheCodePage)
{
    const CUTF16String euro(u"\u20AC\u00E9\u4E00");
    const CCPString cp(euro);
    ASSERT_EQ(cp.getByteLength(), 2u); // U+4E00 has no byte
    EXPECT_EQ(cp.getBuffer()[0], 0x80);
    EXPECT_EQ(cp.getBuffer()[1], 0xE9);
    EXPECT_EQ(cp.getLength(), 2u);
    EXPECT_EQ(CUTF16String(cp).toU16(), u"\u20AC\u00E9");
}

} // namespace kore_test
