#include "FrameworkTest.h"

#include "framework/errors/CURIFormatError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/CURI.h"

namespace kore_test {

const auto text = [](const P<IString>& s) { return s->toUTF8(); };
const auto localPath = [](const std::string& uriText, CURI::PathStyle style) {
    return text(CURI::fromURIText(CString::fromUTF8(uriText))->getLocalPath(style));
};
// Host, name and, for a folder, a trailing "/".
const auto parts = [](const P<CURI>& uri) {
    return text(uri->getHost()) + "|" + text(uri->getName()) + (uri->isFolder() ? "/" : "");
};
const auto resolved = [](const P<CURI>& folder, const CStringArg& name, bool isFolder = false) {
    return text(folder->resolve(name, isFolder)->toString());
};

// Drive, UNC and POSIX paths are read the same way on every platform.
TEST(URI, LocalPathsOfEveryPlatformAndTextAreNormalisedOrFormatErrors)
{
    constexpr CURI::PathStyle W = CURI::kWindowsPath;
    constexpr CURI::PathStyle X = CURI::kPosixPath;
    // A path, its URI, and the local path the URI gives back in the path's own style.
    const struct {
        const char *path, *uri, *back;
        CURI::PathStyle style;
    } cases[] = {
        {"C:\\Lang\\", "file:///C:/Lang/", "C:\\Lang\\", W},
        {"C:/Lang", "file:///C:/Lang", "C:\\Lang", W},
        {"c:\\", "file:///c:/", "c:\\", W},
        {"C:", "file:///C:/", "C:\\", W},
        {"C:\\a\\\\b\\", "file:///C:/a/b/", "C:\\a\\b\\", W},
        {"\\\\server\\share\\x", "file://server/share/x", "\\\\server\\share\\x", W},
        {"//server/share/x/", "file://server/share/x/", "\\\\server\\share\\x\\", W},
        {"\\\\?\\C:\\Long\\x", "file:///C:/Long/x", "C:\\Long\\x", W},
        {"\\\\?\\UNC\\server\\share\\x", "file://server/share/x", "\\\\server\\share\\x", W},
        // A share on "localhost" is no local file, which is what "file://localhost/" means.
        {"\\\\LocalHost\\c$\\x", "file://LocalHos%74/c$/x", "\\\\LocalHost\\c$\\x", W},
        {"C:\\Sprachdateien äöü\\日本\\", "file:///C:/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/",
         "C:\\Sprachdateien äöü\\日本\\", W},
        {"C:\\100% #1?.txt", "file:///C:/100%25%20%231%3F.txt", "C:\\100% #1?.txt", W},
        {"/usr/share/x", "file:///usr/share/x", "/usr/share/x", X},
        {"/", "file:///", "/", X},
        {"/a//b/", "file:///a/b/", "/a/b/", X},
        {"/a\\b", "file:///a%5Cb", "/a\\b", X}, // a backslash is part of a POSIX name
        {"/x/[a]{b}^`|\"<>", "file:///x/%5Ba%5D%7Bb%7D%5E%60%7C%22%3C%3E", "/x/[a]{b}^`|\"<>", X},
        {"/keep/!$&'()*+,;=:@-._~", "file:///keep/!$&'()*+,;=:@-._~", "/keep/!$&'()*+,;=:@-._~", X},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(text(CURI::fromLocalPath(CString::fromUTF8(c.path))->toString()), c.uri);
        EXPECT_EQ(localPath(c.uri, c.style), c.back);
    }
    // Each style renders every file URI, but a POSIX path has no host, and an escaped backslash
    // would split a Windows name in two.
    EXPECT_EQ(localPath("file:///C:/Lang/", X), "/C:/Lang/");
    EXPECT_EQ(localPath("file:///usr/share/x", W), "\\usr\\share\\x");
    EXPECT_EQ(localPath("file:///", W), "\\");
    EXPECT_THROW(localPath("file:///a%5Cb", W), CURIFormatError);
    EXPECT_THROW(localPath("file://server/share/x", X), CURITypeNotSupportedError);

    // URI text is normalised; the normal form parses to itself.
    // clang-format off
    const std::pair<const char*, const char*> texts[] = {
        {"FILE://LocalHost/C:/x", "file:///C:/x"}, {"file:/usr/x", "file:///usr/x"}, {"file:C:/x", "file:///C:/x"},
        {"file://C:/x", "file:///C:/x"}, {"file://ab/x", "file://ab/x"}, {"file://server", "file://server/"},
        {"file:///a%2fb%c3%a4", "file:///a%2Fb%C3%A4"}, {"urn:isbn:0451450523", "urn:isbn:0451450523"},
        {"http://[::1]:80/", "http://[::1]:80/"}, {"file:///C:/Program Files/ä", "file:///C:/Program%20Files/%C3%A4"},
        {"HTTP://Example.com:8080/a/b?q=1&r=/x?#frag/?", "http://Example.com:8080/a/b?q=1&r=/x?#frag/?"}};
    // clang-format on
    for (const auto& [in, out] : texts) {
        SCOPED_TRACE(in);
        P<CURI> uri = CURI::fromURIText(CString::fromUTF8(in));
        EXPECT_EQ(text(uri->toString()), out);
        EXPECT_EQ(text(CURI::fromURIText(uri->toString())->toString()), out);
    }

    // Paths that are not absolute and malformed text are format errors.
    for (const char* bad :
         {"", "Lang\\de", "Lang/de", "C:Lang", "\\\\", "\\\\\\x", "\\\\.\\pipe\\x", "\\\\?\\relative\\x", "~/x"})
        EXPECT_THROW(CURI::fromLocalPath(bad), CURIFormatError) << bad;
    EXPECT_THROW(CURI::fromLocalPath(CStringArg(u"/a\0b", 4)), CURIFormatError);
    // The path is the text's placeholder; the error texts themselves are ErrorsTest's.
    expectNaming<CURIFormatError>([] { CURI::fromLocalPath("Lang\\de"); }, static_cast<IURI*>(nullptr), "('Lang\\de')");

    for (const char* bad :
         {"", "C:\\Lang", "c:/Lang", "Lang/de", "://x", "1ab:x", "a:x", "file:///a%2", "file:///a%zz", "file:///a\\b",
          "file:///a<b", "file:relative", "http://h/a#b#c", "http://h/a[1]", "file:///a\tb"}) {
        EXPECT_THROW(CURI::fromURIText(bad), CURIFormatError) << bad;
    }
    // Escapes that cannot be part of a local path.
    for (const char* bad : {"file:///a%00b", "file:///a%2Fb/c", "file:///a%FFb", "file:///%C3"}) {
        SCOPED_TRACE(bad);
        EXPECT_THROW(localPath(bad, CURI::kPosixPath), CURIFormatError);
        EXPECT_THROW(localPath(bad, CURI::kWindowsPath), CURIFormatError);
    }
}

TEST(URI, PartsAndResolvingANameAsOneEscapedSegment)
{
    P<CURI> http = CURI::fromURIText("http://user@www.example.com:8080/a/b%20c.txt?x#y");
    EXPECT_EQ(text(http->getScheme()) + " " + text(http->getPath()), "http /a/b%20c.txt");
    EXPECT_FALSE(http->isFile());
    expectNaming<CURITypeNotSupportedError>([&] { http->getLocalPath(); }, http.get());
    // clang-format off
    const std::pair<P<CURI>, const char*> partsOf[] = {{http, "www.example.com|b c.txt"},
        {CURI::fromLocalPath("\\\\server\\share\\Lang\\"), "server|Lang/"}, {CURI::fromLocalPath("/"), "|/"}};
    // clang-format on
    for (const auto& [uri, expected] : partsOf)
        EXPECT_EQ(parts(uri), expected);
    for (const auto& [location, uri] :
         {std::pair{"C:\\Lang", "file:///C:/Lang"}, {"/usr/x", "file:///usr/x"}, {"file:///usr/x", "file:///usr/x"}})
        EXPECT_EQ(text(CURI::fromLocation(location)->toString()), uri);

    P<IURI> file = CURI::fromLocalPath(u"C:\\Sprachdateien äöü\\日本\\")->resolve("A-de-DE.qorlang");
    EXPECT_EQ(text(file->toString()),
              "file:///C:/Sprachdateien%20%C3%A4%C3%B6%C3%BC/%E6%97%A5%E6%9C%AC/A-de-DE.qorlang");
    EXPECT_EQ(text(cast<CURI>(file)->getLocalPath(CURI::kWindowsPath)), "C:\\Sprachdateien äöü\\日本\\A-de-DE.qorlang");
    EXPECT_EQ(text(file->getName()), "A-de-DE.qorlang");
    // The folder's trailing "/" is supplied when missing; query and fragment belong to the
    // folder, not to the entry; a backslash is a character of the name.
    const P<CURI> share = CURI::fromLocalPath("/usr/share");
    EXPECT_EQ(resolved(share, u"100% #1?.pdf"), "file:///usr/share/100%25%20%231%3F.pdf");
    EXPECT_EQ(resolved(share, "sub", true), "file:///usr/share/sub/");
    EXPECT_EQ(resolved(share, "a\\b"), "file:///usr/share/a%5Cb");
    EXPECT_EQ(resolved(CURI::fromLocalPath("/"), "x"), "file:///x");
    EXPECT_EQ(resolved(CURI::fromURIText("http://h/a/?q#f"), "b"), "http://h/a/b");
    EXPECT_EQ(resolved(CURI::fromURIText("http://h"), "b"), "http://h/b");
    const P<CURI> folder = CURI::fromLocalPath("/usr/share/");
    for (const char* bad : {"", ".", "..", "a/b", "/x"})
        EXPECT_THROW(folder->resolve(bad), CInvalidArgError) << bad;
    EXPECT_EQ(descriptionOf<CInvalidArgError>([&] { folder->resolve("a/b"); }),
              "An invalid argument was passed to method 'CURI::resolve' of 'file:///usr/share/': name");
    EXPECT_THROW(CURI::fromURIText("mailto:someone@example.com")->resolve("x"), CURITypeNotSupportedError);
}

} // namespace kore_test
