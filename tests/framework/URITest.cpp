#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CURI.h"
#include "framework/CURIFormatError.h"
#include "framework/CURITypeNotSupportedError.h"
#include "framework/Cast.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

std::string text(const P<IString>& s)
{
    return s->toUTF8();
}

std::string uriFromPath(const std::string& utf8Path)
{
    return text(CURI::fromLocalPath(CString::fromUTF8(utf8Path))->toString());
}

std::string localPath(const std::string& uriText, CURI::PathStyle style)
{
    return text(CURI::fromURIText(CString::fromUTF8(uriText))->getLocalPath(style));
}

} // namespace

struct PathCase {
    const char* path;
    const char* uri;
    const char* back; // the local path the URI gives back in the path's own style
};

// Drive, UNC and POSIX paths are read the same way on every platform.
TEST(URI, LocalPathsOfEveryPlatformBecomeFileURIsAndBack)
{
    const std::vector<PathCase> windows = {
        {"C:\\Lang\\", "file:///C:/Lang/", "C:\\Lang\\"},
        {"C:/Lang", "file:///C:/Lang", "C:\\Lang"},
        {"c:\\", "file:///c:/", "c:\\"},
        {"C:", "file:///C:/", "C:\\"},
        {"C:\\a\\\\b\\", "file:///C:/a/b/", "C:\\a\\b\\"},
        {"\\\\server\\share\\x", "file://server/share/x", "\\\\server\\share\\x"},
        {"//server/share/x/", "file://server/share/x/", "\\\\server\\share\\x\\"},
        {"\\\\?\\C:\\Long\\x", "file:///C:/Long/x", "C:\\Long\\x"},
        {"\\\\?\\UNC\\server\\share\\x", "file://server/share/x", "\\\\server\\share\\x"},
        {"C:\\Sprachdateien äöü\\日本\\",
         "file:///C:/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/",
         "C:\\Sprachdateien äöü\\日本\\"},
        {"C:\\100% #1?.txt", "file:///C:/100%25%20%231%3F.txt", "C:\\100% #1?.txt"},
    };
    for (const PathCase& c : windows) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(uriFromPath(c.path), c.uri);
        EXPECT_EQ(localPath(c.uri, CURI::kWindowsPath), c.back);
    }

    const std::vector<PathCase> posix = {
        {"/usr/share/x", "file:///usr/share/x", "/usr/share/x"},
        {"/", "file:///", "/"},
        {"/a//b/", "file:///a/b/", "/a/b/"},
        // A backslash is part of a POSIX name, not a separator.
        {"/a\\b", "file:///a%5Cb", "/a\\b"},
        {"/tmp/Sprachdateien äöü/日本", "file:///tmp/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC",
         "/tmp/Sprachdateien äöü/日本"},
        {"/x/[a]{b}^`|\"<>", "file:///x/%5Ba%5D%7Bb%7D%5E%60%7C%22%3C%3E", "/x/[a]{b}^`|\"<>"},
        {"/keep/!$&'()*+,;=:@-._~", "file:///keep/!$&'()*+,;=:@-._~", "/keep/!$&'()*+,;=:@-._~"},
    };
    for (const PathCase& c : posix) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(uriFromPath(c.path), c.uri);
        EXPECT_EQ(localPath(c.uri, CURI::kPosixPath), c.back);
    }
}

TEST(URI, EachPathStyleRendersEveryFileURI)
{
    EXPECT_EQ(localPath("file:///C:/Lang/", CURI::kPosixPath), "/C:/Lang/");
    EXPECT_EQ(localPath("file:///usr/share/x", CURI::kWindowsPath), "\\usr\\share\\x");
    EXPECT_EQ(localPath("file:///", CURI::kWindowsPath), "\\");
    // An escaped backslash is a POSIX name character but would split a Windows name in two.
    EXPECT_EQ(localPath("file:///a%5Cb", CURI::kPosixPath), "/a\\b");
    EXPECT_THROW(localPath("file:///a%5Cb", CURI::kWindowsPath), CURIFormatError);
    // POSIX has no form for a remote host.
    EXPECT_THROW(localPath("file://server/share/x", CURI::kPosixPath), CURITypeNotSupportedError);
}

TEST(URI, PathsThatAreNotAbsoluteAreFormatErrors)
{
    for (const char* bad : {"", "Lang\\de", "Lang/de", "C:Lang", "\\\\", "\\\\\\x", "\\\\.\\pipe\\x",
                            "\\\\?\\relative\\x", "~/x"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(CURI::fromLocalPath(bad), CURIFormatError);
    }
    EXPECT_THROW(CURI::fromLocalPath(CStringArg(u"/a\0b", 4)), CURIFormatError);
    try {
        CURI::fromLocalPath("Lang\\de");
        FAIL() << "no error";
    } catch (const CURIError& e) {
        EXPECT_EQ(text(e.getGeneralDescription()), "The URI has an invalid format.");
        EXPECT_EQ(text(e.getDescription()), "The URI ('Lang\\de') has an invalid format.");
        EXPECT_EQ(e.getURI(), nullptr);
    }
}

TEST(URI, TextIsNormalised)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"FILE://LocalHost/C:/x", "file:///C:/x"},
        {"file:/usr/x", "file:///usr/x"},
        {"file:C:/x", "file:///C:/x"},
        {"file://C:/x", "file:///C:/x"},
        {"file://server", "file://server/"},
        {"file:///C:/Program Files/ä", "file:///C:/Program%20Files/%C3%A4"},
        {"file:///a%2fb%c3%a4", "file:///a%2Fb%C3%A4"},
        {"HTTP://Example.com:8080/a/b?q=1&r=/x?#frag/?", "http://Example.com:8080/a/b?q=1&r=/x?#frag/?"},
        {"urn:isbn:0451450523", "urn:isbn:0451450523"},
        {"http://[::1]:80/", "http://[::1]:80/"},
    };
    for (const auto& [in, out] : cases) {
        SCOPED_TRACE(in);
        P<CURI> uri = CURI::fromURIText(CString::fromUTF8(in));
        EXPECT_EQ(text(uri->toString()), out);
        // The normal form parses to itself.
        EXPECT_EQ(text(CURI::fromURIText(uri->toString())->toString()), out);
    }
}

TEST(URI, MalformedTextIsAFormatError)
{
    for (const char* bad : {"", "C:\\Lang", "c:/Lang", "Lang/de", "://x", "1ab:x", "a:x",
                            "file:///a%2", "file:///a%zz", "file:///a\\b", "file:///a<b",
                            "file:relative", "http://h/a#b#c", "http://h/a[1]", "file:///a\tb"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(CURI::fromURIText(bad), CURIFormatError);
    }
    try {
        CURI::fromURIText("C:\\Lang");
        FAIL() << "no error";
    } catch (const CURIFormatError& e) {
        EXPECT_EQ(text(e.getDescription()), "The URI ('C:\\Lang') has an invalid format.");
    }
}

TEST(URI, PartsOfAURI)
{
    P<CURI> http = CURI::fromURIText("http://user@www.example.com:8080/a/b%20c.txt?x#y");
    EXPECT_EQ(text(http->getScheme()), "http");
    EXPECT_FALSE(http->isFile());
    EXPECT_EQ(text(http->getHost()), "www.example.com");
    EXPECT_EQ(text(http->getPath()), "/a/b%20c.txt");
    EXPECT_EQ(text(http->getName()), "b c.txt");
    EXPECT_FALSE(http->isFolder());

    P<CURI> unc = CURI::fromLocalPath("\\\\server\\share\\Lang\\");
    EXPECT_TRUE(unc->isFile());
    EXPECT_EQ(text(unc->getHost()), "server");
    EXPECT_EQ(text(unc->getName()), "Lang");
    EXPECT_TRUE(unc->isFolder());

    P<CURI> root = CURI::fromLocalPath("/");
    EXPECT_EQ(text(root->getHost()), "");
    EXPECT_EQ(text(root->getName()), "");
    EXPECT_TRUE(root->isFolder());

    EXPECT_EQ(text(CURI::fromLocation("C:\\Lang")->toString()), "file:///C:/Lang");
    EXPECT_EQ(text(CURI::fromLocation("/usr/x")->toString()), "file:///usr/x");
    EXPECT_EQ(text(CURI::fromLocation("file:///usr/x")->toString()), "file:///usr/x");
}

TEST(URI, LocalPathOfAnotherSchemeIsNotSupported)
{
    P<CURI> http = CURI::fromURIText("http://example.com/x");
    try {
        http->getLocalPath();
        FAIL() << "no error";
    } catch (const CURIError& e) {
        EXPECT_NE(dynamic_cast<const CURITypeNotSupportedError*>(&e), nullptr);
        EXPECT_EQ(text(e.getGeneralDescription()), "This type URI is not supported.");
        EXPECT_EQ(text(e.getDescription()), "This type of URI ('http://example.com/x') is not supported.");
        EXPECT_EQ(e.getURI().get(), static_cast<IURI*>(http.get()));
    }
}

TEST(URI, EscapesThatCannotBeAPathAreRefused)
{
    for (const char* bad : {"file:///a%00b", "file:///a%2Fb/c", "file:///a%FFb", "file:///%C3"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(localPath(bad, CURI::kPosixPath), CURIFormatError);
        EXPECT_THROW(localPath(bad, CURI::kWindowsPath), CURIFormatError);
    }
}

TEST(URI, ResolveEscapesTheNameAsOneSegment)
{
    P<CURI> folder = CURI::fromLocalPath(u"C:\\Sprachdateien äöü\\日本\\");
    P<IURI> file = folder->resolve("A-de-DE.qorlang");
    EXPECT_EQ(text(file->toString()),
              "file:///C:/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/A-de-DE.qorlang");
    EXPECT_EQ(text(cast<CURI>(file)->getLocalPath(CURI::kWindowsPath)),
              "C:\\Sprachdateien äöü\\日本\\A-de-DE.qorlang");
    EXPECT_EQ(text(file->getName()), "A-de-DE.qorlang");

    // The folder's trailing "/" is supplied when missing.
    EXPECT_EQ(text(CURI::fromLocalPath("/usr/share")->resolve(u"100% #1?.pdf")->toString()),
              "file:///usr/share/100%25%20%231%3F.pdf");
    EXPECT_EQ(text(CURI::fromLocalPath("/usr/share")->resolve("sub", true)->toString()),
              "file:///usr/share/sub/");
    EXPECT_EQ(text(CURI::fromLocalPath("/")->resolve("x")->toString()), "file:///x");
    // Query and fragment belong to the folder, not to the entry.
    EXPECT_EQ(text(CURI::fromURIText("http://h/a/?q#f")->resolve("b")->toString()), "http://h/a/b");
    EXPECT_EQ(text(CURI::fromURIText("http://h")->resolve("b")->toString()), "http://h/b");

    // A backslash is kept as a character of the name.
    P<IURI> backslash = CURI::fromLocalPath("/usr")->resolve("a\\b");
    EXPECT_EQ(text(backslash->toString()), "file:///usr/a%5Cb");
}

TEST(URI, ResolveRefusesNamesThatAreNotOneSegment)
{
    P<CURI> folder = CURI::fromLocalPath("/usr/share/");
    for (const char* bad : {"", ".", "..", "a/b", "/x"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(folder->resolve(bad), CInvalidArgError);
    }
    try {
        folder->resolve("a/b");
        FAIL() << "no error";
    } catch (const CInvalidArgError& e) {
        EXPECT_EQ(text(e.getDescription()),
                  "An invalid argument was passed to method 'CURI::resolve' of 'file:///usr/share/': name");
    }
    EXPECT_THROW(CURI::fromURIText("mailto:someone@example.com")->resolve("x"), CURITypeNotSupportedError);
}

} // namespace kore_test
