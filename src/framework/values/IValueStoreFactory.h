#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class IString;
class IURI;
class IValueStore;

// Makes value stores of one file format, chosen by the value-store manager for its extension.
class IValueStoreFactory : public virtual IBase {
public:
    // The file name extension it serves, with its dot (".json").
    virtual P<IString> getExtension() const = 0;
    // A store for the file at `uri`, with an empty list; nothing is read yet.
    virtual P<IValueStore> createStore(const IURI& uri) = 0;
};

} // namespace kore
