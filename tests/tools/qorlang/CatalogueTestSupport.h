#pragma once
// What the format tests share: the descriptive data every writer must carry, set once and
// compared once; entries as comparable pairs; the message of a refused input.

#include "Catalogue.h"
#include "Formats.h"

#include "framework/errors/CException.h"
#include "framework/text/IString.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qorlang_test {

using Pairs = std::vector<std::pair<std::u16string, std::u16string>>;

// Key and text of every entry in file order, the text marked "(fuzzy) " or replaced by
// "(obsolete)" where the entry is one.
inline Pairs pairsOf(const qorlang::Catalogue& c)
{
    Pairs out;
    for (const qorlang::Entry& e : c.entries)
        out.emplace_back(e.key, e.obsolete ? u"(obsolete)" : e.fuzzy ? u"(fuzzy) " + e.text : e.text);
    return out;
}

inline Pairs sorted(Pairs pairs)
{
    std::sort(pairs.begin(), pairs.end());
    return pairs;
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

// The writers spell the tag their own way ("de_DE" in PO and TS); the tag is compared as the
// library reads it.
inline void expectSameDescription(const qorlang::Catalogue& back, const qorlang::Catalogue& c)
{
    EXPECT_EQ(back.author, c.author);
    EXPECT_EQ(back.comment, c.comment);
    EXPECT_EQ(back.appId, c.appId);
    EXPECT_EQ(back.nativeName, c.nativeName);
    EXPECT_EQ(back.nativeSubName, c.nativeSubName);
    EXPECT_EQ(back.version, c.version);
    ASSERT_TRUE(back.language);
    EXPECT_EQ(qorlang::normalisedTag(*back.language), u"de-DE");
}

} // namespace qorlang_test
