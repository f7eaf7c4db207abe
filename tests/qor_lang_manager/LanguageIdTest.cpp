#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "framework/text/CString.h"
#include "qor_lang_manager/AsciiCase.h"
#include "qor_lang_manager/LanguageCodeTable.h"
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
    EXPECT_EQ(fields(LanguageId()), "valid -1|~|~|~|~|~|~||");
    // Runs of separators count as one; the tag is rebuilt from the tables, in their letter case.
    for (const char16_t* text : {u"de-DE", u"de--DE", u"-de-DE", u"de-DE-", u"--de---DE--", u"DE-de"})
        EXPECT_EQ(fields(LanguageId(text, Mode::Tag)), "valid -1|ger/deu|de|German|DE|Germany|deu|LC|de-DE")
            << utf8(text);
    // Tags: a bare language, extra parts, bibliographic codes, unknown codes, no tokens at all;
    // unknown modes. Names compare whole; the empty two-letter code is no code (or it would find
    // the first row lacking one); a language with two three-letter codes is found only by both
    // together; only A-Z fold; country codes compare exactly.
    const std::pair<const char16_t*, int> rejected[] = {
        {u"de", 5},     {u"de-DE-x", 5}, {u"fre-FR", 5},   {u"ger-DE", 5},
        {u"xx-DE", 5},  {u"-", 5},       {u"", 5},         {nullptr, 5},
        {u"de-DE", -1}, {u"de-DE", 6},   {u"de-DE", 1000}, {u"Dutch", 0},
        {u"", 1},       {u"fra", 2},     {u"fre", 2},      {u"\u00E5land islands", 3},
        {u"de", 4}};
    for (const auto& [text, mode] : rejected)
        EXPECT_EQ(fields(LanguageId(text, Mode(mode))), "invalid -1|~|~|~|~|~|~||")
            << (text ? utf8(text) : "null") << " " << mode;
    const std::tuple<const char16_t*, Mode, const char*> found[] = {
        {u"deu-AT", Mode::Tag, "valid -1|ger/deu|de|German|AT|Austria|deu|LC|de-AT"},
        {u"fra-FR", Mode::Tag, "valid -1|fre/fra|fr|French|FR|France|fra|LC|fr-FR"},
        {u"ace-ID", Mode::Tag, "valid -1|ace||Achinese|ID|Indonesia|ace|LC|ace-ID"}, // no two-letter code
        // An unknown country leaves the language it found, but the id is not valid.
        {u"de-XX", Mode::Tag, "invalid -1|ger/deu|de|German|~|~|deu|L|de"},
        {u"GERMAN", Mode::LanguageName, "valid -1|ger/deu|de|German|~|~|deu|L|de"},
        {u"dutch; flemish", Mode::LanguageName, "valid -1|dut/nld|nl|Dutch; Flemish|~|~|nld|L|nl"},
        {u"DE", Mode::Iso639_1, "valid -1|ger/deu|de|German|~|~|deu|L|de"},
        {u"FRE/fra", Mode::Iso639_2, "valid -1|fre/fra|fr|French|~|~|fra|L|fr"},
        {u"ENG", Mode::Iso639_2, "valid -1|eng|en|English|~|~|eng|L|en"},
        {u"GERMANY", Mode::CountryName, "valid -1|~|~|~|DE|Germany|~|C|"},
        {u"\u00C5LAND ISLANDS", Mode::CountryName, "valid -1|~|~|~|AX|\u00C5land Islands|~|C|"},
        {u"DE", Mode::CountryCode, "valid -1|~|~|~|DE|Germany|~|C|"}}; // a country alone has no tag
    for (const auto& [text, mode, expected] : found)
        EXPECT_EQ(fields(LanguageId(text, mode)), expected) << utf8(text);
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

// The generator's check in CTest keeps the code tables as published. What the look-ups need of
// them (codes of their form, none twice, languages in code order) shows in every tag parsing
// back to the rows it was made from.
TEST(LanguageIdTest, EveryTagOfTheTablesRoundTrips)
{
    // Every language with every country: the tag must parse back to the same two rows.
    int failures = 0;
    for (int32_t l = 0; l < qor_lang::LanguageCodeTableCount; ++l) {
        for (int32_t c = 0; c < qor_lang::CountryCodeTableCount && failures < 10; ++c) {
            LanguageId id;
            id.iso639_2 = qor_lang::LanguageCodeTable[l].iso639_2,
            id.iso639_1 = qor_lang::LanguageCodeTable[l].iso639_1;
            id.countryCode = qor_lang::CountryCodeTable[c].code;
            const LanguageId parsed(id.getTag().c_str(), Mode::Tag);
            failures += !parsed.isValid() || parsed.iso639_2 != id.iso639_2 || parsed.countryCode != id.countryCode;
            EXPECT_EQ(failures, 0) << utf8(id.getTag()) << " does not round-trip";
        }
    }
}
