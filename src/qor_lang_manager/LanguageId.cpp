#include "LanguageId.h"

#include <string_view>

#include "AsciiCase.h"
#include "LanguageCodeTable.h"

namespace qor_lang {

namespace {

// "deu" stays "deu"; "ger/deu" gives "deu"; anything else has no code.
const char16_t* effectiveCode(const char16_t* field) noexcept
{
    if (field == nullptr) {
        return nullptr;
    }
    switch (std::char_traits<char16_t>::length(field)) {
    case 3: return field;
    case 7: return field + 4;
    default: return nullptr;
    }
}

bool isEmpty(const char16_t* text) noexcept
{
    return text == nullptr || *text == u'\0';
}

void setLanguage(LanguageId& id, const LanguageCodeRow& row) noexcept
{
    id.iso639_2 = row.iso639_2;
    id.iso639_1 = row.iso639_1;
    id.englishName = row.englishName;
    id.valid = true;
}

void setCountry(LanguageId& id, const CountryCodeRow& row) noexcept
{
    id.countryCode = row.code;
    id.countryName = row.englishName;
    id.valid = true;
}

// Scans for the first language row whose selected field equals the text, ignoring case.
void findLanguage(LanguageId& id, std::u16string_view text, const char16_t* LanguageCodeRow::*field) noexcept
{
    for (int32_t i = 0; i < LanguageCodeTableCount; ++i) {
        if (equalsIgnoreAsciiCase(LanguageCodeTable[i].*field, text)) {
            setLanguage(id, LanguageCodeTable[i]);
            return;
        }
    }
}

void findCountry(LanguageId& id, std::u16string_view text, const char16_t* CountryCodeRow::*field,
                 bool ignoreCase) noexcept
{
    for (int32_t i = 0; i < CountryCodeTableCount; ++i) {
        const std::u16string_view candidate = CountryCodeTable[i].*field;
        if (ignoreCase ? equalsIgnoreAsciiCase(candidate, text) : candidate == text) {
            setCountry(id, CountryCodeTable[i]);
            return;
        }
    }
}

// Splits like wcstok with "-" as the delimiter: runs of "-" are one separator and there are
// no empty tokens.
class TagTokens {
public:
    explicit TagTokens(std::u16string_view text) noexcept : rest_(text) {}

    bool next(std::u16string_view& token) noexcept
    {
        const std::size_t start = rest_.find_first_not_of(u'-');
        if (start == std::u16string_view::npos) {
            rest_ = {};
            return false;
        }
        rest_.remove_prefix(start);
        const std::size_t end = rest_.find(u'-');
        token = rest_.substr(0, end);
        rest_.remove_prefix(end == std::u16string_view::npos ? rest_.size() : end);
        return true;
    }

private:
    std::u16string_view rest_;
};

void parseTag(LanguageId& id, std::u16string_view text) noexcept
{
    TagTokens tokens(text);
    std::u16string_view token;
    int tokenCount = 0;

    if (tokens.next(token)) {
        ++tokenCount;
        for (int32_t i = 0; i < LanguageCodeTableCount; ++i) {
            const LanguageCodeRow& row = LanguageCodeTable[i];
            // The two-letter code is tried before the terminology code of the same row.
            if (equalsIgnoreAsciiCase(row.iso639_1, token)) {
                setLanguage(id, row);
                break;
            }
            const char16_t* code = effectiveCode(row.iso639_2);
            if (code != nullptr && equalsIgnoreAsciiCase(code, token)) {
                setLanguage(id, row);
                break;
            }
        }
    }
    if (tokens.next(token)) {
        ++tokenCount;
        if (id.valid) {
            id.valid = false;
            findCountry(id, token, &CountryCodeRow::code, true);
        }
    }
    if (tokens.next(token)) {
        ++tokenCount;
    }

    // Only language-COUNTRY is a tag; a bare language is not.
    if (tokenCount != 2) {
        LanguageId invalid;
        invalid.valid = false;
        id = invalid;
    }
}

} // namespace

LanguageId::LanguageId(const char16_t* text, LanguageTagMode mode) noexcept : valid(false)
{
    if (isEmpty(text)) {
        return;
    }
    switch (mode) {
    case LanguageTagMode::LanguageName: findLanguage(*this, text, &LanguageCodeRow::englishName); break;
    case LanguageTagMode::Iso639_1: findLanguage(*this, text, &LanguageCodeRow::iso639_1); break;
    case LanguageTagMode::Iso639_2: findLanguage(*this, text, &LanguageCodeRow::iso639_2); break;
    case LanguageTagMode::CountryName: findCountry(*this, text, &CountryCodeRow::englishName, true); break;
    case LanguageTagMode::CountryCode: findCountry(*this, text, &CountryCodeRow::code, false); break;
    case LanguageTagMode::Tag: parseTag(*this, text); break;
    }
}

const char16_t* LanguageId::effectiveIso639_2() const noexcept
{
    return effectiveCode(iso639_2);
}

bool LanguageId::hasLanguage() const noexcept
{
    return !isEmpty(effectiveIso639_2());
}

bool LanguageId::hasCountry() const noexcept
{
    return !isEmpty(countryName);
}

std::u16string LanguageId::getTag() const
{
    std::u16string language;
    if (!isEmpty(iso639_1)) {
        language = iso639_1;
    } else if (const char16_t* code = effectiveIso639_2()) {
        language = code;
    }
    if (isEmpty(countryCode)) {
        return language;
    }
    if (language.empty()) {
        return {};
    }
    return language + u'-' + countryCode;
}

} // namespace qor_lang
