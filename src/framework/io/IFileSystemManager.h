#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class CStringArg;
class IFileEnum;
class IURI;

// The file-system service (instance()): what folders hold.
class IFileSystemManager : public virtual IBase {
public:
    // The entries of a folder whose names match `pattern`, in name order (see
    // CFileSystemManager::compareNames); "." and ".." never appear. In the pattern "*" stands for
    // any run of characters, "?" for exactly one, everything else for itself; letter case
    // counts where the file system's does. Throws CFileNotFoundError for a folder that does not
    // exist (or is a file), CFileAccessDeniedError, CURITypeNotSupportedError for a URI that
    // names no local folder, CInvalidArgError for an empty pattern or one holding "/" or "\".
    virtual P<IFileEnum> enumerate(const IURI& folder, const CStringArg& pattern) = 0;

    static P<IFileSystemManager>& instance();
};

} // namespace kore
