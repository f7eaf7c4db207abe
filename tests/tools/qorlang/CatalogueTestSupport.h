#pragma once
// The descriptive data every writer must carry, set once and compared once.

#include "Catalogue.h"
#include "Formats.h"

#include <gtest/gtest.h>

namespace qorlang_test {

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
