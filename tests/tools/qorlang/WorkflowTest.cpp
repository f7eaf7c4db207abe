// merge against msgmerge's rules, pseudo-localisation as a property over many texts, and the
// pairing of extracted keys with their default texts.
#include "Workflow.h"
#include "CatalogueTestSupport.h"
#include "Checks.h"
#include "Unicode.h"

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

Entry plural(std::u16string key, std::u16string pluralSource, std::vector<std::u16string> forms)
{
    return Entry{std::move(key),          forms.front(),   0, false, false, true, false,
                 std::move(pluralSource), std::move(forms)};
}

ptrdiff_t asciiLetters(std::u16string_view s)
{
    return std::count_if(s.begin(), s.end(), [](char16_t c) { return (c | 0x20) >= u'a' && (c | 0x20) <= u'z'; });
}

} // namespace

TEST(Workflow, PluralFormsThroughMergeAndInit)
{
    // The template's plural entries have two empty forms (a .pot); a translation keeps its own
    // forms, new ones get its language's count, and a changed shape or plural source is fuzzy.
    const Catalogue templ = withEntries({plural(u"%d file", u"%d files", {u"", u""}),
                                         plural(u"%d dir", u"%d dirs found", {u"", u""}),
                                         plural(u"%d item", u"%d items", {u"", u""}),
                                         {u"%d page", u""},
                                         plural(u"%d new", u"%d new ones", {u"", u""}),
                                         plural(u"%d photo", u"%d photos", {u"", u""})});
    Catalogue translation = withEntries({plural(u"%d file", u"%d files", {u"a", u"b", u"c"}),
                                         plural(u"%d dir", u"%d dirs", {u"d", u"e", u"f"}),
                                         {u"%d item", u"x"},
                                         plural(u"%d page", u"%d pages", {u"p", u"q", u"r"}),
                                         plural(u"%d photo", u"%d photos", {u"g", u"h", u"i"})});
    translation.entries.back().obsolete = true;
    translation.language = u"ru_RU";
    const Catalogue merged = mergeCatalogue(translation, templ);
    EXPECT_EQ(linesOf(merged), (Lines{"%d file = a [a|b|c] / %d files", "%d dir = (fuzzy) d [d|e|f] / %d dirs found",
                                      "%d item = (fuzzy) x [x||] / %d items", "%d page = (fuzzy) p",
                                      "%d new =  [||] / %d new ones", "%d photo = (fuzzy) g [g|h|i] / %d photos"}));
    EXPECT_EQ(linesOf(mergeCatalogue(merged, templ)), linesOf(merged));
    // A rule of the translation's own wins over its language's.
    translation.pluralForms = u"nplurals=2; plural=(n != 1);";
    EXPECT_EQ(linesOf(mergeCatalogue(translation, templ))[4], "%d new =  [|] / %d new ones");

    const std::pair<std::u16string, size_t> languages[] = {
        {u"ru-RU", 3}, {u"fr-FR", 3}, {u"ja-JP", 1}, {u"ar-EG", 6}, {u"xx-YY", 2}};
    for (const auto& [tag, count] : languages) {
        const Catalogue started = initCatalogue(templ, tag);
        EXPECT_EQ(started.entries[0].forms, std::vector<std::u16string>(count)) << encodeUtf8(tag);
        EXPECT_EQ(started.entries[0].pluralSource, u"%d files");
        EXPECT_TRUE(started.entries[3].forms.empty());
    }
}

TEST(Workflow, MergeFollowsMsgmerge)
{
    const Catalogue templ = withEntries({{u"Open a file", u""},
                                         {u"Save", u""},
                                         {u"menu\x04Quit", u""},
                                         {u"Print", u""},
                                         {u"Back", u""},
                                         {u"Save", u""}});
    const Catalogue translation = withEntries({
        {u"Open file", u"Datei öffnen"}, // source changed: kept as fuzzy under the new key
        {u"Save", u"Speichern"}, // kept
        {u"Quit", u"Beenden"}, // another context: no match, obsolete
        {u"Print", u"Drucken", 0, true}, // still fuzzy
        {u"Delete everything", u"Alles löschen"}, // gone: obsolete
        {u"Unused", u""}, // gone and never translated: dropped
        {u"Back", u"Zurück", 0, false, true}, // back again: revived for review
    });
    const Catalogue merged = mergeCatalogue(translation, templ);
    const MergeCounts counts = countChanges(translation, merged);
    EXPECT_EQ(linesOf(merged), (Lines{"Open a file = (fuzzy) Datei öffnen", "Save = Speichern",
                                      "menu␄Quit = ", "Print = (fuzzy) Drucken", "Back = (fuzzy) Zurück",
                                      "Quit = (obsolete) Beenden", "Delete everything = (obsolete) Alles löschen"}));
    EXPECT_EQ(counts.kept, 2u);
    EXPECT_EQ(counts.added, 1u);
    EXPECT_EQ(counts.fuzzy, 2u);
    EXPECT_EQ(counts.obsolete, 2u);
    // Merging again changes nothing.
    EXPECT_EQ(linesOf(mergeCatalogue(merged, templ)), linesOf(merged));

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
    const std::u16string pieces[] = {u"Open ",      u"%s",        u"%1$d", u"%-5.2ld", u"%%",    u"%USER%",
                                     u"{name}",     u"{{count}}", u"<b>",  u"</b>",    u"&amp;", u"\n",
                                     u" files in ", u"%<PRIu64>", u"Zz!",  u"{{- x}}"};
    for (unsigned seed = 1; seed < 400; ++seed) {
        std::u16string text;
        for (unsigned k = seed, n = 0; n < 1 + seed % 6; ++n, k = k * 1103515245u + 12345u)
            text += pieces[(k >> 8) % std::size(pieces)];
        for (const bool rtl : {false, true}) {
            const std::u16string pseudo = pseudoText(text, rtl);
            SCOPED_TRACE(encodeUtf8(text));
            EXPECT_TRUE(pseudo.starts_with(u"[") && pseudo.ends_with(u"]"));
            EXPECT_EQ(placeholdersOf(pseudo), placeholdersOf(text));
            for (const char* kept : {"<b>", "</b>", "&amp;", "%<PRIu64>"})
                EXPECT_EQ(encodeUtf8(text).find(kept) == std::string::npos,
                          encodeUtf8(pseudo).find(kept) == std::string::npos)
                    << kept;
            ptrdiff_t protectedLetters = 0;
            for (const std::u16string& piece : pieces)
                if (piece != u"Open " && piece != u" files in " && piece != u"Zz!")
                    for (size_t at = text.find(piece); at != std::u16string::npos;
                         at = text.find(piece, at + piece.size()))
                        protectedLetters += asciiLetters(piece);
            EXPECT_LE(asciiLetters(pseudo), protectedLetters);
            EXPECT_EQ(std::count(pseudo.begin(), pseudo.end(), u'\x202E'),
                      std::count(pseudo.begin(), pseudo.end(), u'\x202C'));
        }
    }
    EXPECT_EQ(pseudoText(u"Open %s now", false), u"[Ǿƥḗƞ %s ƞǿẇ~~~~]");
    EXPECT_EQ(pseudoText(u"ab", true), u"[\x202Eȧƀ\x202C~]");
}

TEST(Workflow, DefaultTextsJoinTheirKeysByReference)
{
    const std::string keys =
        "msgid \"\"\nmsgstr \"\"\n\n#. TRANSLATORS: title\n#: a.cpp:3\nmsgid \"app.title\"\nmsgstr \"\"\n\n"
        "#: a.cpp:4 b.cpp:9\nmsgid \"Open\"\nmsgstr \"\"\n\n#: a.cpp:5\nmsgid \"two\"\nmsgstr \"\"\n";
    const std::string defaults =
        "msgid \"\"\nmsgstr \"\"\n\n#: a.cpp:3\nmsgid \"\"\n\"My \\\"app\\\"\"\nmsgstr \"\"\n\n"
        "#: a.cpp:4\nmsgid \"Open\"\nmsgstr \"\"\n\n#: a.cpp:5\nmsgid \"one\"\nmsgstr \"\"\n\n"
        "#: a.cpp:5\nmsgid \"other\"\nmsgstr \"\"\n";
    EXPECT_EQ(addDefaultComments(keys, defaults),
              "msgid \"\"\nmsgstr \"\"\n\n#. TRANSLATORS: title\n#. default: \"My \\\"app\\\"\"\n#: a.cpp:3\nmsgid "
              "\"app.title\"\nmsgstr \"\"\n\n"
              "#: a.cpp:4 b.cpp:9\nmsgid \"Open\"\nmsgstr \"\"\n\n"
              "#. default: \"one\"\n#. default: \"other\"\n#: a.cpp:5\nmsgid \"two\"\nmsgstr \"\"\n");
    // pseudo reads a template with the defaults as texts: the program's words, not its keys.
    const Catalogue withDefaults = readPo("t.pot", withDefaultsAsTexts(addDefaultComments(keys, defaults)));
    EXPECT_EQ(linesOf(withDefaults), (Lines{"app.title = My \"app\"", "Open = ", "two = one"}));
}
