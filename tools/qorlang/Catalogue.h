#pragma once
// A translation catalogue as the tool sees it, whatever format it came from: the entries in
// source order (untranslated, fuzzy and obsolete ones included, so that check and stats can
// count them) and the descriptive data a language file carries.

#include "qor_lang_manager/PluralLookup.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qorlang {

// Separates a context from the source text in a key, as gettext does.
inline constexpr char16_t kContextSeparator = u'\x04';
// A plural entry K is stored twice: K answers its first form (so that tr(K) works), K + U+0005
// answers every form, each ended but the last by U+0000, with the plural source as third string;
// the catalogue's rule is the "xdid" pair kPluralFormsExtra.
using qor_lang::kPluralFormsExtra;
using qor_lang::kPluralMark;

struct Entry {
    std::u16string key; // what the library looks up: [context U+0004] source
    std::u16string text; // what it answers; the first form of a plural entry
    int line = 0; // 1-based line in the source, 0 when the format has none
    bool fuzzy = false;
    bool obsolete = false;
    bool plural = false; // the text is the first of several plural forms
    bool cFormat = false; // marked as a C format string (PO flag "c-format")
    // A plural entry's source for n != 1 (msgid_plural) and every form in the rule's order
    // (forms[0] == text); both empty for other entries.
    std::u16string pluralSource = {};
    std::vector<std::u16string> forms = {};

    // What a translator wrote: every plural form, else the one text.
    std::vector<std::u16string_view> texts() const
    {
        return forms.empty() ? std::vector<std::u16string_view>{text}
                             : std::vector<std::u16string_view>(forms.begin(), forms.end());
    }
    // Entries a compiled file keeps (an empty text would read as missing anyway).
    bool usable(bool useFuzzy) const { return !obsolete && !text.empty() && (useFuzzy || !fuzzy); }
};

struct Catalogue {
    std::string path; // UTF-8, for messages
    std::vector<Entry> entries;
    // Descriptive data; absent when the source does not say.
    std::optional<std::u16string> language; // as written in the source ("ru_RU", "ru-RU", "ru")
    int languageLine = 0;
    std::optional<std::u16string> author;
    std::optional<std::u16string> comment;
    std::optional<std::u16string> appId;
    std::optional<std::u16string> nativeName;
    std::optional<std::u16string> nativeSubName;
    std::optional<uint32_t> version;
    // The catalogue's plural rule in gettext's spelling ("nplurals=2; plural=(n != 1);").
    std::optional<std::u16string> pluralForms;
    int pluralFormsLine = 0;
};

// Splits a key into its context (absent when the key has none) and its source text.
inline std::pair<std::optional<std::u16string_view>, std::u16string_view> splitKey(std::u16string_view key)
{
    const size_t at = key.find(kContextSeparator);
    if (at == std::u16string_view::npos)
        return {std::nullopt, key};
    return {key.substr(0, at), key.substr(at + 1)};
}

inline std::u16string joinKey(const std::optional<std::u16string>& context, std::u16string_view source)
{
    return context ? *context + kContextSeparator + std::u16string(source) : std::u16string(source);
}

// Throws the error of a bad input: "path:line: message" (without the line when it is 0).
[[noreturn]] void fail(std::string_view path, int line, std::string_view message);

} // namespace qorlang
