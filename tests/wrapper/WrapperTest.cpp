// The C++ layer over the C interface, against a library that keeps books (FakeLibrary.cpp):
// every string and handle it returns is given back exactly once, whatever moves happen in
// between, and text reaches the C functions as the UTF-16 the caller meant. Built as C++17, the
// oldest standard the layer supports.
#include "FakeLibrary.h"

#include "qor_lang2.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>
#include <utility>

namespace {

using fake_lib::books;

class Wrapper : public ::testing::Test {
protected:
    void SetUp() override { books() = {}; }
    // Nothing still out, nothing given back twice.
    void TearDown() override
    {
        EXPECT_TRUE(books().liveStrings.empty()) << books().liveStrings.size() << " strings leaked";
        EXPECT_TRUE(books().liveHandles.empty()) << books().liveHandles.size() << " handles leaked";
        EXPECT_EQ(books().badFrees, 0u);
    }
};

TEST_F(Wrapper, EveryReturnedStringIsGivenBackOnceWhateverHappensToItsOwner)
{
    using qor_lang2::String;
    const std::vector<std::pair<const char*, std::function<String()>>> sources = {
        {"currentLanguage", [] { return qor_lang2::currentLanguage(); }},
        {"language", [] { return qor_lang2::language("app", 1); }},
        {"findLocalizedFile", [] { return qor_lang2::findLocalizedFile(u"file:///help/", u"help_", u"", u".txt"); }},
        {"a file accessor", [] { return qor_lang2::languageFile(u"app", 0).author(); }},
    };
    for (const auto& [name, make] : sources) {
        SCOPED_TRACE(name);
        {
            String first = make();
            ASSERT_TRUE(first);
            String second(std::move(first));
            EXPECT_FALSE(first);
            String third = make();
            third = std::move(second); // the owner's old string goes back, the moved one stays
            EXPECT_EQ(books().liveStrings.size(), 1u);
            third = std::move(third);
            EXPECT_EQ(books().liveStrings.size(), 1u) << "a self-move keeps the string";
            EXPECT_FALSE(third.u16().empty());
        }
        EXPECT_TRUE(books().liveStrings.empty());

        String kept = make();
        qor_lang2::Char* handedOver = kept.release();
        EXPECT_FALSE(kept);
        EXPECT_EQ(books().liveStrings.count(handedOver), 1u) << "release does not free";
        QOR_LANG2_freeWideString(handedOver);
    }
}

TEST_F(Wrapper, AFileHandleIsGivenBackOnceAndANullOneAsksNothing)
{
    qor_lang2::File moved;
    {
        qor_lang2::File file = qor_lang2::languageFile("app", 0);
        ASSERT_TRUE(file);
        EXPECT_EQ(file.nativeName().utf8(), "Deutsch");
        EXPECT_EQ(file.author().utf8(), "Ünal");
        EXPECT_TRUE(file.comment()) << "an empty item is an empty string, not a null one";
        moved = std::move(file);
    }
    EXPECT_EQ(books().liveHandles.size(), 1u);
    moved = qor_lang2::languageFile("app", 1); // the first handle goes back
    EXPECT_EQ(books().liveHandles.size(), 1u);
    moved.reset();
    EXPECT_TRUE(books().liveHandles.empty());

    const qor_lang2::File missing = qor_lang2::languageFile("app", 2);
    EXPECT_FALSE(missing);
    const std::size_t returned = books().stringsReturned;
    EXPECT_FALSE(missing.languageId());
    EXPECT_EQ(books().stringsReturned, returned) << "a null handle is not passed to the library";
}

TEST_F(Wrapper, TextReachesTheLibraryAsUtf16AndComesBackInTheCallersForm)
{
    EXPECT_EQ(qor_lang2::tr("greeting", "Hello"), "Grüß Gott, Привіт 🌍");
    EXPECT_EQ(qor_lang2::tr(u"greeting", u"Hello"), u"Grüß Gott, Привіт \U0001F30D");
    EXPECT_EQ(qor_lang2::tr("ключ", "значение €𝄞"), "значение €𝄞");
    EXPECT_EQ(books().lastArguments, (std::vector<std::u16string>{u"ключ", u"значение €𝄞"}));

    // Views that are not zero-terminated pass only their own characters.
    const std::string_view keyAndMore("greetingXYZ", 8);
    EXPECT_EQ(qor_lang2::tr(keyAndMore, std::string_view("Hi!", 2)), "Grüß Gott, Привіт 🌍");
    EXPECT_EQ(books().lastArguments, (std::vector<std::u16string>{u"greeting", u"Hi"}));

    EXPECT_EQ(qor_lang2::add("/opt/app/språk", "app"), 0);
    EXPECT_EQ(books().lastArguments, (std::vector<std::u16string>{u"/opt/app/språk", u"app"}));
    EXPECT_EQ(qor_lang2::setCurrentLanguage("de"), 20) << "the library's answer, unchanged";
}

// What trn, trc and trnc ask the library: the key form it reads (context U+0004 key, key U+0005
// count) and the default ngettext would answer, in both kinds of text.
TEST_F(Wrapper, PluralAndContextAskForTheKeyTheLibraryReads)
{
    using namespace qor_lang2;
    // No context: trn; no count: trc, whose `b` is the default; both: trnc.
    const struct {
        const char *context, *a, *b;
        std::optional<unsigned long> n;
        std::vector<std::u16string> asked;
    } rows[] = {
        {nullptr, "{0} Datei", "{0} Dateien", 1, {u"{0} Datei\u00051", u"{0} Datei"}},
        {nullptr, "file", "files", 0, {u"file\u00050", u"files"}},
        {nullptr, "ключ", "ключи", -1ul, {u"ключ\u0005" + toUtf16(std::to_string(-1ul)), u"ключи"}},
        {"menu", "Open", "Öffnen", std::nullopt, {u"menu\u0004Open", u"Öffnen"}},
        {"", "k", "", std::nullopt, {u"\u0004k", u""}},
        {"mail", "message", "messages", 1, {u"mail\u0004message\u00051", u"message"}},
        {"mail", "message", "messages", 21, {u"mail\u0004message\u000521", u"messages"}},
    };
    for (const auto& row : rows) {
        const auto ask = [&](auto convert) {
            return !row.context ? trn(convert(row.a), convert(row.b), *row.n)
                   : !row.n     ? trc(convert(row.context), convert(row.a), convert(row.b))
                                : trnc(convert(row.context), convert(row.a), convert(row.b), *row.n);
        };
        EXPECT_EQ(ask([](const char* s) { return std::string_view(s); }), toUtf8(row.asked[1]))
            << "the stand-in answers the default";
        EXPECT_EQ(books().lastArguments, row.asked);
        EXPECT_EQ(ask([](const char* s) { return toUtf16(s); }), row.asked[1]);
        EXPECT_EQ(books().lastArguments, row.asked);
    }
}

TEST(Format, PlacesArgumentsByNumberAndLeavesWhatItCannotFillAsWritten)
{
    const std::pair<const char*, const char*> rows[] = {
        {"{0} of {1}", "7 of Ünal"},
        {"{1} von {0}, {0}!", "Ünal von 7, 7!"},
        {"{2}{3}{4}", "-1.5ab"},
        {"{{0}} {{ }} {{{0}}}", "{0} { } {7}"},
        {"{5} {x} {-1} {} { 0} {0 } {0:d}", "{5} {x} {-1} {} { 0} {0 } {0:d}"},
        {"{ } { }} }{ } {", "{ } { } }{ } {"},
        {"{00}{01}", "7Ünal"},
        {"{99999999999999999999}", "{99999999999999999999}"},
        {"{0", "{0"},
        {"", ""},
        {"no placeholders", "no placeholders"}};
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(qor_lang2::format(text, 7, "Ünal", -1.5, 'a', std::string("b")), expected) << text;
        EXPECT_EQ(qor_lang2::format(qor_lang2::toUtf16(text), 7, u"Ünal", -1.5, 'a', std::string("b")),
                  qor_lang2::toUtf16(expected))
            << text;
    }
    EXPECT_EQ(qor_lang2::format("{0}", u"Привіт 🌍"), "Привіт 🌍") << "text arguments of the other kind convert";
    EXPECT_EQ(qor_lang2::format(u"{0}", "€"), u"€");
    EXPECT_EQ(qor_lang2::format("{0} {1}", 1234567.0, 18446744073709551615ull), "1.23457e+06 18446744073709551615");
    EXPECT_EQ(qor_lang2::format("{0}{1}"), "{0}{1}");
}

TEST_F(Wrapper, OnlyExhaustionMakesANullAnswerAnException)
{
    books().outOfMemory = true;
    EXPECT_THROW(qor_lang2::tr("greeting", "Hello"), std::bad_alloc);
    EXPECT_THROW(qor_lang2::currentLanguage(), std::bad_alloc);
    EXPECT_NO_THROW(qor_lang2::findLocalizedFile("file:///x/", "none_", "", ""));
}

TEST(Utf, ConversionsRoundTripAndReplaceWhatIsNotText)
{
    for (const char* text :
         {"", "plain", "ß é", "€ ✓ 日本語", "𝄞 🌍 \xF4\x8F\xBF\xBF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"}) {
        EXPECT_EQ(qor_lang2::toUtf8(qor_lang2::toUtf16(text)), text) << text;
    }
    EXPECT_EQ(qor_lang2::toUtf16("\xF0\x9F\x8C\x8D"), u"\xD83C\xDF0D");

    const std::pair<std::string, std::u16string> invalid[] = {
        {"a\x80z", u"a\xFFFDz"}, // a stray continuation byte
        {"a\xC3", u"a\xFFFD"}, // cut at the end
        {"a\xE2\x82z", u"a\xFFFDz"}, // cut before an ASCII character, which survives
        {"\xC0\xAF", u"\xFFFD\xFFFD"}, // an overlong lead is no lead
        {"\xE0\x80\xAF", u"\xFFFD"}, // overlong
        {"\xED\xA0\x80", u"\xFFFD"}, // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD"}, // beyond U+10FFFF
        {"\xFF", u"\xFFFD"},
    };
    for (const auto& [bytes, expected] : invalid)
        EXPECT_EQ(qor_lang2::toUtf16(bytes), expected) << testing::PrintToString(bytes);

    EXPECT_EQ(qor_lang2::toUtf8(u"a\xD800z"), "a\uFFFDz");
    EXPECT_EQ(qor_lang2::toUtf8(u"a\xDC00\xD83C"), "a\uFFFD\uFFFD") << "a reversed pair is two strays";
}

} // namespace
