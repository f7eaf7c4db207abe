#include "../FolderNames.h"
#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/CURI.h"
#include "framework/IInStream.h"
#include "framework/IStreamManager.h"
#include "framework/ISystem.h"

#include <unistd.h>

namespace kore_test {

TEST(PosixServices, NativePathsAreThePosixForm)
{
    EXPECT_EQ(CURI::fromLocalPath("C:\\Lang\\x")->getLocalPath()->toUTF8(), "/C:/Lang/x");
}

// Names differing only in case are different files here; enumeration, the existence test and
// opening agree on that. A backslash is part of a name, and names that are not UTF-8 are left out.
TEST(PosixServices, NamesAreBytesThatOnlyUTF8Reads)
{
    CTempFolder temp;
    for (const char* name : {"Case.txt", "case.txt", "b.txt", "a\\b.txt", "bad\xFF.txt"})
        temp.writeFile(name, name);
    const P<IURI> folder = temp.uri();

    EXPECT_EQ(names(folder, "*.txt"), (std::vector<std::string>{"a\\b.txt", "b.txt", "Case.txt", "case.txt"}));
    EXPECT_EQ(names(folder, "C*"), std::vector<std::string>{"Case.txt"});
    EXPECT_TRUE(names(folder, "CASE.TXT").empty());
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve("Case.txt")));
    EXPECT_FALSE(ISystem::instance()->fileExists(*folder->resolve("CASE.TXT")));
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("Case.txt"), IStreamManager::kRead);
    char text[8] = {};
    cast<IInStream>(stream)->read(text, 8);
    EXPECT_EQ(std::string(text, 8), "Case.txt");

    const P<IURI> backslash = IFileSystemManager::instance()->enumerate(*folder, "a*")->next()->getURI();
    EXPECT_TRUE(backslash->toString()->endsWith("/a%5Cb.txt"));
    EXPECT_TRUE(ISystem::instance()->fileExists(*backslash));
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
    EXPECT_EQ(uri->toString()->toUTF8(), temp.uri("sub")->toString()->toUTF8());
}

} // namespace kore_test
