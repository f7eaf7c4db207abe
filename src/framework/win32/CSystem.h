#pragma once

#include "framework/io/ISystem.h"
#include "framework/objects/CObject.h"

namespace kore::win32 {

// The system service on Windows.
class CSystem : public CObject, public ISystem {
public:
    bool fileExists(const IURI& uri) override;
    bool folderExists(const IURI& uri) override;
};

} // namespace kore::win32
