#include "../FolderNames.h"
#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/io/CURI.h"
#include "framework/io/IInStream.h"
#include "framework/io/IStreamManager.h"
#include "framework/io/ISystem.h"

namespace kore_test {

TEST(Win32Services, NativePathsAreTheWindowsForm)
{
    EXPECT_EQ(CURI::fromLocalPath("C:/Lang/x")->getLocalPath()->toUTF8(), "C:\\Lang\\x");
}

// Names are equal whatever their case; enumeration, the existence test and opening agree.
TEST(Win32Services, LetterCaseIsIgnored)
{
    CTempFolder temp;
    temp.writeFile("Case.txt", "upper");
    temp.writeFile("b.txt", "");
    const P<IURI> folder = temp.uri();

    EXPECT_EQ(names(folder, "*.TXT"), (std::vector<std::string>{"b.txt", "Case.txt"}));
    EXPECT_EQ(names(folder, "case*"), std::vector<std::string>{"Case.txt"});
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve("CASE.TXT")));
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("cAsE.tXt"), IStreamManager::kRead);
    char text[5] = {};
    cast<IInStream>(stream)->read(text, 5);
    EXPECT_EQ(std::string(text, 5), "upper");
}

TEST(Win32Services, RelativeAndLongFolderPaths)
{
    CTempFolder temp;
    // A path longer than MAX_PATH works through the "\\?\" form.
    std::string deep = "sub";
    while (deep.size() < 300)
        deep += "/Sprachdateien äöü 日本";
    temp.makeFolder(deep);
    temp.writeFile(deep + "/A-de-DE.qorlang", "deep");
    const P<IURI> folder = temp.uri(deep);
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve("A-de-DE.qorlang")));
    EXPECT_EQ(names(folder, "A-*.qorlang"), std::vector<std::string>{"A-de-DE.qorlang"});
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("A-de-DE.qorlang"), IStreamManager::kRead);
    EXPECT_EQ(stream->getLength(), 4);

    // "." and ".." are resolved by the system.
    const P<IURI> dotted = IPathes::instance()->folderPathToURI(CString::fromUTF8(temp.utf8("sub") + "\\.\\..\\sub"));
    EXPECT_EQ(dotted->toString()->toUTF8(), temp.uri("sub")->toString()->toUTF8());
}

} // namespace kore_test
