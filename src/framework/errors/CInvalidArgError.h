#pragma once

#include "framework/errors/CObjectError.h"

namespace kore {

// "An invalid argument was passed to method '<method>' of '<object>': <argument>".
class CInvalidArgError : public CObjectError {
public:
    CInvalidArgError(const IBase* object, const CStringArg& methodName, const CStringArg& argumentName,
                     const CStringArg& objectDescription = "");
    P<CException> clone() const override;

    P<IString> getMethodName() const { return m_method; }
    P<IString> getArgumentName() const { return m_argument; }

private:
    P<IString> m_method;
    P<IString> m_argument;
};

} // namespace kore
