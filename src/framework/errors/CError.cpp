// The general and object errors.
#include "framework/errors/CError.h"

#include "framework/errors/CCastError.h"
#include "framework/errors/CEndOfEnumError.h"
#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/errors/CInvalidVolumeIDError.h"
#include "framework/errors/CJsonParserError.h"
#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/errors/CNoSuchObjectError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/errors/CParseError.h"
#include "framework/errors/CReadOnlyError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/text/CString.h"

namespace kore {

namespace {
// `text` unless it is empty, else `fallback`.
const IString& orElse(const CStringArg& text, const CStringArg& fallback)
{
    return text->getLength() ? text.get() : fallback.get();
}
} // namespace

CError::CError(const CStringArg& generalDescription, const CStringArg& description)
    : CException(orElse(generalDescription, "Error"), orElse(description, "Unspecified error"))
{
}

P<CException> CError::clone() const
{
    return make<CError>(*this);
}

COutOfmemoryException::COutOfmemoryException() : CException("OutOfMemory", "Unspecified error")
{
}

P<CException> COutOfmemoryException::clone() const
{
    return make<COutOfmemoryException>(*this);
}

// --- Object errors

P<IString> CObjectError::describe(const IBase* object, const CStringArg& objectDescription)
{
    if (objectDescription->getLength())
        return keepText(objectDescription);
    if (object)
        return object->toString();
    return keepText("unknown object");
}

CObjectError::CObjectError(const IBase* object, const CStringArg& text, const CStringArg& objectDescription)
    : CObjectError(Described{}, object, describe(object, objectDescription), text)
{
}

CObjectError::CObjectError(Described, const IBase* object, P<IString> objectDescription, const CStringArg& description,
                           const CStringArg& generalDescription)
    : CError(generalDescription, description.get().replaceAll("%OBJECTDESC%", objectDescription)),
      m_object(const_cast<IBase*>(object)), m_objectDescription(std::move(objectDescription))
{
}

P<CException> CObjectError::clone() const
{
    return make<CObjectError>(*this);
}

CCastError::CCastError(const IBase* object, const std::type_info& target)
    : CObjectError(Described{}, object, describe(object, ""),
                   *keepText("Error casting a '")
                        ->concat(object ? getClassName(*object) : keepText("unknown object"))
                        ->concat("' object to '")
                        ->concat(getClassName(target))
                        ->concat("'."),
                   "Cast error"),
      m_target(&target)
{
}

P<CException> CCastError::clone() const
{
    return make<CCastError>(*this);
}

CInvalidArgError::CInvalidArgError(const IBase* object, const CStringArg& methodName, const CStringArg& argumentName,
                                   const CStringArg& objectDescription)
    : CObjectError(Described{}, object, describe(object, objectDescription),
                   *keepText("An invalid argument was passed to method '")
                        ->concat(orElse(methodName, "unspecified method"))
                        ->concat("' of '")
                        ->concat(describe(object, objectDescription))
                        ->concat("': ")
                        ->concat(orElse(argumentName, "unspecified argument"))),
      m_method(keepText(methodName)), m_argument(keepText(argumentName))
{
}

P<CException> CInvalidArgError::clone() const
{
    return make<CInvalidArgError>(*this);
}

CMethodNotImplementedError::CMethodNotImplementedError(const IBase* object, const CStringArg& methodName)
    : CObjectError(Described{}, object, describe(object, ""),
                   methodName->getLength() ? *keepText("Method not implemented (")->concat(methodName)->concat(").")
                                           : *keepText("Method not implemented (unspecified method.)"))
{
}

P<CException> CMethodNotImplementedError::clone() const
{
    return make<CMethodNotImplementedError>(*this);
}

CInvalidObjectStateError::CInvalidObjectStateError(const IBase* object, const CStringArg& state,
                                                   const CStringArg& objectDescription)
    : CObjectError(Described{}, object, describe(object, objectDescription),
                   *keepText("The object is in an invalid state (")->concat(state)->concat(").")),
      m_state(keepText(state))
{
}

CInvalidObjectStateError::CInvalidObjectStateError(Described, const IBase* object, const CStringArg& state,
                                                   const CStringArg& description)
    : CObjectError(Described{}, object, describe(object, ""), description), m_state(keepText(state))
{
}

P<CException> CInvalidObjectStateError::clone() const
{
    return make<CInvalidObjectStateError>(*this);
}

CEndOfEnumError::CEndOfEnumError(const IBase* enumerator)
    : CInvalidObjectStateError(Described{}, enumerator, "end of enumeration",
                               getLocalizedText("kore.CEndOfEnumError.desc", "end of enumeration already reached"))
{
}

P<CException> CEndOfEnumError::clone() const
{
    return make<CEndOfEnumError>(*this);
}

// --- Other general errors

CNoSuchObjectError::CNoSuchObjectError(const CStringArg& name)
    : CError("", getLocalizedText("kore.CNoSuchObjectError.desc", "No such object.")), m_name(keepText(name))
{
}

P<CException> CNoSuchObjectError::clone() const
{
    return make<CNoSuchObjectError>(*this);
}

CReadOnlyError::CReadOnlyError(const CStringArg& objectDescription)
    : CError("", localizedWith("kore.readOnlyErrorObjectDesc",
                               "The object (%DESC%) is read-only and cannot be changed.", "%DESC%", objectDescription))
{
}

P<CException> CReadOnlyError::clone() const
{
    return make<CReadOnlyError>(*this);
}

CParseError::CParseError(const CStringArg& description) : CError("Parse error", description)
{
}

P<CException> CParseError::clone() const
{
    return make<CParseError>(*this);
}

CJsonParserError::CJsonParserError(const CStringArg& description) : CError("JSONParser Error", description)
{
}

P<CException> CJsonParserError::clone() const
{
    return make<CJsonParserError>(*this);
}

CInvalidVolumeIDError::CInvalidVolumeIDError(const CStringArg& volumeId)
    : CError("Invalid Volume ID Error", keepText("Invalid volume id: ")->concat(volumeId))
{
}

P<CException> CInvalidVolumeIDError::clone() const
{
    return make<CInvalidVolumeIDError>(*this);
}

} // namespace kore
