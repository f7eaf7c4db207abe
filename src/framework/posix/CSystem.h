#pragma once

#include "framework/io/ISystem.h"
#include "framework/objects/CObject.h"

namespace kore::posix {

// The system service on POSIX systems.
class CSystem : public CObject, public ISystem {
public:
    bool fileExists(const IURI& uri) override;
    bool folderExists(const IURI& uri) override;
};

} // namespace kore::posix
