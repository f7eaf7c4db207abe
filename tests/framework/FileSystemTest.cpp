#include "TempFolder.h"

#include "framework/CEndOfEnumError.h"
#include "framework/CFileAccessDeniedError.h"
#include "framework/CFileNotFoundError.h"
#include "framework/CFileSystemManager.h"
#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CURI.h"
#include "framework/CURIFormatError.h"
#include "framework/CURITypeNotSupportedError.h"
#include "framework/IFileEntry.h"
#include "framework/IFileEnum.h"
#include "framework/IInStream.h"
#include "framework/IStreamManager.h"
#include "framework/ISystem.h"
#include "framework/Cast.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

struct Entry {
    std::string name;
    bool folder;
    std::string uri;
};

std::vector<Entry> list(const P<IURI>& folder, const char16_t* pattern)
{
    std::vector<Entry> entries;
    P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*folder, pattern);
    while (found->hasNext()) {
        P<IFileEntry> entry = found->next();
        entries.push_back({entry->getName()->toUTF8(), entry->isFolder(), entry->getURI()->toString()->toUTF8()});
    }
    return entries;
}

std::vector<std::string> names(const std::vector<Entry>& entries)
{
    std::vector<std::string> out;
    for (const Entry& e : entries)
        out.push_back(e.name);
    return out;
}

bool matches(const char16_t* name, const char16_t* pattern, bool ignoreCase = false)
{
    return CFileSystemManager::matches(CUTF16String(name), CUTF16String(pattern), ignoreCase);
}

} // namespace

TEST(FileNamePattern, WildcardsMeanTheSameEverywhere)
{
    EXPECT_TRUE(matches(u"app-de-DE.qorlang", u"app*.qorlang"));
    EXPECT_TRUE(matches(u"app.qorlang", u"app*.qorlang"));
    EXPECT_FALSE(matches(u"app-de-DE.qorlang.bak", u"app*.qorlang"));
    EXPECT_FALSE(matches(u"myapp-de-DE.qorlang", u"app*.qorlang"));
    EXPECT_TRUE(matches(u"help_de-DE.pdf", u"help_de-DE.pdf"));
    EXPECT_FALSE(matches(u"help_de-DE.pdf", u"help_de-DE.pd"));
    EXPECT_TRUE(matches(u"", u"*"));
    EXPECT_FALSE(matches(u"", u"?"));
    EXPECT_TRUE(matches(u"a.b.c", u"*.c"));
    EXPECT_TRUE(matches(u"abcbcd", u"a*bcd"));
    EXPECT_TRUE(matches(u"aXbYc", u"a*b*c"));
    EXPECT_FALSE(matches(u"aXbY", u"a*b*c"));
    EXPECT_TRUE(matches(u"x", u"***x**"));
    // No Windows dialect: "*.*" needs a dot, "?" is exactly one character.
    EXPECT_FALSE(matches(u"README", u"*.*"));
    EXPECT_FALSE(matches(u"ab", u"ab?"));
    // "?" is one character, also outside the BMP.
    EXPECT_TRUE(matches(u"日本.txt", u"??.txt"));
    EXPECT_TRUE(matches(u"\U0001F600.txt", u"?.txt"));
    // Case counts only when asked to ignore it.
    EXPECT_FALSE(matches(u"APP-de-DE.QORLANG", u"app*.qorlang"));
    EXPECT_TRUE(matches(u"APP-de-DE.QORLANG", u"app*.qorlang", true));
    EXPECT_TRUE(matches(u"Help_DE.PDF", u"help_??.pdf", true));
}

TEST(FileNamePattern, OrderIsByNameInUpperCase)
{
    const auto less = [](const char16_t* a, const char16_t* b) {
        return CFileSystemManager::compareNames(CUTF16String(a), CUTF16String(b)) < 0;
    };
    EXPECT_TRUE(less(u"a", u"B"));
    EXPECT_TRUE(less(u"A", u"b"));
    EXPECT_TRUE(less(u"app", u"app-de"));
    EXPECT_TRUE(less(u"app-de-DE", u"app-en-US"));
    // As NTFS compares upper-cased names, "_" (after "Z") sorts after the letters.
    EXPECT_TRUE(less(u"ab", u"a_"));
    EXPECT_TRUE(less(u"z", u"ä"));
    // Names equal but for case still have a fixed order.
    EXPECT_TRUE(less(u"A", u"a"));
    EXPECT_EQ(CFileSystemManager::compareNames(CUTF16String(u"x"), CUTF16String(u"x")), 0);
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
    const std::vector<Entry> found = list(folder, u"app*.qorlang");
    EXPECT_EQ(names(found), (std::vector<std::string>{"app-de-DE.qorlang", "app-en-US.qorlang", "app-folder.qorlang",
                                                      "app-fr-FR.qorlang", "app-zz ä 100%.qorlang"}));
    for (const Entry& e : found) {
        SCOPED_TRACE(e.name);
        EXPECT_EQ(e.folder, e.name == "app-folder.qorlang");
        EXPECT_EQ(e.uri, folder->resolve(CString::fromUTF8(e.name), e.folder)->toString()->toUTF8());
        if (e.folder)
            continue;
        // Each entry's URI opens the very file.
        P<IStream> stream = IStreamManager::instance()->openURI(*CURI::fromURIText(CString::fromUTF8(e.uri)),
                                                                 IStreamManager::kRead);
        std::string content(e.name.size(), '\0');
        cast<IInStream>(stream)->read(content.data(), static_cast<uint32_t>(content.size()));
        EXPECT_EQ(content, e.name);
    }

    EXPECT_EQ(names(list(folder, u"help_de-DE.pdf")), std::vector<std::string>{"help_de-DE.pdf"});
    EXPECT_TRUE(list(folder, u"help_xx-XX.pdf").empty());
    EXPECT_EQ(list(folder, u"*").size(), 9u);
    EXPECT_EQ(names(list(folder, u"other*")), std::vector<std::string>{"other-de-DE.qorlang"});
}

TEST_F(FileSystem, EnumerationIsASnapshotWithAnEnd)
{
    P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*folder, "help*");
    EXPECT_EQ(found->getCount(), 2u);
    temp.writeFile(std::string(kFolder) + "/help_fr-FR.pdf", "");
    EXPECT_EQ(found->next()->getName()->toUTF8(), "help_de-DE.pdf");
    EXPECT_EQ(found->next()->getName()->toUTF8(), "help_en-US.pdf");
    EXPECT_FALSE(found->hasNext());
    EXPECT_THROW(found->next(), CEndOfEnumError);
    found->reset();
    EXPECT_EQ(found->next()->getName()->toUTF8(), "help_de-DE.pdf");
    // A new enumeration sees the new file.
    EXPECT_EQ(list(folder, u"help*").size(), 3u);
}

TEST_F(FileSystem, EnumerationErrors)
{
    const P<IURI> missing = folder->resolve("missing", true);
    try {
        IFileSystemManager::instance()->enumerate(*missing, "*");
        FAIL() << "no error";
    } catch (const CFileNotFoundError& e) {
        EXPECT_EQ(e.getDescription()->toUTF8(), "The file '" + missing->toString()->toUTF8() + "' was not found.");
        EXPECT_EQ(e.getURI(), missing);
    }
    // A file is not a folder.
    EXPECT_THROW(IFileSystemManager::instance()->enumerate(*folder->resolve("help_de-DE.pdf"), "*"), CFileNotFoundError);
    EXPECT_THROW(IFileSystemManager::instance()->enumerate(*CURI::fromURIText("http://example.com/"), "*"),
                 CURITypeNotSupportedError);
    for (const char* bad : {"", "a/b", "a\\b"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(IFileSystemManager::instance()->enumerate(*folder, bad), CInvalidArgError);
    }
}

TEST_F(FileSystem, ExistenceTestTellsFilesFromFolders)
{
    P<ISystem> system = ISystem::instance();
    EXPECT_TRUE(system->fileExists(*folder->resolve("app-de-DE.qorlang")));
    EXPECT_FALSE(system->fileExists(*folder->resolve("app-xx-XX.qorlang")));
    EXPECT_FALSE(system->fileExists(*folder->resolve("app-folder.qorlang")));
    EXPECT_FALSE(system->fileExists(*folder));
    EXPECT_TRUE(system->folderExists(*folder));
    EXPECT_TRUE(system->folderExists(*folder->resolve("app-folder.qorlang")));
    EXPECT_FALSE(system->folderExists(*folder->resolve("app-de-DE.qorlang")));
    EXPECT_FALSE(system->folderExists(*folder->resolve("missing")));
    EXPECT_THROW(system->fileExists(*CURI::fromURIText("http://example.com/x")), CURITypeNotSupportedError);
}

TEST_F(FileSystem, PathServiceGivesFolderURIsToResolveIn)
{
    P<IPathes> pathes = IPathes::instance();
    // With or without the trailing separator, the result is the same folder URI.
    const P<IURI> plain = pathes->folderPathToURI(CString::fromUTF8(temp.utf8(kFolder)));
    const P<IURI> slashed = pathes->folderPathToURI(CString::fromUTF8(temp.utf8(kFolder) + "/"));
    EXPECT_TRUE(plain->isFolder());
    EXPECT_EQ(plain->toString()->toUTF8(), slashed->toString()->toUTF8());
    EXPECT_TRUE(plain->toString()->endsWith("/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/"));
    EXPECT_TRUE(ISystem::instance()->fileExists(*plain->resolve("help_de-DE.pdf")));
    // The local path comes back as the platform writes it.
    EXPECT_EQ(pathFromUTF8(plain->getLocalPath()->toUTF8()), temp.path(kFolder) / "");

    const P<IURI> tempFolder = pathes->getTempFolder();
    EXPECT_TRUE(tempFolder->isFolder());
    EXPECT_TRUE(ISystem::instance()->folderExists(*tempFolder));
    EXPECT_THROW(pathes->folderPathToURI(""), CURIFormatError);
}

TEST(Services, AreProcessWideSingletons)
{
    EXPECT_EQ(IPathes::instance().get(), IPathes::instance().get());
    EXPECT_EQ(ISystem::instance().get(), ISystem::instance().get());
    EXPECT_EQ(IFileSystemManager::instance().get(), IFileSystemManager::instance().get());
    EXPECT_EQ(IStreamManager::instance().get(), IStreamManager::instance().get());
    EXPECT_NE(tryCast<CFileSystemManager>(IFileSystemManager::instance()), nullptr);
}

} // namespace kore_test
