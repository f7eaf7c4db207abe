#include "PluralCategories.h"
#include "Unicode.h"

#include "qor_lang_manager/PluralRule.h"

#include <algorithm>
#include <cstring>

namespace qorlang {

namespace {

// The language subtag in lower case ("ru_RU", "ru-RU" -> "ru"), as the library looks its rule up.
std::string languageOf(std::u16string_view tag)
{
    std::string language = encodeUtf8(tag.substr(0, tag.find_first_of(u"-_.@")));
    for (char& c : language)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return language;
}

} // namespace

std::vector<std::string> pluralCategories(std::u16string_view tag)
{
    const std::string language = languageOf(tag);
    const auto* first = detail::kPluralCategoryRows;
    const auto* last = first + detail::kPluralCategoryRowCount;
    const auto* row = std::lower_bound(first, last, language, [](const detail::PluralCategoryRow& r, const std::string& key) {
        return std::strcmp(r.language, key.c_str()) < 0;
    });
    const std::string names = row != last && language == row->language ? row->categories : "one other";
    std::vector<std::string> out(1);
    for (char c : names) {
        if (c == ' ')
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

std::string defaultPluralRule(std::u16string_view tag)
{
    const char* rule = qor_lang::findPluralRule(languageOf(tag));
    return rule ? rule : std::string(qor_lang::kDefaultPluralRule);
}

} // namespace qorlang
