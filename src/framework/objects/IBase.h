#pragma once
// Root interface of every framework object. Always inherited virtually, so an object that
// implements several interfaces still has exactly one reference count.

#include <cstdint>
#include <typeinfo>

namespace kore {

class IString;
template <class T>
class P;
struct CCastCandidate;

class IBase {
public:
    virtual ~IBase() = default;

    // Reference counting is logically const: a PC (const pointer) must be able to share and release.
    virtual int32_t addRef() const = 0;
    virtual int32_t release() const = 0;

    // Lets an object take part in its own casting (see Cast.h). Return false to refuse every cast;
    // set `redirect` to name another object to cast instead; set `candidates` to a list of objects
    // to try in order after the object itself. The answering object owns both outputs.
    virtual bool castQuery(const std::type_info& target, const IBase*& redirect,
                           const CCastCandidate*& candidates) const = 0;

    // A description of the object for messages; defaults to "class <name> object".
    virtual P<IString> toString() const = 0;

protected:
    IBase() = default;
    IBase(const IBase&) = default;
    IBase& operator=(const IBase&) = default;
};

} // namespace kore
