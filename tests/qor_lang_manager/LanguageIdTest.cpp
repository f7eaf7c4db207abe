#include <gtest/gtest.h>

#include <string>

#include "framework/text/CString.h"
#include "qor_lang_manager/AsciiCase.h"
#include "qor_lang_manager/LanguageId.h"

using qor_lang::LanguageId;
using Mode = qor_lang::LanguageTagMode;

namespace {

std::string utf8(std::u16string_view text)
{
    return kore::CString::fromUTF16(text)->toUTF8();
}

// Every field of an id on one line, null as "~": validity and index, the first table field, the
// two-letter code, the English name, the country code and name, the effective three-letter code,
// whether it has a language and a country, and the tag.
std::string fields(const LanguageId& id)
{
    std::string out = (id.isValid() ? "valid " : "invalid ") + std::to_string(id.index);
    for (const char16_t* p :
         {id.iso639_2, id.iso639_1, id.getEnglishName(), id.countryCode, id.getCountryName(), id.effectiveIso639_2()})
        out += "|" + (p ? utf8(p) : "~");
    return out + "|" + (id.hasLanguage() ? "L" : "") + (id.hasCountry() ? "C" : "") + "|" + utf8(id.getTag());
}

} // namespace

TEST(LanguageIdTest, EachModeFindsItsRowsAndNothingElse)
{
    const std::string invalid = "invalid -1|~|~|~|~|~|~||",
                      german = "valid -1|ger/deu|de|German|DE|Germany|deu|LC|de-DE";
    const struct {
        const char16_t* text;
        int mode;
        std::string expected;
    } rows[] = {
        // Runs of separators count as one; the tag is rebuilt from the tables, in their letter
        // case, preferring the two-letter code.
        {u"de-DE", 5, german},
        {u"de--DE", 5, german},
        {u"-de-DE", 5, german},
        {u"de-DE-", 5, german},
        {u"--de---DE--", 5, german},
        {u"DE-de", 5, german},
        {u"deu-AT", 5, "valid -1|ger/deu|de|German|AT|Austria|deu|LC|de-AT"},
        {u"fra-FR", 5, "valid -1|fre/fra|fr|French|FR|France|fra|LC|fr-FR"},
        {u"ace-ID", 5, "valid -1|ace||Achinese|ID|Indonesia|ace|LC|ace-ID"}, // no two-letter code
        // A bare language, extra parts, bibliographic codes, unknown codes, no tokens at all.
        {u"de", 5, invalid},
        {u"de-DE-x", 5, invalid},
        {u"fre-FR", 5, invalid},
        {u"ger-DE", 5, invalid},
        {u"xx-DE", 5, invalid},
        {u"-", 5, invalid},
        {u"", 5, invalid},
        {nullptr, 5, invalid},
        {u"de-DE", -1, invalid},
        {u"de-DE", 6, invalid},
        {u"de-DE", 1000, invalid},
        // An unknown country leaves the language it found, but the id is not valid.
        {u"de-XX", 5, "invalid -1|ger/deu|de|German|~|~|deu|L|de"},
        // Names compare whole, alternatives included.
        {u"GERMAN", 0, "valid -1|ger/deu|de|German|~|~|deu|L|de"},
        {u"Dutch", 0, invalid},
        {u"dutch; flemish", 0, "valid -1|dut/nld|nl|Dutch; Flemish|~|~|nld|L|nl"},
        {u"DE", 1, "valid -1|ger/deu|de|German|~|~|deu|L|de"},
        {u"", 1, invalid}, // without the emptiness check: the first row lacking a two-letter code
        // A language with two three-letter codes is found only by both together.
        {u"FRE/fra", 2, "valid -1|fre/fra|fr|French|~|~|fra|L|fr"},
        {u"fra", 2, invalid},
        {u"fre", 2, invalid},
        {u"ENG", 2, "valid -1|eng|en|English|~|~|eng|L|en"},
        {u"GERMANY", 3, "valid -1|~|~|~|DE|Germany|~|C|"},
        // Only A-Z fold: the capital A with ring matches itself, its small form does not.
        {u"\u00C5LAND ISLANDS", 3, "valid -1|~|~|~|AX|\u00C5land Islands|~|C|"},
        {u"\u00E5land islands", 3, invalid},
        {u"de", 4, invalid},
        {u"DE", 4, "valid -1|~|~|~|DE|Germany|~|C|"}, // a country alone has no tag
    };
    EXPECT_EQ(fields(LanguageId()), "valid -1|~|~|~|~|~|~||");
    for (const auto& row : rows) {
        EXPECT_EQ(fields(LanguageId(row.text, static_cast<Mode>(row.mode))), row.expected)
            << (row.text ? utf8(row.text) : "null") << " in mode " << row.mode;
    }
}

TEST(LanguageIdTest, CaseFoldingStopsAtAsciiLetters)
{
    using qor_lang::equalsIgnoreAsciiCase;
    EXPECT_TRUE(equalsIgnoreAsciiCase(u"AZaz", u"azAZ"));
    // Neighbours of the letter ranges differ by the same 0x20 but are not letters.
    for (char16_t c : std::u16string_view(u"@[\\]^_"))
        EXPECT_FALSE(equalsIgnoreAsciiCase(std::u16string(1, c), std::u16string(1, char16_t(c + 0x20)))) << char(c);
    EXPECT_FALSE(equalsIgnoreAsciiCase(u"\u00C4", u"\u00E4"));
    EXPECT_FALSE(equalsIgnoreAsciiCase(u"de", u"de-"));
}
