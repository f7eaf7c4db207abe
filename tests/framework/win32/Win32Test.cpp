// What only Windows does: the ANSI code page, names whatever their case, long and relative paths.
#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CCPString.h"

#include <windows.h>

namespace kore_test {

namespace {

// Windows-1252 from 0x80 to 0x9F (0: undefined); elsewhere it is Latin-1.
constexpr uint16_t k1252High[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

uint32_t decode(uint32_t byte)
{
    const auto b = static_cast<uint8_t>(byte);
    uint32_t cp = 0xDEADBEEF;
    EXPECT_EQ(CCPCharEncoding::instance()->decodeCharStrict(cp, &b, 1, 0), 1u);
    return cp;
}

} // namespace

// Decoding goes through the ANSI code page (Windows-1252 as the charts say, where it is that),
// encoding through the C runtime's current locale. In the "C" locale the runtime writes exactly
// the code points below 256, one byte each, and nothing else: bytes that decode into that range
// round-trip, the others cannot be written back.
TEST(CodePageWin32, DecodingFollowsTheANSICodePageAndEncodingTheRuntimeLocale)
{
    const ICharEncoding& page = *CCPCharEncoding::instance();
    EXPECT_EQ(page.getMaxCharSize(), static_cast<uint32_t>(MB_CUR_MAX));
    for (uint32_t b = 1; b < 256; ++b) {
        const uint32_t cp = decode(b);
        uint8_t out[8] = {0};
        const uint32_t end = page.encodeChar(cp, out, 8, 0);
        EXPECT_TRUE(cp == 0 || (cp < 256 ? end == 1 && out[0] == cp : page.getEncodedSize(cp) == 0))
            << "byte " << b << " U+" << std::hex << cp;
    }
    // What the "C" locale cannot write, such as the euro sign and U+4E00, is dropped.
    const CCPString text(CUTF16String(u"A\u20AC\u00E9\u4E00"));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(text.getBuffer()), text.getByteLength()), "A\xE9");
    if (GetACP() != 1252)
        GTEST_SKIP() << "ANSI code page is " << GetACP();
    for (uint32_t b = 0; b < 256; ++b) {
        const uint32_t want = b >= 0x80 && b < 0xA0 ? k1252High[b - 0x80] : b;
        const uint32_t got = decode(b);
        // Windows maps the five undefined bytes to the C1 controls of the same value.
        EXPECT_TRUE(got == want || (want == 0 && got == b)) << "byte " << b << " U+" << std::hex << got;
    }
}

// Names are equal whatever their case; enumeration, the existence test and opening agree. Long
// and relative paths work.
TEST(Win32Services, LetterCaseIsIgnoredAndLongAndRelativePathsWork)
{
    EXPECT_EQ(CURI::fromLocalPath("C:/Lang/x")->getLocalPath()->toUTF8(), "C:\\Lang\\x") << "the native form";
    CTempFolder temp;
    temp.writeFile("Case.txt", "upper");
    temp.writeFile("b.txt", "");
    const P<IURI> folder = temp.uri();

    EXPECT_EQ(names(folder, "*.TXT"), (std::vector<std::string>{"b.txt", "Case.txt"}));
    EXPECT_EQ(names(folder, "case*"), std::vector<std::string>{"Case.txt"});
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve("CASE.TXT")));
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("cAsE.tXt"), IStreamManager::kRead);
    char text[6] = {};
    cast<IInStream>(stream)->read(text, 5);
    EXPECT_STREQ(text, "upper");

    // A path longer than MAX_PATH works through the "\\?\" form.
    std::string deep = "sub";
    while (deep.size() < 300)
        deep += "/Sprachdateien äöü 日本";
    temp.makeFolder(deep);
    temp.writeFile(deep + "/A-de-DE.qorlang", "deep");
    const P<IURI> deepFolder = temp.uri(deep);
    EXPECT_TRUE(ISystem::instance()->fileExists(*deepFolder->resolve("A-de-DE.qorlang")));
    EXPECT_EQ(names(deepFolder, "A-*.qorlang"), std::vector<std::string>{"A-de-DE.qorlang"});
    EXPECT_EQ(IStreamManager::instance()
                  ->openURI(*deepFolder->resolve("A-de-DE.qorlang"), IStreamManager::kRead)
                  ->getLength(),
              4);

    // "." and ".." are resolved by the system.
    const P<IURI> dotted = IPathes::instance()->folderPathToURI(CString::fromUTF8(temp.utf8("sub") + "\\.\\..\\sub"));
    EXPECT_EQ(dotted->toString()->toUTF8(), temp.uri("sub")->toString()->toUTF8());
}

} // namespace kore_test
