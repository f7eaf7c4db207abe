// The C++ layer qor_lang2.hpp against the real library: UTF-8 in, through the library's UTF-16
// and a language file, UTF-8 out again, for text of several scripts and outside the BMP.
#include "../PluralModels.h"
#include "ExportTestSupport.h"

#include "qor_lang2.hpp"

namespace {

using namespace export_test;
using namespace std::string_literals;

TEST(WrapperExports, Utf8TextSurvivesTheWayThroughALanguageFile)
{
    kore_test::CTempFolder temp;
    const std::u16string app = testName();
    const std::string app8 = qor_lang2::toUtf8(app);
    const std::pair<std::string, std::string> texts[] = {
        {"menu.ファイル", "ファイルを開く…"}, {"greeting", "Привіт, світе 🌍"}, {"umlauts", "Größe ändern"}};
    Strings entries;
    for (const auto& [key, text] : texts)
        entries.emplace_back(app + qor_lang2::toUtf16(key), qor_lang2::toUtf16(text));
    qor_lang::CLanguageFileWriter writer = languageWriter(u"uk-UA", app, entries);
    writer.setLanguage(u"uk-UA", u"Українська", u"Україна");
    // A folder path with non-ASCII letters goes in as UTF-8 too.
    temp.makeFolder("språk");
    writeLanguageFile(temp.path("språk") / (app + u"-uk-UA.qorlang"), writer);
    ASSERT_EQ(qor_lang2::add(temp.utf8("språk"), app8), 0);
    ASSERT_EQ(qor_lang2::setCurrentLanguage("uk-UA"), 0);
    EXPECT_EQ(qor_lang2::currentLanguage().utf8(), "uk-UA");
    for (const auto& [key, text] : texts)
        EXPECT_EQ(qor_lang2::tr(app8 + key, "default"), text) << key;
    EXPECT_EQ(qor_lang2::tr(app8 + "absent", "Standard ✓"), "Standard ✓");

    const qor_lang2::File file = qor_lang2::languageFile(app8, 0);
    ASSERT_TRUE(file);
    EXPECT_EQ(file.nativeName().utf8(), "Українська");
    EXPECT_EQ(file.languageId().u16(), u"uk-UA");
    EXPECT_EQ(file.author().utf8(), "") << "an item the file lacks";
}

// trn, trc and trnc with a Ukrainian catalogue (three forms by the CLDR rule), against what
// gettext's ngettext answers for the same entries; an entry missing answers ngettext's default.
TEST(WrapperExports, PluralAndContextEntriesAnswerLikeGettext)
{
    kore_test::CTempFolder temp;
    const std::u16string app = testName();
    writeLanguageFile(temp.path(), app, u"uk-UA",
                      {{u"{0} file\u0005", u"{0} файл\0{0} файли\0{0} файлів"s},
                       {u"menu\u0004Open", u"Відкрити"},
                       {u"mail\u0004{0} message\u0005", u"{0} лист\0{0} листи\0{0} листів"s}});
    ASSERT_EQ(qor_lang2::add(temp.path().u16string(), app), 0);
    ASSERT_EQ(qor_lang2::setCurrentLanguage("uk-UA"), 0);
    const char* const files[] = {"{0} файл", "{0} файли", "{0} файлів"};
    const char* const mails[] = {"{0} лист", "{0} листи", "{0} листів"};
    for (unsigned long n : {0ul, 1ul, 2ul, 4ul, 5ul, 11ul, 12ul, 14ul, 21ul, 22ul, 25ul, 101ul, 111ul, 1000001ul}) {
        const unsigned long form = plural_model::slavic(n);
        EXPECT_EQ(qor_lang2::trn("{0} file", "{0} files", n), files[form]) << n;
        EXPECT_EQ(qor_lang2::trnc("mail", "{0} message", "{0} messages", n), mails[form]) << n;
        EXPECT_EQ(qor_lang2::trnc("post", "{0} message", "{0} messages", n), n == 1 ? "{0} message" : "{0} messages");
        EXPECT_EQ(qor_lang2::trn(u"{0} dir", u"{0} dirs", n), n == 1 ? u"{0} dir" : u"{0} dirs");
    }
    EXPECT_EQ(qor_lang2::format(qor_lang2::trn("{0} file", "{0} files", 3), 3), "3 файли");
    EXPECT_EQ(qor_lang2::trc("menu", "Open", "Open"), "Відкрити");
    EXPECT_EQ(qor_lang2::trc("toolbar", "Open", "Open"), "Open");
    EXPECT_EQ(qor_lang2::tr("Open", "Open"), "Open") << "the context is part of the key";
}

} // namespace
