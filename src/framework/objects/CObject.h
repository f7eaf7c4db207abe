#pragma once
// The usual concrete base of framework objects: the atomic count of CReferencable, seen through
// the (virtual) IBase of every interface the object implements.

#include "framework/objects/CReferencable.h"
#include "framework/objects/IBase.h"

namespace kore {

class CObject : public CReferencable, public virtual IBase {
public:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
    ~CObject() override;

    int32_t addRef() const override { return CReferencable::addRef(); }
    int32_t release() const override { return CReferencable::release(); }
    // Default: the object may be cast to anything it derives from; no redirect, no candidates.
    bool castQuery(const std::type_info& target, const IBase*& redirect,
                   const CCastCandidate*& candidates) const override;
    // "class <run-time class name> object".
    P<IString> toString() const override;
};

// Run-time class name of an object in the "class kore::CObject" form, on every compiler.
P<IString> getClassName(const IBase& object);
// The same for a type: "class kore::IString".
P<IString> getClassName(const std::type_info& type);

} // namespace kore
