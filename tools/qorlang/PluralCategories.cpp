#include "PluralCategories.h"
#include "Unicode.h"

#include <algorithm>
#include <cstring>

namespace qorlang {

std::vector<std::string> pluralCategories(std::u16string_view tag)
{
    std::string whole = encodeUtf8(tag.substr(0, tag.find_first_of(u".@")));
    for (char& c : whole)
        c = c == '_' ? '-' : static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    const auto* first = detail::kPluralCategoryRows;
    const auto* last = first + detail::kPluralCategoryRowCount;
    auto find = [&](const std::string& language) -> const char* {
        const auto* row =
            std::lower_bound(first, last, language, [](const detail::PluralCategoryRow& r, const std::string& key) {
                return std::strcmp(r.language, key.c_str()) < 0;
            });
        return row != last && language == row->language ? row->categories : nullptr;
    };
    const char* found = find(whole);
    if (!found)
        found = find(whole.substr(0, whole.find('-')));
    const std::string names = found ? found : "one other";
    std::vector<std::string> out(1);
    for (char c : names) {
        if (c == ' ')
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

} // namespace qorlang
