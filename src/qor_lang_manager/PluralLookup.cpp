#include "qor_lang_manager/PluralLookup.h"

#include "framework/objects/CObject.h"
#include "framework/text/CStringLocalizer.h"

#include <cstdint>
#include <string>
#include <utility>

namespace qor_lang {

namespace {

char16_t unitAt(const kore::CTextTable::Text& text, uint32_t i)
{
    return static_cast<char16_t>(text.bytes[2 * i] | text.bytes[2 * i + 1] << 8);
}

// A rule in UTF-16; std::nullopt when it does not parse or holds anything but ASCII.
std::optional<PluralRule> parseRule(std::u16string_view text)
{
    std::string ascii(text.size(), '\0');
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] >= 0x80)
            return std::nullopt;
        ascii[i] = static_cast<char>(text[i]);
    }
    return PluralRule::parse(ascii);
}

const PluralRule& defaultRule()
{
    static const PluralRule rule = *PluralRule::parse(kDefaultPluralRule);
    return rule;
}

// What a table with plural entries keeps beside them: their rule, parsed when the table was built.
// Immutable and owned by the table, so readers share it without a lock and it goes with the table.
class CTableRule final : public kore::CObject {
public:
    explicit CTableRule(PluralRule rule) : rule(std::move(rule)) {}
    const PluralRule rule;
};

const PluralRule& ruleOf(const kore::CTextTable& table)
{
    const auto* kept = dynamic_cast<const CTableRule*>(table.getCompanion());
    return kept ? kept->rule : defaultRule();
}

bool resolvePlural(const char16_t* key, uint32_t units, const char16_t* defaultText,
                   const kore::CStringLocalizer::CLookup& lookup, kore::TextCopier copy, char16_t*& answer)
{
    uint32_t digits = units;
    while (digits > 0 && key[digits - 1] >= u'0' && key[digits - 1] <= u'9')
        --digits;
    if (digits == units || digits == 0 || key[digits - 1] != kPluralMark)
        return false;
    unsigned long n = 0;
    for (uint32_t i = digits; i < units; ++i) {
        const unsigned long digit = static_cast<unsigned long>(key[i] - u'0');
        if (n > (static_cast<unsigned long>(-1) - digit) / 10)
            return false; // no count a host can pass
        n = n * 10 + digit;
    }
    kore::CTextTable::Text forms;
    const kore::CTextTable* table = nullptr;
    if (!lookup.find(key, digits, forms, &table) || !table)
        return false;
    // Form i runs from after the i-th U+0000 to the next one.
    unsigned wanted = ruleOf(*table).formFor(n);
    uint32_t start = 0;
    for (uint32_t i = 0; i < forms.units && wanted > 0; ++i) {
        if (unitAt(forms, i) == u'\0') {
            --wanted;
            start = i + 1;
        }
    }
    uint32_t end = start;
    while (end < forms.units && unitAt(forms, end) != u'\0')
        ++end;
    if (wanted == 0 && end > start)
        answer = copy(forms.bytes + 2 * start, end - start);
    else
        answer = copy(defaultText, std::char_traits<char16_t>::length(defaultText));
    return true;
}

} // namespace

std::u16string pluralRuleText(const std::optional<std::u16string>& fileRule, std::u16string_view tag)
{
    if (fileRule && parseRule(*fileRule))
        return *fileRule;
    const std::string language(tag.begin(), tag.end());
    const char* rule = findPluralRule(language);
    if (!rule)
        rule = findPluralRule(std::string_view(language).substr(0, language.find('-')));
    const std::string_view text = rule ? std::string_view(rule) : kDefaultPluralRule;
    return std::u16string(text.begin(), text.end());
}

void setPluralRule(kore::CTextTable::CBuilder& table, std::u16string_view ruleText)
{
    std::optional<PluralRule> rule = parseRule(ruleText);
    table.setCompanion(kore::make<CTableRule>(rule ? std::move(*rule) : defaultRule()));
}

void installPluralLookup()
{
    kore::CStringLocalizer::setMissResolver(&resolvePlural);
}

} // namespace qor_lang
