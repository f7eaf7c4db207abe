// merge against msgmerge's rules, pseudo-localisation as a property over many texts, and the
// pairing of extracted keys with their default texts.
#include "CatalogueTestSupport.h"
#include "Checks.h"
#include "Unicode.h"
#include "Workflow.h"

using namespace qorlang;
using namespace qorlang_test;

namespace {

Catalogue withEntries(std::vector<Entry> entries)
{
    Catalogue c;
    c.path = "x.ts";
    c.entries = std::move(entries);
    return c;
}

Entry obsolete(std::u16string key, std::u16string text)
{
    Entry e{std::move(key), std::move(text)};
    e.obsolete = true;
    return e;
}

} // namespace

TEST(Workflow, MergeFollowsMsgmerge)
{
    const Catalogue templ = withEntries({{u"Open a file", u""}, {u"Save", u""}, {u"menu\x04Quit", u""}, {u"Print", u""}, {u"Back", u""}, {u"Save", u""}});
    Entry reviewed{u"Print", u"Drucken"};
    reviewed.fuzzy = true;
    const Catalogue translation = withEntries({
        {u"Open file", u"Datei öffnen"},   // source changed: kept as fuzzy under the new key
        {u"Save", u"Speichern"},           // kept
        {u"Quit", u"Beenden"},             // another context: no match, obsolete
        reviewed,                          // still fuzzy
        {u"Delete everything", u"Alles löschen"}, // gone: obsolete
        {u"Unused", u""},                  // gone and never translated: dropped
        obsolete(u"Back", u"Zurück"),      // back again: revived for review
    });
    const Catalogue merged = mergeCatalogue(translation, templ);
    const MergeCounts counts = countChanges(translation, merged);
    EXPECT_EQ(pairsOf(merged), (Pairs{{u"Open a file", u"(fuzzy) Datei öffnen"},
                                      {u"Save", u"Speichern"},
                                      {u"menu\x04Quit", u""},
                                      {u"Print", u"(fuzzy) Drucken"},
                                      {u"Back", u"(fuzzy) Zurück"},
                                      {u"Quit", u"(obsolete)"},
                                      {u"Delete everything", u"(obsolete)"}}));
    EXPECT_EQ(counts.kept, 2u);
    EXPECT_EQ(counts.added, 1u);
    EXPECT_EQ(counts.fuzzy, 2u);
    EXPECT_EQ(counts.obsolete, 2u);
    // Merging again changes nothing.
    EXPECT_EQ(pairsOf(mergeCatalogue(merged, templ)), pairsOf(merged));

    EXPECT_DOUBLE_EQ(similarity(u"abc", u"abc"), 1.0);
    EXPECT_DOUBLE_EQ(similarity(u"", u"abc"), 0.0);
    EXPECT_GE(similarity(u"Open file", u"Open a file"), 0.6);
    EXPECT_LT(similarity(u"Open file", u"Print"), 0.6);
}

TEST(Workflow, PseudoKeepsPlaceholdersAndMarkup)
{
    // Property over texts mixing every kind of placeholder with words: the placeholders and the
    // markup survive unchanged, no plain ASCII letter is left outside them, the text grows by a
    // third and is bracketed; mirrored, every run of letters is wrapped in RLO ... PDF.
    const std::u16string pieces[] = {u"Open ", u"%s", u"%1$d", u"%-5.2ld", u"%%", u"%USER%", u"{name}", u"{{count}}",
                                     u"<b>", u"</b>", u"&amp;", u"\n", u" files in ", u"%<PRIu64>", u"Zz!", u"{{- x}}"};
    for (unsigned seed = 1; seed < 400; ++seed) {
        std::u16string text;
        for (unsigned k = seed, n = 0; n < 1 + seed % 6; ++n, k = k * 1103515245u + 12345u)
            text += pieces[(k >> 8) % std::size(pieces)];
        for (const bool rtl : {false, true}) {
            const std::u16string pseudo = pseudoText(text, rtl);
            SCOPED_TRACE(encodeUtf8(text));
            ASSERT_GE(pseudo.size(), 2u);
            EXPECT_EQ(pseudo.front(), u'[');
            EXPECT_EQ(pseudo.back(), u']');
            EXPECT_EQ(placeholdersOf(pseudo), placeholdersOf(text));
            for (const char* kept : {"<b>", "</b>", "&amp;", "%<PRIu64>"})
                EXPECT_EQ(encodeUtf8(text).find(kept) == std::string::npos, encodeUtf8(pseudo).find(kept) == std::string::npos) << kept;
            size_t plain = 0;
            for (char16_t c : pseudo)
                plain += (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
            size_t protectedLetters = 0;
            for (const std::u16string& piece : pieces)
                if (piece != u"Open " && piece != u" files in " && piece != u"Zz!")
                    for (size_t at = text.find(piece); at != std::u16string::npos; at = text.find(piece, at + piece.size()))
                        for (char16_t c : piece)
                            protectedLetters += (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
            EXPECT_LE(plain, protectedLetters);
            const size_t marks = rtl ? std::count(pseudo.begin(), pseudo.end(), u'\x202E') : 0;
            EXPECT_EQ(marks, rtl ? size_t(std::count(pseudo.begin(), pseudo.end(), u'\x202C')) : 0u);
        }
    }
    EXPECT_EQ(pseudoText(u"Open %s now", false), u"[Ǿƥḗƞ %s ƞǿẇ~~~~]");
    EXPECT_EQ(pseudoText(u"ab", true), u"[\x202Eȧƀ\x202C~]");
}

TEST(Workflow, DefaultTextsJoinTheirKeysByReference)
{
    const std::string keys = "msgid \"\"\nmsgstr \"\"\n\n#. TRANSLATORS: title\n#: a.cpp:3\nmsgid \"app.title\"\nmsgstr \"\"\n\n"
                             "#: a.cpp:4 b.cpp:9\nmsgid \"Open\"\nmsgstr \"\"\n\n#: a.cpp:5\nmsgid \"two\"\nmsgstr \"\"\n";
    const std::string defaults = "msgid \"\"\nmsgstr \"\"\n\n#: a.cpp:3\nmsgid \"\"\n\"My \\\"app\\\"\"\nmsgstr \"\"\n\n"
                                 "#: a.cpp:4\nmsgid \"Open\"\nmsgstr \"\"\n\n#: a.cpp:5\nmsgid \"one\"\nmsgstr \"\"\n\n"
                                 "#: a.cpp:5\nmsgid \"other\"\nmsgstr \"\"\n";
    EXPECT_EQ(addDefaultComments(keys, defaults),
              "msgid \"\"\nmsgstr \"\"\n\n#. TRANSLATORS: title\n#. default: \"My \\\"app\\\"\"\n#: a.cpp:3\nmsgid \"app.title\"\nmsgstr \"\"\n\n"
              "#: a.cpp:4 b.cpp:9\nmsgid \"Open\"\nmsgstr \"\"\n\n"
              "#. default: \"one\"\n#. default: \"other\"\n#: a.cpp:5\nmsgid \"two\"\nmsgstr \"\"\n");
    // pseudo reads a template with the defaults as texts: the program's words, not its keys.
    const Catalogue withDefaults = readPo("t.pot", withDefaultsAsTexts(addDefaultComments(keys, defaults)));
    EXPECT_EQ(pairsOf(withDefaults), (Pairs{{u"app.title", u"My \"app\""}, {u"Open", u""}, {u"two", u"one"}}));
}
