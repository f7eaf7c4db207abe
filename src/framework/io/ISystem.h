#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class IURI;

// The system service (instance()): facts about the local system.
class ISystem : public virtual IBase {
public:
    // True when the URI names an existing file (not a folder). Letter case counts as it does
    // for opening the file. Throws CURITypeNotSupportedError for a URI that names no local file.
    virtual bool fileExists(const IURI& uri) = 0;
    // True when the URI names an existing folder.
    virtual bool folderExists(const IURI& uri) = 0;

    static P<ISystem>& instance();
};

} // namespace kore
