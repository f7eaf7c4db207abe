#pragma once
// From the language a catalogue or a file name writes ("de", "de_AT.UTF-8", "sr@latin",
// "zh-Hant-TW") to the two-part tag a language file carries ("de-DE"), or the reason none fits.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qorlang {

struct DefaultCountry {
    const char16_t* language;
    const char16_t* country;
};
extern const DefaultCountry kDefaultCountries[]; // by language, DefaultCountryTable.cpp
extern const size_t kDefaultCountryCount;

struct TagChoice {
    std::optional<std::u16string> tag; // the library's spelling, "de-DE"
    bool completed = false; // a bare language given its default country
    std::string problem; // why no tag fits, when tag is absent
};

// "ll[_-]CC" as is; a bare "ll" with its most likely country (CLDR); a script subtag or an
// "@script" modifier is refused, since a two-part tag cannot keep it apart from the language's
// usual script ("@euro" only names a currency and is ignored); the charset after "." too.
TagChoice tagFor(std::u16string_view written);

// The tag at the end of a language file's name ("myapp-de-AT.qorlang" -> "de-AT").
std::optional<std::u16string> tagOfFileName(std::string_view name);

} // namespace qorlang
