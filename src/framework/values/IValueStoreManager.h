#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class CStringArg;
class IURI;
class IValueStore;
class IValueStoreFactory;

// The process-wide value-store service (instance()): picks the store for a file by its
// extension. It starts with the JSON store (".json") and, where the build has TinyXML-2, the XML
// store (".xml"). Safe to use from several threads.
class IValueStoreManager : public virtual IBase {
public:
    // Registers a factory for its extension; it replaces one registered before for the same
    // extension (letter case ignored).
    virtual void addFactory(IValueStoreFactory& factory) = 0;
    // The factory for an extension with its dot (".json", letter case ignored), or null.
    virtual P<IValueStoreFactory> getFactory(const CStringArg& extension) const = 0;
    // A store for the file at `uri`, by the extension of its name; nothing is read yet. Throws
    // CURITypeNotSupportedError when no factory serves the extension.
    virtual P<IValueStore> createStore(const IURI& uri) = 0;

    static P<IValueStoreManager>& instance();
};

} // namespace kore
