#pragma once
// The translator's cycle around compile: extract keys from sources into a template, start a
// language from it, merge a changed template into translations, pseudo-localise.

#include "Catalogue.h"

#include <string>
#include <vector>

namespace qorlang {

// Runs xgettext over C and C++ `sources` for the library's calls and writes the template
// `output` (.pot); the default texts of tr/trc/QOR_LANG2_getLocalString become extracted
// comments ("#. default: ...") where they differ from the key.
void extractTemplate(const std::vector<std::string>& sources, const std::string& output,
                     const std::string& packageName);

// Adds the default-text comments of `defaults` (xgettext's template of the defaults) to
// `keys` (its template of the keys), pairing entries by their source references.
std::string addDefaultComments(const std::string& keys, const std::string& defaults);

// A template whose empty texts are replaced by the entries' "#. default:" texts, so that a reader
// sees the program's own words (for pseudo).
std::string withDefaultsAsTexts(const std::string& pot);

struct MergeCounts {
    size_t kept = 0, added = 0, fuzzy = 0, obsolete = 0;
};
// `translation` brought up to `templ`: the template's entries in its order, with the
// translation of the same key; a new key takes, as fuzzy, the translation of a removed key
// whose source text is similar; removed keys stay at the end, obsolete. A plural entry keeps its
// forms, or gets as many empty ones as the translation's plural rule counts; one whose plural
// source was added, changed or dropped is fuzzy.
Catalogue mergeCatalogue(const Catalogue& translation, const Catalogue& templ);
// What a merge did, whichever program did it: entries kept, added untranslated, to be reviewed
// (fuzzy), made obsolete.
MergeCounts countChanges(const Catalogue& before, const Catalogue& after);

// A new translation of `templ` for `tag`: every entry untranslated, a plural one with as many
// empty forms as `tag`'s plural rule counts.
Catalogue initCatalogue(const Catalogue& templ, const std::u16string& tag);

// 0..1, how alike two source texts are (1: equal), as gettext's fuzzy matching judges.
double similarity(std::u16string_view a, std::u16string_view b);

// Pseudo-localisation: letters accented, about 35 % longer, in brackets, optionally mirrored
// right to left; placeholders and markup kept as they are.
std::u16string pseudoText(std::u16string_view text, bool rightToLeft);

} // namespace qorlang
