#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class CStringArg;
class IURI;

// The path service (instance()): local paths of the platform and well-known folders.
class IPathes : public virtual IBase {
public:
    // The "file" URI of a local folder, always ending in "/" so that names resolve inside it.
    // A relative path is taken relative to the process's current folder. Throws
    // CURIFormatError for an empty path or one the platform cannot make absolute.
    virtual P<IURI> folderPathToURI(const CStringArg& path) = 0;
    // The folder for temporary files.
    virtual P<IURI> getTempFolder() = 0;

    static P<IPathes>& instance();
};

} // namespace kore
