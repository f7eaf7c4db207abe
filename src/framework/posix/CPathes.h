#pragma once

#include "framework/io/IPathes.h"
#include "framework/objects/CObject.h"

namespace kore::posix {

// The path service on POSIX systems.
class CPathes : public CObject, public IPathes {
public:
    P<IURI> folderPathToURI(const CStringArg& path) override;
    P<IURI> getTempFolder() override;
};

} // namespace kore::posix
