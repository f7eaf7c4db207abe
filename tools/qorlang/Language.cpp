#include "Language.h"
#include "Formats.h"
#include "Unicode.h"

#include <algorithm>
#include <vector>

namespace qorlang {

namespace {

bool allLetters(std::u16string_view s)
{
    return std::all_of(s.begin(), s.end(),
                       [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); });
}

std::u16string lower(std::u16string_view s)
{
    std::u16string out(s);
    for (char16_t& c : out)
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c + 32);
    return out;
}

const char16_t* defaultCountry(std::u16string_view language)
{
    const DefaultCountry* end = kDefaultCountries + kDefaultCountryCount;
    const DefaultCountry* it =
        std::lower_bound(kDefaultCountries, end, language,
                         [](const DefaultCountry& row, std::u16string_view l) { return row.language < l; });
    return it != end && it->language == language ? it->country : nullptr;
}

} // namespace

TagChoice tagFor(std::u16string_view written)
{
    TagChoice out;
    const std::string shown = "\"" + encodeUtf8(written) + "\"";
    std::u16string_view rest = written;
    std::u16string modifier;
    if (const size_t at = rest.find(u'@'); at != std::u16string_view::npos) {
        modifier = lower(rest.substr(at + 1));
        rest = rest.substr(0, at);
    }
    rest = rest.substr(0, rest.find(u'.'));
    std::vector<std::u16string_view> parts;
    for (size_t start = 0; start <= rest.size();) {
        const size_t end = std::min(rest.find_first_of(u"-_", start), rest.size());
        parts.push_back(rest.substr(start, end - start));
        start = end + 1;
    }
    const auto refuse = [&](const std::string& why) {
        out.problem = "the language " + shown + " " + why + "; give the tag to ship it under with --language";
        return out;
    };
    if (!modifier.empty() && modifier != u"euro")
        return refuse("has the modifier @" + encodeUtf8(modifier) +
                      ", and a language-COUNTRY tag cannot tell that variant from the language's usual one");
    if (parts.size() >= 2 && parts[1].size() == 4 && allLetters(parts[1]))
        return refuse("names the script " + encodeUtf8(parts[1]) +
                      ", and a language-COUNTRY tag cannot tell it from the language's usual script");
    if (parts.size() == 1 && (parts[0].size() == 2 || parts[0].size() == 3) && allLetters(parts[0])) {
        const std::u16string language = lower(parts[0]);
        const char16_t* country = defaultCountry(language);
        if (!country)
            return refuse("has no country and no usual one is known");
        out.tag = normalisedTag(language + u"-" + country);
        out.completed = true;
        if (!out.tag)
            return refuse("is unknown to the library's language table");
        return out;
    }
    if (parts.size() == 2)
        out.tag = normalisedTag(std::u16string(parts[0]) + u"-" + std::u16string(parts[1]));
    if (!out.tag)
        return refuse("is not a language-COUNTRY tag the library knows, such as de-DE");
    return out;
}

std::optional<std::u16string> tagOfFileName(std::string_view name)
{
    const std::string_view suffix = ".qorlang";
    if (name.size() <= suffix.size() || name.substr(name.size() - suffix.size()) != suffix)
        return std::nullopt;
    name.remove_suffix(suffix.size());
    const size_t dash = name.rfind('-');
    if (dash == std::string_view::npos || dash == 0)
        return std::nullopt;
    const size_t before = name.rfind('-', dash - 1);
    const std::string_view tag = name.substr(before == std::string_view::npos ? 0 : before + 1);
    auto text = decodeUtf8(tag);
    return text ? normalisedTag(*text) : std::nullopt;
}

} // namespace qorlang
