// The Windows code page is the process's ANSI code page both ways.

#include "framework/CCPCharEncoding.h"
#include "framework/CCPString.h"
#include "framework/CUTF16String.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace kore_test {

using namespace kore;

namespace {

// Windows-1252 from 0x80 to 0x9F (0: undefined); elsewhere it is Latin-1.
constexpr uint16_t k1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

uint32_t decode(uint8_t byte)
{
    uint32_t cp = 0xDEADBEEF;
    EXPECT_EQ(CCPCharEncoding::instance()->decodeCharStrict(cp, &byte, 1, 0), 1u);
    return cp;
}

} // namespace

// Every byte that decodes to a character encodes back to itself: a string read from the code
// page and written back is unchanged.
TEST(CodePageWin32, EveryByteRoundTrips)
{
    const ICharEncoding& page = *CCPCharEncoding::instance();
    CPINFO info{};
    ASSERT_TRUE(GetCPInfo(CP_ACP, &info));
    EXPECT_EQ(page.getMaxCharSize(), info.MaxCharSize);
    if (info.MaxCharSize != 1)
        GTEST_SKIP() << "multibyte ANSI code page " << GetACP();
    for (uint32_t b = 1; b < 256; ++b) {
        const uint32_t cp = decode(static_cast<uint8_t>(b));
        if (cp == 0)
            continue;
        uint8_t out[8] = {0};
        EXPECT_EQ(page.encodeChar(cp, out, 8, 0), 1u) << "byte " << b << " U+" << std::hex << cp;
        EXPECT_EQ(out[0], b) << "byte " << b;
    }
}

TEST(CodePageWin32, Windows1252AsTheChartsSay)
{
    if (GetACP() != 1252)
        GTEST_SKIP() << "ANSI code page is " << GetACP();
    for (uint32_t b = 0; b < 256; ++b) {
        uint32_t want = b;
        if (b >= 0x80 && b < 0xA0)
            want = k1252High[b - 0x80];
        const uint32_t got = decode(static_cast<uint8_t>(b));
        // Windows maps the five undefined bytes to the C1 controls of the same value.
        if (want == 0 && b != 0)
            EXPECT_TRUE(got == 0 || got == b) << "byte " << b << " U+" << std::hex << got;
        else
            EXPECT_EQ(got, want) << "byte " << b;
    }
    CCPString euro(CUTF16String(u"\u20AC\u0152\u4E00"));
    ASSERT_EQ(euro.getByteLength(), 2u);
    EXPECT_EQ(euro.getBuffer()[0], 0x80);
    EXPECT_EQ(euro.getBuffer()[1], 0x8C);
    EXPECT_EQ(euro.getLength(), 2u);
}

} // namespace kore_test
