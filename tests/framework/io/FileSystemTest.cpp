#include "FrameworkTest.h"
#include "TempFolder.h"

#include "framework/errors/CEndOfEnumError.h"
#include "framework/io/CFileSystemManager.h"

namespace kore_test {

// One matching is the same on every platform: no Windows dialect ("*.*" needs a dot, "?" is
// exactly one character, also outside the BMP), and case counts unless told otherwise.
TEST(FileNamePattern, WildcardsMeanTheSameEverywhereAndOrderIsByNameInUpperCase)
{
    // clang-format off
    const struct {
        const char16_t *name, *pattern;
        bool ignoreCase, matches;
    } cases[] = {
        {u"app-de-DE.qorlang", u"app*.qorlang", false, true}, {u"app.qorlang", u"app*.qorlang", false, true},
        {u"app-de-DE.qorlang.bak", u"app*.qorlang", false, false},
        {u"myapp-de-DE.qorlang", u"app*.qorlang", false, false}, {u"", u"*", false, true},
        {u"help_de-DE.pdf", u"help_de-DE.pdf", false, true}, {u"help_de-DE.pdf", u"help_de-DE.pd", false, false},
        {u"", u"?", false, false}, {u"abcbcd", u"a*bcd", false, true}, {u"aXbYc", u"a*b*c", false, true},
        {u"aXbY", u"a*b*c", false, false}, {u"x", u"***x**", false, true}, {u"README", u"*.*", false, false},
        {u"ab", u"ab?", false, false}, {u"日本.txt", u"??.txt", false, true},
        {u"\U0001F600.txt", u"?.txt", false, true}, {u"APP-de-DE.QORLANG", u"app*.qorlang", false, false},
        {u"APP-de-DE.QORLANG", u"app*.qorlang", true, true}, {u"Help_DE.PDF", u"help_??.pdf", true, true}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(CFileSystemManager::matches(CUTF16String(c.name), CUTF16String(c.pattern), c.ignoreCase), c.matches)
            << CUTF16String(c.name).toUTF8() << " ~ " << CUTF16String(c.pattern).toUTF8();
    }
    // As NTFS compares upper-cased names, "_" (after "Z") sorts after the letters; names equal
    // but for case still have a fixed order.
    const auto compare = [](const char16_t* a, const char16_t* b) {
        return CFileSystemManager::compareNames(CUTF16String(a), CUTF16String(b));
    };
    for (const auto& [a, b] : {std::pair{u"a", u"B"}, {u"app", u"app-de"}, {u"ab", u"a_"}, {u"z", u"ä"}, {u"A", u"a"}})
        EXPECT_LT(compare(a, b), 0) << CUTF16String(a).toUTF8() << " < " << CUTF16String(b).toUTF8();
    EXPECT_EQ(compare(u"x", u"x"), 0);
}

class FileSystem : public ::testing::Test {
protected:
    CTempFolder temp;
    const char* const kFolder = "Sprachdateien äöü/日本";
    P<IURI> folder;

    void SetUp() override
    {
        temp.makeFolder(kFolder);
        // Created out of order, so that the order seen is the enumeration's own.
        for (const char* name : {"app-fr-FR.qorlang", "app-de-DE.qorlang", "other-de-DE.qorlang", "app_notes.txt",
                                 "help_en-US.pdf", "help_de-DE.pdf", "app-en-US.qorlang", "app-zz ä 100%.qorlang"})
            temp.writeFile(std::string(kFolder) + "/" + name, name);
        temp.makeFolder(std::string(kFolder) + "/app-folder.qorlang");
        folder = temp.uri(kFolder);
    }
};

TEST_F(FileSystem, EnumerationFindsMatchingEntriesInNameOrder)
{
    EXPECT_EQ(names(folder, u"app*.qorlang"),
              (std::vector<std::string>{"app-de-DE.qorlang", "app-en-US.qorlang", "app-folder.qorlang/",
                                        "app-fr-FR.qorlang", "app-zz ä 100%.qorlang"}));
    EXPECT_EQ(names(folder, u"*").size(), 9u);
    // Each entry's URI is the folder's resolved with the entry's name (opening is the streams').
    for (P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*folder, u"app*"); found->hasNext();) {
        const P<IFileEntry> entry = found->next();
        EXPECT_EQ(entry->getURI()->toString()->toUTF8(),
                  folder->resolve(entry->getName(), entry->isFolder())->toString()->toUTF8());
    }
}

// An enumeration is a snapshot with an end; errors name the folder.
TEST_F(FileSystem, EnumerationIsASnapshotWithAnEndAndErrorsExistenceTestAndPathService)
{
    const auto files = IFileSystemManager::instance();
    P<IFileEnum> found = files->enumerate(*folder, "help*");
    EXPECT_EQ(found->getCount(), 2u);
    temp.writeFile(std::string(kFolder) + "/help_fr-FR.pdf", "");
    for (const char* name : {"help_de-DE.pdf", "help_en-US.pdf"})
        EXPECT_EQ(found->next()->getName()->toUTF8(), name);
    EXPECT_FALSE(found->hasNext());
    EXPECT_THROW(found->next(), CEndOfEnumError);
    found->reset();
    EXPECT_EQ(found->next()->getName()->toUTF8(), "help_de-DE.pdf");
    EXPECT_EQ(names(folder, u"help*").size(), 3u) << "a new enumeration sees the new file";

    const P<IURI> missing = folder->resolve("missing", true);
    expectNaming<CFileNotFoundError>([&] { files->enumerate(*missing, "*"); }, missing.get());
    EXPECT_THROW(files->enumerate(*folder->resolve("help_de-DE.pdf"), "*"), CFileNotFoundError)
        << "a file is no folder";
    EXPECT_THROW(files->enumerate(*CURI::fromURIText("http://example.com/"), "*"), CURITypeNotSupportedError);
    for (const char* bad : {"", "a/b", "a\\b"})
        EXPECT_THROW(files->enumerate(*folder, bad), CInvalidArgError) << bad;

    // The existence test tells files from folders ("" stands for the folder itself); the path
    // service gives the same folder URI with or without the trailing separator.
    const auto system = ISystem::instance();
    for (const auto& [name, isFile, isFolder] : {std::tuple{"app-de-DE.qorlang", true, false},
                                                 {"app-folder.qorlang", false, true},
                                                 {"", false, true},
                                                 {"missing", false, false}}) {
        const P<IURI> uri = *name ? folder->resolve(name) : folder;
        EXPECT_EQ(system->fileExists(*uri), isFile) << name;
        EXPECT_EQ(system->folderExists(*uri), isFolder) << name;
    }
    EXPECT_THROW(system->fileExists(*CURI::fromURIText("http://example.com/x")), CURITypeNotSupportedError);

    P<IPathes> pathes = IPathes::instance();
    const P<IURI> slashed = pathes->folderPathToURI(CString::fromUTF8(temp.utf8(kFolder) + "/"));
    EXPECT_TRUE(slashed->isFolder());
    EXPECT_EQ(slashed->toString()->toUTF8(), folder->toString()->toUTF8());
    EXPECT_TRUE(folder->toString()->endsWith("/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/"));
    // The local path comes back as the platform writes it.
    EXPECT_EQ(pathFromUTF8(folder->getLocalPath()->toUTF8()), temp.path(kFolder) / "");
    EXPECT_TRUE(system->folderExists(*pathes->getTempFolder()));
    EXPECT_THROW(pathes->folderPathToURI(""), CURIFormatError);
}

} // namespace kore_test
