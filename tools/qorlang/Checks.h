#pragma once
// What "check", "stats" and "info" find out about a catalogue or a language file.

#include "Catalogue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qorlang {

// The placeholders a text holds: printf fields ("%s", "%-5ld", "%1$s"; "%%" is none), "%NAME%"
// names and "{name}" / "{{name}}" fields. printf fields are numbered by their argument ("%s %d"
// and "%2$d %1$s" both hold "%1$s" and "%2$d"): a translation may reorder them by number only.
struct Placeholders {
    std::vector<std::string> printf;
    std::vector<std::string> named;
    bool operator==(const Placeholders&) const = default;
};
Placeholders placeholdersOf(std::u16string_view text);
// "missing %d, extra %s" between what `expected` holds and what `actual` holds.
std::string describeDifference(const Placeholders& expected, const Placeholders& actual);

struct Finding {
    int line = 0; // 0: the file as a whole
    bool error = false;
    std::string message;
};

// The findings for `catalogue` (read from `path`), against `reference` when given. For a
// language file, `languageFile` holds its bytes so that duplicate keys are answered as the
// library answers them.
std::vector<Finding> checkCatalogue(const Catalogue& catalogue, const Catalogue* reference,
                                    const std::vector<uint8_t>* languageFile);

struct Stats {
    size_t entries = 0; // distinct keys
    size_t translated = 0; // keys a compiled file answers
    size_t fuzzy = 0;
    size_t missing = 0; // reference keys without a translation here
    double percent = 0;
};
Stats statsOf(const Catalogue& catalogue, const Catalogue* reference);

// Shortens a key or text for a message: one line, at most 60 characters.
std::string quoted(std::u16string_view text);

} // namespace qorlang
