#include "../FolderNames.h"
#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/io/CURI.h"
#include "framework/io/IInStream.h"
#include "framework/io/IStreamManager.h"
#include "framework/io/ISystem.h"
#include "framework/log/CLogManager.h"
#include "framework/log/ILog.h"

#include <unistd.h>

namespace kore_test {

TEST(PosixServices, NativePathsAreThePosixForm)
{
    EXPECT_EQ(CURI::fromLocalPath("C:\\Lang\\x")->getLocalPath()->toUTF8(), "/C:/Lang/x");
}

namespace {

// The texts logged under one module while it lives.
class CLogLines : public CObject, public ILog {
public:
    explicit CLogLines(const char* module) : m_module(module) { CLogManager::instance()->addLog(m_module, this); }
    ~CLogLines() override = default;
    void stop() { CLogManager::instance()->removeLog(m_module, this); }
    void write(const CStringArg&, const CStringArg&) override {}
    void setLevel(int32_t) override {}
    int32_t getLevel() const override { return 0; }
    void log(int32_t, const CStringArg&, const CStringArg& text, int32_t, int32_t) override
    {
        lines.push_back(text->toUTF8());
    }
    std::vector<std::string> lines;

private:
    const char* m_module;
};

} // namespace

// Names differing only in case are different files here; enumeration, the existence test and
// opening agree on that. A backslash is part of a name; every well-formed UTF-8 name is read
// (Devanagari and emoji too), and a name that is not UTF-8 is left out with a line that names
// the folder.
TEST(PosixServices, NamesAreBytesThatOnlyUTF8Reads)
{
    CTempFolder temp;
    for (const char* name : {"Case.txt", "case.txt", "b.txt", "a\\b.txt", "bad\xFF.txt", "bad\xE0\x80\x80.txt",
                             "\xE0\xA4\xB9.txt", "\xF0\x9F\x98\x80.txt"})
        temp.writeFile(name, name);
    const P<IURI> folder = temp.uri();

    const P<CLogLines> log = make<CLogLines>("kore::CFileSystemManager");
    EXPECT_EQ(names(folder, "*.txt"), (std::vector<std::string>{"a\\b.txt", "b.txt", "Case.txt", "case.txt",
                                                                "\xE0\xA4\xB9.txt", "\xF0\x9F\x98\x80.txt"}));
    log->stop();
    const std::string line = "skipped an entry of '" + folder->getLocalPath()->toUTF8() + "': its name is not UTF-8";
    EXPECT_EQ(log->lines, (std::vector<std::string>{line, line}));
    EXPECT_TRUE(ISystem::instance()->fileExists(*folder->resolve(CString::fromUTF8("\xF0\x9F\x98\x80.txt"))));
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
