#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "qor_lang_manager/AsciiCase.h"
#include "qor_lang_manager/LanguageId.h"

using qor_lang::LanguageId;
using qor_lang::LanguageTagMode;

namespace {

// Field pointers compare as text; "(null)" keeps null apart from "".
std::u16string text(const char16_t* p)
{
    return p != nullptr ? std::u16string(p) : std::u16string(u"(null)");
}

// Trace labels; the texts traced are ASCII.
std::string label(const char16_t* p)
{
    const std::u16string t = text(p);
    return std::string(t.begin(), t.end());
}

LanguageId tag(const char16_t* t)
{
    return LanguageId(t, LanguageTagMode::Tag);
}

void expectSameId(const LanguageId& a, const LanguageId& b)
{
    EXPECT_EQ(a.valid, b.valid);
    EXPECT_EQ(a.index, b.index);
    EXPECT_EQ(a.iso639_2, b.iso639_2);
    EXPECT_EQ(a.iso639_1, b.iso639_1);
    EXPECT_EQ(a.englishName, b.englishName);
    EXPECT_EQ(a.countryCode, b.countryCode);
    EXPECT_EQ(a.countryName, b.countryName);
}

} // namespace

TEST(LanguageIdTest, DefaultIdIsValidButEmpty)
{
    const LanguageId id;
    EXPECT_TRUE(id.isValid());
    EXPECT_EQ(id.index, -1);
    EXPECT_EQ(id.effectiveIso639_2(), nullptr);
    EXPECT_FALSE(id.hasLanguage());
    EXPECT_FALSE(id.hasCountry());
    EXPECT_EQ(id.getTag(), u"");
}

TEST(LanguageIdTest, TagFindsLanguageAndCountryRows)
{
    const LanguageId de = tag(u"de-DE");
    ASSERT_TRUE(de.isValid());
    EXPECT_EQ(de.index, -1);
    EXPECT_EQ(text(de.iso639_2), u"ger/deu");
    EXPECT_EQ(text(de.effectiveIso639_2()), u"deu");
    EXPECT_EQ(text(de.getEnglishName()), u"German");
    EXPECT_EQ(text(de.countryCode), u"DE");
    EXPECT_EQ(text(de.getCountryName()), u"Germany");
    EXPECT_TRUE(de.hasLanguage() && de.hasCountry());
    EXPECT_EQ(de.getTag(), u"de-DE");
    // Runs of separators count as one.
    for (const char16_t* t : {u"de--DE", u"-de-DE", u"de-DE-", u"--de---DE--"}) {
        SCOPED_TRACE(label(t));
        expectSameId(tag(t), de);
    }

    // The tag is rebuilt from the tables, in their letter case, preferring the two-letter code.
    EXPECT_EQ(tag(u"DE-de").getTag(), u"de-DE");
    EXPECT_EQ(tag(u"deu-AT").getTag(), u"de-AT");
    EXPECT_EQ(tag(u"fra-FR").getTag(), u"fr-FR");
    // Achinese has no two-letter code.
    const LanguageId ace = tag(u"ace-ID");
    EXPECT_EQ(text(ace.iso639_1), u"");
    EXPECT_EQ(ace.getTag(), u"ace-ID");
}

TEST(LanguageIdTest, TagRejectsAnythingButLanguageCountry)
{
    LanguageId invalid;
    invalid.valid = false;
    // A bare language, extra parts, bibliographic codes, unknown codes, no tokens at all.
    for (const char16_t* t : std::initializer_list<const char16_t*>{u"de", u"de-DE-x", u"fre-FR", u"ger-DE", u"xx-DE",
                                                                    u"-", u"", nullptr}) {
        SCOPED_TRACE(label(t));
        expectSameId(tag(t), invalid);
    }
    for (int32_t mode : {-1, 6, 1000}) {
        expectSameId(LanguageId(u"de-DE", static_cast<LanguageTagMode>(mode)), invalid);
    }
    // An unknown country leaves the language it found, but the id is not valid.
    const LanguageId unknownCountry = tag(u"de-XX");
    EXPECT_FALSE(unknownCountry.isValid());
    EXPECT_EQ(text(unknownCountry.iso639_1), u"de");
    EXPECT_EQ(unknownCountry.countryCode, nullptr);
}

TEST(LanguageIdTest, SingleFieldLookups)
{
    EXPECT_EQ(text(LanguageId(u"GERMAN", LanguageTagMode::LanguageName).iso639_1), u"de");
    // Names compare whole, alternatives included.
    EXPECT_FALSE(LanguageId(u"Dutch", LanguageTagMode::LanguageName).isValid());
    EXPECT_EQ(text(LanguageId(u"dutch; flemish", LanguageTagMode::LanguageName).iso639_1), u"nl");

    EXPECT_EQ(LanguageId(u"DE", LanguageTagMode::Iso639_1).getTag(), u"de");
    // Without the emptiness check this would find the first row lacking a two-letter code.
    EXPECT_FALSE(LanguageId(u"", LanguageTagMode::Iso639_1).isValid());

    // A language with two three-letter codes is found only by both together.
    EXPECT_EQ(text(LanguageId(u"FRE/fra", LanguageTagMode::Iso639_2).iso639_1), u"fr");
    EXPECT_FALSE(LanguageId(u"fra", LanguageTagMode::Iso639_2).isValid());
    EXPECT_FALSE(LanguageId(u"fre", LanguageTagMode::Iso639_2).isValid());
    EXPECT_EQ(text(LanguageId(u"ENG", LanguageTagMode::Iso639_2).iso639_1), u"en");

    EXPECT_EQ(text(LanguageId(u"GERMANY", LanguageTagMode::CountryName).countryCode), u"DE");
    // Only A-Z fold: the capital A with ring matches itself, its small form does not.
    EXPECT_EQ(text(LanguageId(u"\u00C5LAND ISLANDS", LanguageTagMode::CountryName).countryCode), u"AX");
    EXPECT_FALSE(LanguageId(u"\u00E5land islands", LanguageTagMode::CountryName).isValid());

    EXPECT_FALSE(LanguageId(u"de", LanguageTagMode::CountryCode).isValid());
    const LanguageId country = LanguageId(u"DE", LanguageTagMode::CountryCode);
    ASSERT_TRUE(country.isValid());
    EXPECT_TRUE(country.hasCountry());
    EXPECT_FALSE(country.hasLanguage());
    EXPECT_EQ(country.getTag(), u""); // a country alone has no tag
}

TEST(LanguageIdTest, CaseFoldingStopsAtAsciiLetters)
{
    using qor_lang::equalsIgnoreAsciiCase;
    EXPECT_TRUE(equalsIgnoreAsciiCase(u"AZaz", u"azAZ"));
    // Neighbours of the letter ranges differ by the same 0x20 but are not letters.
    for (char16_t c : std::u16string_view(u"@[\\]^_")) {
        EXPECT_FALSE(equalsIgnoreAsciiCase(std::u16string(1, c), std::u16string(1, static_cast<char16_t>(c + 0x20))))
            << char(c);
    }
    EXPECT_FALSE(equalsIgnoreAsciiCase(u"\u00C4", u"\u00E4"));
    EXPECT_FALSE(equalsIgnoreAsciiCase(u"de", u"de-"));
}
