#pragma once

#include "framework/io/IStreamManager.h"
#include "framework/objects/CObject.h"

namespace kore {

// The stream manager: "file" URIs open as buffered disk streams.
class CStreamManager : public CObject, public IStreamManager {
public:
    P<IStream> openURI(const IURI& uri, uint32_t mode) override;
    P<IStream> openPath(const CStringArg& path, uint32_t mode) override;
};

} // namespace kore
