#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class CValueList;
class IURI;

// A value list kept in a file. The store owns its list; callers change the list and call
// store() to write it.
class IValueStore : public virtual IBase {
public:
    // Replaces the list's content with the file's values. When the file cannot be read or does
    // not parse, the list stays as it was and the error (a CFileError or CURIError) carries the
    // file's URI.
    virtual void load() = 0;
    // Writes the list to the file. The old file is replaced only by a complete new one: after a
    // failure, or a crash, the file holds the old values or the new ones.
    virtual void store() = 0;
    virtual P<CValueList> getValueList() const = 0;
    virtual P<IURI> getURI() const = 0;
};

} // namespace kore
