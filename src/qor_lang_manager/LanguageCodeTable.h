// The static tables of language codes (ISO 639-2 with ISO 639-1) and country codes
// (ISO 3166-1 alpha-2). The rows live in the generated LanguageCodeTable.cpp; see
// tools/gen_language_tables.py.
#pragma once

#include <cstdint>

namespace qor_lang {

struct LanguageCodeRow {
    // Three lower-case letters, or "bib/term" for a language with a distinct bibliographic code.
    const char16_t* iso639_2;
    // Two lower-case letters, or "" when the language has none.
    const char16_t* iso639_1;
    // Alternative names separated by "; ".
    const char16_t* englishName;
};

struct CountryCodeRow {
    const char16_t* code; // upper case
    const char16_t* englishName;
};

// The same rows as UTF-8 bytes, in the same order, for callers that work with 8-bit text.
struct LanguageCodeRowUtf8 {
    const char* iso639_2;
    const char* iso639_1;
    const char* englishName;
};

struct CountryCodeRowUtf8 {
    const char* code;
    const char* englishName;
};

// Ordered by the first field.
extern const LanguageCodeRow LanguageCodeTable[];
extern const LanguageCodeRowUtf8 LanguageCodeTableUtf8[];
extern const int32_t LanguageCodeTableCount; // rows of both language tables

// Ordered by English name, ignoring case and accents.
extern const CountryCodeRow CountryCodeTable[];
extern const CountryCodeRowUtf8 CountryCodeTableUtf8[];
extern const int32_t CountryCodeTableCount; // rows of both country tables

} // namespace qor_lang
