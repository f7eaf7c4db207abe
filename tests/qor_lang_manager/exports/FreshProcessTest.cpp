// Scenarios that depend on the library's process-wide state (the current language before any
// set, the first registration of an id, reload) each run in a new process of this program.
#include "ExportTestSupport.h"

#include "../../framework/ChildProcess.h"

namespace {

using namespace export_test;
namespace fs = std::filesystem;

constexpr char kChildMark[] = "fresh";

// Children skip themselves unless started by the test above them: run in a shared process their
// expectations would not hold.
#define ONLY_AS_CHILD()                                                                                                \
    if (kore_test::childParameter() != kChildMark)                                                                     \
    GTEST_SKIP() << "runs only in a process of its own"

TEST(ExportsFreshProcess, EachChildPassesInAProcessOfItsOwn)
{
    for (const char* child :
         {"BeforeAnyLanguageIsSet", "FirstRegistrationOfAnIdWins", "ReloadRescansButHandlesKeepWhatWasLoaded"}) {
        kore_test::CChildProcess process(std::string("ExportsChild.DISABLED_") + child, kChildMark);
        EXPECT_EQ(process.wait(180000), 0) << child << ": the child's own output says what failed";
    }
}

TEST(ExportsChild, DISABLED_BeforeAnyLanguageIsSet)
{
    ONLY_AS_CHILD();
    EXPECT_EQ(currentLanguage(), u"") << "an empty string, not null";

    EXPECT_EQ(QOR_LANG2_reload(), 0) << "nothing registered yet";
    kore_test::CTempFolder temp;
    writeBytes(temp.path() / "help_en-US.pdf", "x");
    EXPECT_TRUE(take(QOR_LANG2_findLocalizedFile(w(folderUri(temp.path())), w(u"help_"), w(u""), w(u".pdf"))))
        << "the empty tag names no file; the English one is found";
    EXPECT_EQ(setLanguage(u"de"), 20);
    EXPECT_EQ(currentLanguage(), u"") << "a rejected tag leaves the default";
    EXPECT_EQ(setLanguage(u"en-US"), 0);
    EXPECT_EQ(currentLanguage(), u"en-US");
}

TEST(ExportsChild, DISABLED_FirstRegistrationOfAnIdWins)
{
    ONLY_AS_CHILD();
    kore_test::CTempFolder temp;
    const fs::path first = temp.path() / "first", second = temp.path() / "second";
    fs::create_directory(first);
    fs::create_directory(second);
    writeLanguageFile(first, u"app", u"de-DE", {{u"key", u"erster Ordner"}});
    writeLanguageFile(second, u"app", u"de-DE", {{u"key", u"zweiter Ordner"}});
    writeLanguageFile(second, u"app", u"fr-FR", {{u"key", u"second dossier"}});

    EXPECT_EQ(addFolder(first, u"app"), 0);
    EXPECT_EQ(addFolder(second, u"app"), 0);
    EXPECT_EQ(QOR_LANG2_addEx(w(folderUri(second)), w(u"app")), 0);

    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(u"app")), 1);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(u"app"), 0)), u"de-DE");
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    EXPECT_EQ(localString(u"key", u"default"), u"erster Ordner");
    ASSERT_EQ(setLanguage(u"fr-FR"), 0);
    EXPECT_EQ(localString(u"key", u"default"), u"default") << "the second folder is not read, German does not stay";
}

TEST(ExportsChild, DISABLED_ReloadRescansButHandlesKeepWhatWasLoaded)
{
    ONLY_AS_CHILD();
    kore_test::CTempFolder temp;
    const fs::path german = temp.path() / "app-de-DE.qorlang";
    auto writeGerman = [&](const char16_t* author, const char16_t* text) {
        qor_lang::CLanguageFileWriter writer = languageWriter(u"de-DE", u"app", {{u"key", text}});
        writer.setAuthor(author);
        writer.setLanguage(u"de-DE", author, std::nullopt);
        writeLanguageFile(german, writer);
    };
    writeGerman(u"Alt", u"alter Text");
    writeLanguageFile(temp.path(), u"app", u"it-IT");
    ASSERT_EQ(addFolder(temp.path(), u"app"), 0);
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(u"app")), 2);
    FileHandle before = languageFile(u"app", 0);
    ASSERT_TRUE(before);

    writeGerman(u"Neu", u"neuer Text");
    writeLanguageFile(temp.path(), u"app", u"fr-FR");
    fs::remove(temp.path() / "app-it-IT.qorlang");
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(u"app")), 2) << "the list is kept until reload";
    EXPECT_EQ(take(QOR_LANG2_FILE_getAuthor(languageFile(u"app", 0).get())), u"Alt");

    ASSERT_EQ(QOR_LANG2_reload(), 0);
    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(u"app")), 2);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(u"app"), 1)), u"fr-FR");
    EXPECT_EQ(take(QOR_LANG2_FILE_getAuthor(languageFile(u"app", 0).get())), u"Neu");
    EXPECT_EQ(localString(u"key", u"default"), u"alter Text") << "reload leaves loaded texts alone";

    // The old handle still answers with what was read before, after its pack forgot the file.
    EXPECT_EQ(take(QOR_LANG2_FILE_getAuthor(before.get())), u"Alt");
    EXPECT_EQ(take(QOR_LANG2_FILE_getNativeName(before.get())), u"Alt");
    before.reset();

    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    EXPECT_EQ(localString(u"key", u"default"), u"neuer Text");
}

} // namespace
