// The C++ layer qor_lang2.hpp against the real library: UTF-8 in, through the library's UTF-16
// and a language file, UTF-8 out again, for text of several scripts and outside the BMP.
#include "ExportTestSupport.h"

#include "qor_lang2.hpp"

namespace {

using namespace export_test;

TEST(WrapperExports, Utf8TextSurvivesTheWayThroughALanguageFile)
{
    kore_test::CTempFolder temp;
    const std::u16string app = testName();
    const std::string app8 = qor_lang2::toUtf8(app);
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"menu.ファイル", "ファイルを開く…"},
        {"greeting", "Привіт, світе 🌍"},
        {"umlauts", "Größe ändern"},
    };
    std::vector<std::pair<std::u16string, std::u16string>> entries;
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

} // namespace
