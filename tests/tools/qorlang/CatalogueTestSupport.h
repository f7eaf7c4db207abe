#pragma once
// What the qorlang tests share: a catalogue's entries as comparable lines, the descriptive data
// every writer must carry (set once, compared once), and the message of a refused input.

#include "Catalogue.h"
#include "Formats.h"
#include "Unicode.h"

#include "framework/errors/CException.h"
#include "framework/text/IString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace qorlang_test {

using Lines = std::vector<std::string>;

// One UTF-8 line per entry in file order: "key = text", the text marked "(obsolete) " and "(fuzzy) ",
// then a plural entry's forms and plural source, " [f0|f1] / source"; U+0004 (context) shows as "␄".
inline Lines linesOf(const qorlang::Catalogue& c, bool sort = false)
{
    Lines out;
    for (const qorlang::Entry& e : c.entries) {
        std::string key = qorlang::encodeUtf8(e.key);
        for (size_t at; (at = key.find('\x04')) != std::string::npos;)
            key.replace(at, 1, "␄");
        std::string line =
            key + " = " + (e.obsolete ? "(obsolete) " : "") + (e.fuzzy ? "(fuzzy) " : "") + qorlang::encodeUtf8(e.text);
        if (e.plural || !e.forms.empty()) {
            line += e.plural ? " [" : " (not plural) [";
            for (size_t i = 0; i < e.forms.size(); ++i)
                line += (i ? "|" : "") + qorlang::encodeUtf8(e.forms[i]);
            line += "] / " + qorlang::encodeUtf8(e.pluralSource);
        }
        out.push_back(line);
    }
    if (sort)
        std::sort(out.begin(), out.end());
    return out;
}

// The description of the framework exception `read` throws, "(no error)" when it throws none.
template <class Read>
std::string errorOf(const Read& read)
{
    try {
        read();
    } catch (const kore::CException& e) {
        return e.getDescription()->toUTF8();
    }
    return "(no error)";
}

// A catalogue at `path` with every descriptive field set, quotes, markup and line breaks included.
inline qorlang::Catalogue describedCatalogue(const std::string& path)
{
    qorlang::Catalogue c;
    c.path = path;
    c.language = u"de-DE";
    c.author = u"Änne \"A\" & Co <a@b>";
    c.comment = u"line one\nline two";
    c.appId = u"demo";
    c.nativeName = u"Deutsch";
    c.nativeSubName = u"Deutschland";
    c.version = 9;
    return c;
}

// The descriptive data to compare; the writers spell the tag their own way ("de_DE" in PO and TS), so
// it is compared as the library reads it.
inline auto descriptionOf(const qorlang::Catalogue& c)
{
    return std::tuple(c.author, c.comment, c.appId, c.nativeName, c.nativeSubName, c.version,
                      c.language ? qorlang::normalisedTag(*c.language) : std::nullopt);
}

} // namespace qorlang_test
