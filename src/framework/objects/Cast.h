#pragma once
// The framework's checked cast from any object to an interface. The object is asked first
// (castQuery): it may refuse, redirect the cast to another object, or offer further candidates.

#include "framework/errors/CCastError.h"
#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

#include <typeinfo>

namespace kore {

// One node of the candidate list an object may offer; owned by that object.
struct CCastCandidate {
    const IBase* object;
    const CCastCandidate* next;
};

namespace detail {

template <class T>
T* castWalk(const IBase* o, bool followRedirect, bool& refused)
{
    refused = false;
    if (!o)
        return nullptr;
    const IBase* redirect = nullptr;
    const CCastCandidate* candidates = nullptr;
    if (!o->castQuery(typeid(T), redirect, candidates)) {
        refused = true;
        return nullptr;
    }
    if (redirect && followRedirect) {
        bool ignored = false;
        return castWalk<T>(redirect, true, ignored);
    }
    if (T* direct = dynamic_cast<T*>(const_cast<IBase*>(o)))
        return direct;
    for (const CCastCandidate* c = candidates; c; c = c->next) {
        bool ignored = false;
        if (T* found = castWalk<T>(c->object, false, ignored))
            return found;
    }
    return nullptr;
}

} // namespace detail

// Never throws: null for a null object, a refusing object, or an object that cannot be cast.
template <class T>
T* tryCast(const IBase* o, bool followRedirect = true)
{
    bool refused = false;
    return detail::castWalk<T>(o, followRedirect, refused);
}

// Null for a null object; throws CCastError when the object cannot be cast.
template <class T>
T* cast(const IBase* o)
{
    if (!o)
        return nullptr;
    if (T* result = tryCast<T>(o, true))
        return result;
    throw CCastError(o, typeid(T));
}

template <class T, class U>
T* tryCast(const P<U>& o, bool followRedirect = true)
{
    return tryCast<T>(static_cast<const IBase*>(o.get()), followRedirect);
}

template <class T, class U>
T* cast(const P<U>& o)
{
    return cast<T>(static_cast<const IBase*>(o.get()));
}

} // namespace kore
