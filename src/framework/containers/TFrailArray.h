#pragma once
// The framework's listener list for listener interface L: frail (it never keeps a listener
// alive, so a listener holding the object it listens to makes no cycle), each listener at most
// once, called in the order of adding. See CFrailArrayTemplateBase for the rules.

#include "framework/containers/CFrailArrayTemplateBase.h"

#include <type_traits>

namespace kore {

template <class L>
class TFrailArray : public CFrailArrayTemplateBase {
public:
    using ListenerType = L;

    TFrailArray() = default;

    bool add(L* listener) { return addObject(listener); }
    bool remove(L* listener) { return removeObject(listener); }
    bool contains(L* listener) const { return containsObject(listener); }

    // Calls `notify(L&)` for every listener. A listener that `notify` or an earlier listener
    // removes is not called afterwards; listeners added meanwhile wait for the next event.
    template <class Notify>
    void forEach(Notify&& notify)
    {
        walk(
            [](void* context, IBase& listener) {
                // Only L pointers are ever added, so the cast finds the listener's L again.
                (*static_cast<std::remove_reference_t<Notify>*>(context))(*dynamic_cast<L*>(&listener));
            },
            &notify);
    }
};

} // namespace kore
