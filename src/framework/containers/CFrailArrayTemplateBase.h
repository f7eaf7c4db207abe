#pragma once
// The type-independent half of TFrailArray: a listener list that does not keep its listeners
// alive. Entries are frail pointers to the listeners' IBase; a listener must remove itself before
// it dies (typically in its destructor). Listeners may add or remove listeners, themselves
// included, while they are being called.
//
// Not locked: the owner serialises access.

#include "framework/containers/TCleaningSimpleArray.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/objects/PFrail.h"

#include <cstdint>

namespace kore {

class CFrailArrayTemplateBase : public CObject {
public:
    CFrailArrayTemplateBase(const CFrailArrayTemplateBase&) = delete;
    CFrailArrayTemplateBase& operator=(const CFrailArrayTemplateBase&) = delete;

    // Number of listeners registered.
    int32_t getCount() const;
    void removeAll() { m_list->removeAll(); }

protected:
    CFrailArrayTemplateBase();
    ~CFrailArrayTemplateBase() override;

    // False when the listener is registered already (a listener is called once per event).
    // Throws CInvalidArgError for null.
    bool addObject(IBase* listener);
    // False when the listener was not registered.
    bool removeObject(const IBase* listener);
    bool containsObject(const IBase* listener) const;
    // Calls `visit` for every listener registered when the walk began and still registered.
    void walk(void (*visit)(void* context, IBase& listener), void* context);

private:
    P<TCleaningSimpleArray<PFrail<IBase>>> m_list;
};

} // namespace kore
