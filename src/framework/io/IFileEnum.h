#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

#include <cstdint>

namespace kore {

class IFileEntry;

// The entries of a folder enumeration, taken when the enumeration was made.
class IFileEnum : public virtual IBase {
public:
    virtual bool hasNext() const = 0;
    // The next entry; after the last one throws CEndOfEnumError.
    virtual P<IFileEntry> next() = 0;
    // Starts again at the first entry.
    virtual void reset() = 0;
    virtual uint32_t getCount() const = 0;
};

} // namespace kore
