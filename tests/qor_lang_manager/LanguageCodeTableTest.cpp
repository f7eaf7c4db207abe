// The generator's check in CTest keeps the tables as published; these catch tables that would
// break the look-ups: codes of their form, none twice, languages in code order.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "framework/text/CString.h"
#include "qor_lang_manager/LanguageCodeTable.h"
#include "qor_lang_manager/LanguageId.h"

using namespace qor_lang;

namespace {

std::string toUtf8(std::u16string_view s)
{
    return kore::CString::fromUTF16(s)->toUTF8();
}

bool isLetters(std::u16string_view s, char16_t first)
{
    for (char16_t c : s) {
        if (c < first || c > first + 25)
            return false;
    }
    return !s.empty();
}

} // namespace

TEST(LanguageCodeTableTest, CodesHaveTheirFormAndAreUnique)
{
    ASSERT_EQ(LanguageCodeTableCount, 486); // this edition of iso-codes less the reserved qaa-qtz
    ASSERT_EQ(CountryCodeTableCount, 249);
    std::set<std::u16string> twoLetter, effective, countries;
    for (int32_t i = 0; i < LanguageCodeTableCount; ++i) {
        const std::u16string code = LanguageCodeTable[i].iso639_2, code1 = LanguageCodeTable[i].iso639_1;
        SCOPED_TRACE(toUtf8(code));
        EXPECT_TRUE(code.size() == 3 || (code.size() == 7 && code[3] == u'/'));
        EXPECT_TRUE(isLetters(code.substr(0, 3), u'a') && isLetters(code.substr(code.size() - 3), u'a'));
        EXPECT_TRUE(i == 0 || std::u16string(LanguageCodeTable[i - 1].iso639_2) < code);
        EXPECT_TRUE(code1.empty() || (isLetters(code1, u'a') && code1.size() == 2 && twoLetter.insert(code1).second));
        EXPECT_TRUE(effective.insert(code.substr(code.size() - 3)).second) << "duplicate three-letter code";
        EXPECT_NE(std::u16string(LanguageCodeTable[i].englishName), u"");
    }
    for (int32_t i = 0; i < CountryCodeTableCount; ++i) {
        const std::u16string code = CountryCodeTable[i].code;
        EXPECT_TRUE(code.size() == 2 && isLetters(code, u'A') && countries.insert(code).second) << toUtf8(code);
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
