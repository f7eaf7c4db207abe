// The generator's check in CTest keeps the tables as published. What the look-ups need of them
// (codes of their form, none twice, languages in code order) shows in every tag parsing back to
// the rows it was made from.
#include <gtest/gtest.h>

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

} // namespace

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
