#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class CStringArg;
class IString;

// A resource location. Its toString() is the URI text, always in normalised, escaped form
// (lower-case scheme, "file:///..." for local files, upper-case percent escapes).
class IURI : public virtual IBase {
public:
    // The scheme in lower case, without the ":" ("file", "http").
    virtual P<IString> getScheme() const = 0;
    // True for the "file" scheme.
    virtual bool isFile() const = 0;
    // The host of the authority, unescaped; empty for a local file or a URI without one.
    virtual P<IString> getHost() const = 0;
    // The path component as it stands in the text (escaped).
    virtual P<IString> getPath() const = 0;
    // The last path segment, unescaped; a folder URI ("/a/b/") gives its folder name ("b").
    virtual P<IString> getName() const = 0;
    // True when the path ends in "/": the URI names a folder.
    virtual bool isFolder() const = 0;
    // The local path of a "file" URI in the form of the platform the process runs on.
    // Throws CURITypeNotSupportedError for other schemes (and, on POSIX, for a remote host).
    virtual P<IString> getLocalPath() const = 0;
    // The URI of the entry `name` inside this folder. The name is one path segment and is
    // escaped here; a missing trailing "/" on this URI is supplied. With `asFolder` the result
    // ends in "/". Throws CInvalidArgError for an empty name, "." or "..", or a name containing
    // "/" (a "\" is a character of POSIX names; a Windows path refuses it later) and
    // CURITypeNotSupportedError for a URI without a hierarchical path ("mailto:x").
    virtual P<IURI> resolve(const CStringArg& name, bool asFolder = false) const = 0;
};

} // namespace kore
