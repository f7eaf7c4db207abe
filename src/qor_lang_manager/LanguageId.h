// LanguageId: one language, optionally with a country, as pointers into the static code tables,
// and its text form, the language tag ("en-US").
#pragma once

#include <cstdint>
#include <string>

namespace qor_lang {

// What the text given to the parsing constructor is.
enum class LanguageTagMode : int32_t {
    LanguageName = 0, // English language name, any letter case
    Iso639_1 = 1, // two-letter code, any letter case
    Iso639_2 = 2, // whole first table field ("fre/fra" for French), any letter case
    CountryName = 3, // English country name, any letter case
    CountryCode = 4, // alpha-2 code, exact case
    Tag = 5, // language-COUNTRY, any letter case
};

// A plain value: copied freely, owns nothing; every pointer points into the code tables.
struct LanguageId {
    bool valid;
    int32_t index = -1; // no operation sets it
    const char16_t* iso639_2 = nullptr; // row's first field, may be "bib/term"
    const char16_t* iso639_1 = nullptr; // may be ""
    const char16_t* englishName = nullptr; // language
    const char16_t* countryCode = nullptr;
    const char16_t* countryName = nullptr;

    // An empty id that counts as valid; its tag is "".
    LanguageId() noexcept : valid(true) {}

    // Null or empty text, an unknown mode or a failed look-up give an invalid id.
    LanguageId(const char16_t* text, LanguageTagMode mode) noexcept;

    bool isValid() const noexcept { return valid; }

    // The terminology code: the whole first field for "deu", its last three letters for
    // "ger/deu"; null when there is no such field.
    const char16_t* effectiveIso639_2() const noexcept;

    bool hasLanguage() const noexcept;
    bool hasCountry() const noexcept;

    const char16_t* getEnglishName() const noexcept { return englishName; }
    const char16_t* getCountryName() const noexcept { return countryName; }

    // "de-DE", "ace-ID" (no two-letter code), "de" (no country), or "" when there is a country
    // without a language or nothing at all.
    std::u16string getTag() const;
};

} // namespace qor_lang
