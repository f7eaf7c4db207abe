// Checks on the generated tables that would catch a faulty or half-run generator.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "framework/text/CString.h"
#include "qor_lang_manager/AsciiCase.h"
#include "qor_lang_manager/LanguageCodeTable.h"
#include "qor_lang_manager/LanguageId.h"

using namespace qor_lang;

namespace {

std::string toUtf8(std::u16string_view s)
{
    return kore::CString::fromUTF16(s)->toUTF8();
}

bool isAscii(std::u16string_view s)
{
    return std::all_of(s.begin(), s.end(), [](char16_t c) { return c < 0x80; });
}

bool isLetters(std::u16string_view s, char16_t first)
{
    return !s.empty() && std::all_of(s.begin(), s.end(), [&](char16_t c) { return c >= first && c <= first + 25; });
}

std::u16string folded(std::u16string_view s)
{
    std::u16string out(s);
    std::transform(out.begin(), out.end(), out.begin(), foldAsciiCase);
    return out;
}

std::u16string countryAt(int32_t i)
{
    return CountryCodeTable[i].englishName;
}

} // namespace

TEST(LanguageCodeTableTest, LanguageRows)
{
    // This edition of iso-codes: 487 entries less the reserved range qaa-qtz.
    ASSERT_EQ(LanguageCodeTableCount, 486);
    EXPECT_EQ(std::u16string(LanguageCodeTable[0].iso639_2), u"aar");
    EXPECT_EQ(std::u16string(LanguageCodeTable[LanguageCodeTableCount - 1].iso639_2), u"zza");

    std::set<std::u16string> twoLetter, effective;
    int bibTerm = 0;
    for (int32_t i = 0; i < LanguageCodeTableCount; ++i) {
        const LanguageCodeRow& row = LanguageCodeTable[i];
        const std::u16string code = row.iso639_2, code1 = row.iso639_1;
        SCOPED_TRACE(toUtf8(code));
        EXPECT_TRUE(code.size() == 3 || (code.size() == 7 && code[3] == u'/'));
        EXPECT_TRUE(isLetters(code.substr(0, 3), u'a') && isLetters(code.substr(code.size() - 3), u'a'));
        bibTerm += code.size() == 7;
        if (i > 0) {
            EXPECT_LT(std::u16string(LanguageCodeTable[i - 1].iso639_2), code);
        }
        EXPECT_TRUE(code1.empty() || (code1.size() == 2 && isLetters(code1, u'a')));
        EXPECT_TRUE(code1.empty() || twoLetter.insert(code1).second) << "duplicate two-letter code";
        EXPECT_TRUE(effective.insert(code.substr(code.size() - 3)).second) << "duplicate three-letter code";
        EXPECT_NE(std::u16string(row.englishName), u"");
        // The eight-bit table has the same rows.
        EXPECT_EQ(LanguageCodeTableUtf8[i].iso639_2, toUtf8(code));
        EXPECT_EQ(LanguageCodeTableUtf8[i].iso639_1, toUtf8(code1));
        EXPECT_EQ(LanguageCodeTableUtf8[i].englishName, toUtf8(row.englishName));
    }
    EXPECT_EQ(bibTerm, 20);
    EXPECT_EQ(effective.count(u"qtz"), 0u);
}

TEST(LanguageCodeTableTest, CountryRowsFollowThePublishedOrder)
{
    ASSERT_EQ(CountryCodeTableCount, 249);
    EXPECT_EQ(countryAt(0), u"Afghanistan");
    EXPECT_EQ(countryAt(1), u"\u00C5land Islands");
    EXPECT_EQ(std::u16string(CountryCodeTable[1].code), u"AX");
    EXPECT_EQ(countryAt(2), u"Albania");
    EXPECT_EQ(countryAt(CountryCodeTableCount - 2), u"Zambia");
    EXPECT_EQ(countryAt(CountryCodeTableCount - 1), u"Zimbabwe");

    // Names without accents are in case-insensitive order among themselves ...
    std::u16string previous;
    std::set<std::u16string> codes;
    for (int32_t i = 0; i < CountryCodeTableCount; ++i) {
        const std::u16string name = countryAt(i), code = CountryCodeTable[i].code;
        EXPECT_TRUE(code.size() == 2 && isLetters(code, u'A') && codes.insert(code).second) << toUtf8(code);
        if (isAscii(name)) {
            EXPECT_LT(folded(previous), folded(name));
            previous = name;
        }
        EXPECT_EQ(CountryCodeTableUtf8[i].code, toUtf8(code));
        EXPECT_EQ(CountryCodeTableUtf8[i].englishName, toUtf8(name));
    }
    // ... and accented ones sit where their base letters put them.
    const std::vector<std::pair<std::u16string, std::u16string>> neighbours = {{u"Costa Rica", u"C\u00F4te d'Ivoire"},
                                                                               {u"Cuba", u"Cura\u00E7ao"},
                                                                               {u"Qatar", u"R\u00E9union"},
                                                                               {u"Rwanda", u"Saint Barth\u00E9lemy"},
                                                                               {u"Tunisia", u"T\u00FCrkiye"}};
    for (const auto& [before, accented] : neighbours) {
        int32_t i = 0;
        while (i + 1 < CountryCodeTableCount && countryAt(i) != before) {
            ++i;
        }
        EXPECT_EQ(countryAt(i + 1), accented) << toUtf8(before);
    }
}

TEST(LanguageCodeTableTest, EveryTagRoundTrips)
{
    // Every language with every country: the tag must parse back to the same two rows.
    int failures = 0;
    for (int32_t l = 0; l < LanguageCodeTableCount && failures < 10; ++l) {
        LanguageId id;
        id.iso639_2 = LanguageCodeTable[l].iso639_2;
        id.iso639_1 = LanguageCodeTable[l].iso639_1;
        for (int32_t c = 0; c < CountryCodeTableCount && failures < 10; ++c) {
            id.countryCode = CountryCodeTable[c].code;
            const std::u16string tag = id.getTag();
            const LanguageId parsed(tag.c_str(), LanguageTagMode::Tag);
            if (!parsed.isValid() || parsed.iso639_2 != id.iso639_2 || parsed.countryCode != id.countryCode) {
                ADD_FAILURE() << toUtf8(tag) << " does not round-trip";
                ++failures;
            }
        }
    }
}
