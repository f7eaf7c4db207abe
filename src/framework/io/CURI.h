#pragma once
// The framework's URI: an absolute URI in the generic syntax (scheme ":" ["//" authority] path
// ["?" query] ["#" fragment]), held in normalised, escaped text form. Immutable.
//
// Local files use the "file" scheme: "file:///C:/Lang/" for a drive path, "file://server/share/x"
// for a UNC path, "file:///usr/share/x" for a POSIX path. Which local path syntaxes are
// understood does not depend on the platform; only getLocalPath() answers in the platform's form.

#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"

#include <string>

namespace kore {

class CURI : public CObject, public IURI {
public:
    enum PathStyle { kNativePath, kWindowsPath, kPosixPath };

    // Parses URI text. Spaces and non-ASCII characters are accepted and escaped (as UTF-8);
    // anything else a URI may not contain, a malformed "%" escape, a missing scheme or a
    // one-letter scheme (a drive letter, not a scheme) throws CURIFormatError.
    static P<CURI> fromURIText(const CStringArg& text);
    // The "file" URI of an absolute local path: a drive path ("C:\Lang\", "C:/Lang"), a UNC path
    // ("\\server\share\x", also with the "\\?\" prefixes) or a POSIX path ("/usr/share/x").
    // A relative or empty path throws CURIFormatError.
    static P<CURI> fromLocalPath(const CStringArg& path);
    // URI text when `location` starts with a scheme of two or more letters and ":", otherwise a
    // local path.
    static P<CURI> fromLocation(const CStringArg& location);

    P<IString> toString() const override;
    P<IString> getScheme() const override;
    bool isFile() const override;
    P<IString> getHost() const override;
    P<IString> getPath() const override;
    P<IString> getName() const override;
    bool isFolder() const override;
    P<IString> getLocalPath() const override;
    // The local path in a given style. A POSIX path cannot name a remote host:
    // CURITypeNotSupportedError. An escape that decodes to NUL, to a separator inside a
    // segment, or to bytes that are not UTF-8 throws CURIFormatError.
    P<IString> getLocalPath(PathStyle style) const;
    P<IURI> resolve(const CStringArg& name, bool asFolder = false) const override;

private:
    struct Parts {
        std::string scheme;
        bool hasAuthority = false;
        std::string authority;
        std::string path;
        bool hasQuery = false;
        std::string query;
        bool hasFragment = false;
        std::string fragment;
    };

    explicit CURI(Parts parts);

    Parts m_parts;
    P<IString> m_text;
};

} // namespace kore
