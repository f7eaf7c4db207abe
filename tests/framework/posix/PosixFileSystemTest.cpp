#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/CURI.h"
#include "framework/CURITypeNotSupportedError.h"
#include "framework/IFileEntry.h"
#include "framework/IFileEnum.h"
#include "framework/IFileSystemManager.h"
#include "framework/IInStream.h"
#include "framework/IStreamManager.h"
#include "framework/ISystem.h"
#include "framework/posix/CPathes.h"
#include "framework/posix/CSystem.h"

#include <unistd.h>

namespace kore_test {

namespace {

std::vector<std::string> names(const P<IURI>& folder, const char* pattern)
{
    std::vector<std::string> out;
    for (P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*folder, pattern); found->hasNext();)
        out.push_back(found->next()->getName()->toUTF8());
    return out;
}

} // namespace

TEST(PosixServices, HaveTheirPosixClasses)
{
    EXPECT_NE(tryCast<posix::CPathes>(IPathes::instance()), nullptr);
    EXPECT_NE(tryCast<posix::CSystem>(ISystem::instance()), nullptr);
}

TEST(PosixServices, NativePathsAreThePosixForm)
{
    EXPECT_EQ(CURI::fromLocalPath("C:\\Lang\\x")->getLocalPath()->toUTF8(), "/C:/Lang/x");
    EXPECT_EQ(CURI::fromLocalPath("/usr/share/x")->getLocalPath()->toUTF8(), "/usr/share/x");
    EXPECT_THROW(CURI::fromLocalPath("\\\\server\\share\\x")->getLocalPath(), CURITypeNotSupportedError);
}

// Names differing only in case are different files here; enumeration, the existence test and
// opening agree on that.
TEST(PosixServices, LetterCaseCounts)
{
    CTempFolder temp;
    temp.writeFile("Case.txt", "upper");
    temp.writeFile("case.txt", "lower");
    temp.writeFile("b.txt", "");
    const P<IURI> folder = temp.uri();

    EXPECT_EQ(names(folder, "*.txt"), (std::vector<std::string>{"b.txt", "Case.txt", "case.txt"}));
    EXPECT_EQ(names(folder, "C*"), std::vector<std::string>{"Case.txt"});
    EXPECT_TRUE(names(folder, "CASE.TXT").empty());
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve("Case.txt")));
    EXPECT_FALSE(ISystem::instance()->fileExists(*folder->resolve("CASE.TXT")));
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("Case.txt"), IStreamManager::kRead);
    char text[5] = {};
    cast<IInStream>(stream)->read(text, 5);
    EXPECT_EQ(std::string(text, 5), "upper");
}

TEST(PosixServices, ABackslashIsPartOfAName)
{
    CTempFolder temp;
    temp.writeFile("a\\b.txt", "x");
    const P<IURI> folder = temp.uri();
    P<IFileEnum> found = IFileSystemManager::instance()->enumerate(*folder, "a*");
    ASSERT_TRUE(found->hasNext());
    const P<IURI> uri = found->next()->getURI();
    EXPECT_TRUE(uri->toString()->endsWith("/a%5Cb.txt"));
    EXPECT_TRUE(ISystem::instance()->fileExists(*uri));
}

TEST(PosixServices, NamesThatAreNotUTF8AreLeftOut)
{
    CTempFolder temp;
    temp.writeFile("good.txt", "");
    temp.writeFile(std::string("bad\xFF.txt"), "");
    EXPECT_EQ(names(temp.uri(), "*"), std::vector<std::string>{"good.txt"});
}

TEST(PosixServices, RelativeFolderPathsStartAtTheCurrentFolder)
{
    CTempFolder temp;
    temp.makeFolder("sub");
    char previous[4096];
    ASSERT_NE(::getcwd(previous, sizeof previous), nullptr);
    ASSERT_EQ(::chdir(temp.utf8().c_str()), 0);
    const P<IURI> uri = IPathes::instance()->folderPathToURI("sub");
    ASSERT_EQ(::chdir(previous), 0);
    EXPECT_EQ(uri->toString()->toUTF8(), IPathes::instance()->folderPathToURI(CString::fromUTF8(temp.utf8("sub")))->toString()->toUTF8());
}

} // namespace kore_test
