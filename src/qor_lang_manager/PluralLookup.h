#pragma once
// Plural forms at run time. A plural entry of a language file has the key K + U+0005 and the text
// f0 U+0000 f1 U+0000 ... (one form per plural category of the file's rule); a host asks for the
// form for n with the key K + U+0005 + decimal(n), which no table holds, so the string localizer
// hands it to this lookup on its miss path and a plain look-up costs nothing more.

#include "framework/text/CTextTable.h"
#include "qor_lang_manager/PluralRule.h"

#include <optional>
#include <string>
#include <string_view>

namespace qor_lang {

inline constexpr char16_t kPluralMark = u'\u0005';
// The "xdid" key of a file's own rule, in gettext's notation.
inline constexpr std::u16string_view kPluralFormsExtra = u"QOR_LANG_PLURAL_FORMS";

// The rule a file's plural entries follow: its own `fileRule` when that parses, else the CLDR rule
// of its tag (the whole tag, then the language part), else gettext's default "n != 1".
std::u16string pluralRuleText(const std::optional<std::u16string>& fileRule, std::u16string_view tag);

// Makes the table being built keep `ruleText` (gettext's notation; "n != 1" when it does not parse),
// parsed here once, as the rule its plural entries follow: a request for a form then parses nothing.
void setPluralRule(kore::CTextTable::CBuilder& table, std::u16string_view ruleText);

// Makes the string localizer answer K + U+0005 + decimal(n): form formFor(n) of the entry K + U+0005
// (of the table that holds it, under that table's rule; "n != 1" for a table built without one); the
// caller's default when that form is missing or empty. Keys of other shapes, and counts without an entry, go on to the localizer's
// fallback and the default as before. Idempotent.
void installPluralLookup();

} // namespace qor_lang
