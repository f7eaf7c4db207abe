#pragma once

#include "framework/io/IPathes.h"
#include "framework/objects/CObject.h"

namespace kore::win32 {

// The path service on Windows.
class CPathes : public CObject, public IPathes {
public:
    P<IURI> folderPathToURI(const CStringArg& path) override;
    P<IURI> getTempFolder() override;
};

} // namespace kore::win32
