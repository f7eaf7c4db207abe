#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class IString;
class IURI;

// One entry of a folder enumeration.
class IFileEntry : public virtual IBase {
public:
    // A folder's URI ends in "/".
    virtual P<IURI> getURI() const = 0;
    virtual P<IString> getName() const = 0;
    // The per-entry test: true for a folder (followed through links), false for anything else.
    virtual bool isFolder() const = 0;
};

} // namespace kore
