// What only POSIX systems do: the code page, the global mutex's shared memory, file names as
// bytes, relative folder paths and the trace on standard error.
#include "../FrameworkTest.h"
#include "../TempFolder.h"

#include "framework/errors/CException.h"
#include "framework/log/CLogManager.h"
#include "framework/log/ILog.h"
#include "framework/log/Trace.h"
#include "framework/posix/CGlobalMutexImpl.h"
#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CCPString.h"

#include <fcntl.h>
#include <iconv.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kore_test {

using kore::posix::CGlobalMutexImpl;

namespace {

// Converts `in` with iconv; empty when iconv rejects it.
std::vector<uint8_t> convert(const char* to, const char* from, std::vector<char> in)
{
    iconv_t cd = iconv_open(to, from);
    char buffer[16];
    char *src = in.data(), *dst = buffer;
    size_t srcLeft = in.size(), dstLeft = sizeof(buffer);
    const size_t rc = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
    iconv_close(cd);
    return rc == static_cast<size_t>(-1) || srcLeft != 0 ? std::vector<uint8_t>() : std::vector<uint8_t>(buffer, dst);
}

// The texts logged under one module while it lives.
struct CLogLines : CObject, ILog {
    explicit CLogLines(const char* module) : module(module) { CLogManager::instance()->addLog(module, this); }
    void stop() { CLogManager::instance()->removeLog(module, this); }
    void write(const CStringArg&, const CStringArg&) override {}
    void setLevel(int32_t) override {}
    int32_t getLevel() const override { return 0; }
    void log(int32_t, const CStringArg&, const CStringArg& text, int32_t, int32_t) override
    {
        lines.push_back(text->toUTF8());
    }
    const char* module;
    std::vector<std::string> lines;
};

} // namespace

// The POSIX code page is Windows-1252 both ways; glibc's iconv is an independent oracle for it.
// Every byte decodes to what iconv makes of it (0 where the code page defines nothing); every code
// point of the Basic Multilingual Plane encodes to the byte iconv makes, or to nothing where iconv
// has none, so each of the 256 bytes is reached from exactly the code point it decodes to.
TEST(CodePagePosix, BothWaysAsIconvSays)
{
    iconv_t probe = iconv_open("UTF-32LE", "WINDOWS-1252");
    if (probe == reinterpret_cast<iconv_t>(-1))
        GTEST_SKIP() << "iconv has no WINDOWS-1252";
    iconv_close(probe);
    const ICharEncoding& cp = *CCPCharEncoding::instance();
    for (uint32_t b = 0; b < 256; ++b) {
        const std::vector<uint8_t> utf32 = convert("UTF-32LE", "WINDOWS-1252", {static_cast<char>(b)});
        const uint32_t want = utf32.empty() ? 0 : utf32[0] | utf32[1] << 8 | utf32[2] << 16 | uint32_t{utf32[3]} << 24;
        const uint8_t byte = static_cast<uint8_t>(b);
        uint32_t got = 0xDEADBEEF;
        EXPECT_EQ(cp.decodeCharStrict(got, &byte, 1, 0), 1u);
        EXPECT_EQ(got, want) << "byte " << b;
    }
    uint32_t encodable = 0;
    for (uint32_t ch = 0; ch < 0x10000; ++ch) {
        const std::vector<uint8_t> want =
            convert("WINDOWS-1252", "UTF-32LE", {static_cast<char>(ch), static_cast<char>(ch >> 8), 0, 0});
        uint8_t buf[8] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
        const uint32_t end = cp.encodeChar(ch, buf, 8, 2);
        ASSERT_EQ(std::vector<uint8_t>(buf + 2, buf + end), want) << std::hex << "U+" << ch;
        ASSERT_EQ(cp.getEncodedSize(ch), want.size()) << std::hex << "U+" << ch;
        encodable += want.empty() ? 0 : 1;
    }
    EXPECT_EQ(encodable, 251u); // 256 bytes less the five the code page leaves undefined
    const CCPString text(CUTF16String(u"\u20AC\u00E9\u4E00"));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(text.getBuffer()), text.getByteLength()), "\x80\xE9");
    EXPECT_EQ(CUTF16String(text).toU16(), u"\u20AC\u00E9");
}

TEST(PosixGlobalMutex, SystemNameEscapesAndObjectsLeftByADeadCreatorAreInitialisedAndForeignOnesRefused)
{
    // clang-format off
    const std::pair<std::string, std::string> names[] = {
        {"app.lock", "/kore.mutex.app.lock"}, {"Global\\app", "/kore.mutex.app"}, {"Local\\app", "/kore.mutex.app"},
        {"a/b%c", "/kore.mutex.a%2Fb%25c"}, {"\xC3\xA4\xE2\x82\xAC", "/kore.mutex.\xC3\xA4\xE2\x82\xAC"},
        {std::string(240, 'x'), "/kore.mutex." + std::string(240, 'x')}};
    // clang-format on
    for (const auto& [name, systemName] : names)
        EXPECT_EQ(CGlobalMutexImpl::systemName(CString::fromUTF8(name)), systemName);
    // The limit counts the escaped form: 80 slashes are 240 bytes, 81 are too many.
    EXPECT_NO_THROW(CGlobalMutexImpl::systemName(std::string(80, '/').c_str()));
    for (const std::string& name :
         {std::string(241, 'x'), std::string(81, '/'), std::string("Global\\"), std::string("Local\\")})
        EXPECT_EQ(descriptionOf<CException>([&] { make<CGlobalMutexImpl>(name.c_str()); }),
                  "Error createing global mutex " + name);
    // A shared-memory object of the mutex's name with `size` bytes of `fill` that a creator that
    // died before initialising it (zeros), or a program that is not ours, left behind: the next
    // opener initialises the first kind and refuses the second, leaving it alone.
    for (const auto& [size, fill] : {std::pair<size_t, unsigned char>{0, 0}, {4096, 0}, {8, 0xA5}, {4096, 0xA5}}) {
        SCOPED_TRACE(testing::Message() << size << " bytes of " << int(fill));
        const std::string name = "qor_test_planted_" + std::to_string(std::random_device()());
        const std::string systemName = CGlobalMutexImpl::systemName(name.c_str());
        int fd = shm_open(systemName.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
        ASSERT_GE(fd, 0);
        const std::string bytes(size, static_cast<char>(fill));
        ASSERT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(size));
        close(fd);
        if (fill == 0) {
            P<IMutex> mutex = make<CGlobalMutexImpl>(name.c_str());
            const bool usable = mutex->tryLock(0);
            EXPECT_TRUE(usable);
            if (usable)
                mutex->unlock();
        } else {
            EXPECT_THROW(make<CGlobalMutexImpl>(name.c_str()), CException);
            fd = shm_open(systemName.c_str(), O_RDONLY, 0);
            unsigned char first = 0;
            EXPECT_EQ(read(fd, &first, 1), 1);
            EXPECT_EQ(first, 0xA5);
            close(fd);
        }
        CGlobalMutexImpl::removeSystemName(name.c_str());
    }
}

// Names differing only in case are different files here; enumeration, the existence test and
// opening agree on that. A backslash is part of a name; every well-formed UTF-8 name is read
// (Devanagari and emoji too), and a name that is not UTF-8 is left out with a line that names
// the folder.
TEST(PosixServices, NamesAreBytesThatOnlyUTF8ReadsRelativeFolderPathsAndTheTrace)
{
    EXPECT_EQ(CURI::fromLocalPath("C:\\Lang\\x")->getLocalPath()->toUTF8(), "/C:/Lang/x") << "the native form";
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
    const P<ISystem> system = ISystem::instance();
    EXPECT_EQ(names(folder, "C*"), std::vector<std::string>{"Case.txt"});
    EXPECT_TRUE(names(folder, "CASE.TXT").empty());
    for (const auto& [name, exists] :
         {std::pair{"\xF0\x9F\x98\x80.txt", true}, {"Case.txt", true}, {"CASE.TXT", false}})
        EXPECT_EQ(system->fileExists(*folder->resolve(CString::fromUTF8(name))), exists) << name;
    P<IStream> stream = IStreamManager::instance()->openURI(*folder->resolve("Case.txt"), IStreamManager::kRead);
    char text[9] = {};
    cast<IInStream>(stream)->read(text, 8);
    EXPECT_STREQ(text, "Case.txt");

    const P<IURI> backslash = IFileSystemManager::instance()->enumerate(*folder, "a*")->next()->getURI();
    EXPECT_TRUE(backslash->toString()->endsWith("/a%5Cb.txt"));
    EXPECT_TRUE(system->fileExists(*backslash));

    // Relative folder paths start at the current folder.
    temp.makeFolder("sub");
    char previous[4096];
    ASSERT_NE(::getcwd(previous, sizeof previous), nullptr);
    ASSERT_EQ(::chdir(temp.utf8().c_str()), 0);
    const P<IURI> uri = IPathes::instance()->folderPathToURI("sub");
    ASSERT_EQ(::chdir(previous), 0);
    EXPECT_EQ(uri->toString()->toUTF8(), temp.uri("sub")->toString()->toUTF8());

    // The trace's line forms are LogManagerTest's and its switch LanguageManagerTest's; here the
    // line reaches standard error as UTF-8.
    const bool was = isTraceEnabled();
    ::testing::internal::CaptureStderr();
    setTraceEnabled(false);
    debugTrace("silent.cpp", 1, "not written");
    setTraceEnabled(true);
    debugTrace("loud.cpp", 3, u"größer");
    setTraceEnabled(was);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "qor_trace: loud.cpp (3) c=größer\n");
}

} // namespace kore_test
