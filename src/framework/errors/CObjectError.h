#pragma once

#include "framework/errors/CError.h"

namespace kore {

// A failure of one object. The description is `text` with "%OBJECTDESC%" replaced by the object
// description: `objectDescription` when given, else the object's toString(), else "unknown object".
// The object is kept alive by the error, so it must be a reference-counted (heap) object; code
// running on a stack object passes null and describes itself in `objectDescription`.
class CObjectError : public CError {
public:
    CObjectError(const IBase* object, const CStringArg& text, const CStringArg& objectDescription = "");
    P<CException> clone() const override;

    P<IBase> getObject() const { return m_object; }
    // The description of the object used in the texts.
    P<IString> getObjectDescription() const { return m_objectDescription; }

    static P<IString> describe(const IBase* object, const CStringArg& objectDescription);

protected:
    // For subclasses that build their description themselves.
    struct Described {};
    CObjectError(Described, const IBase* object, P<IString> objectDescription, const CStringArg& description,
                 const CStringArg& generalDescription = "Object error");

private:
    P<IBase> m_object;
    P<IString> m_objectDescription;
};

} // namespace kore
