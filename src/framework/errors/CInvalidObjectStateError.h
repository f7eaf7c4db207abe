#pragma once

#include "framework/errors/CObjectError.h"

namespace kore {

// "The object is in an invalid state (<state>)."
class CInvalidObjectStateError : public CObjectError {
public:
    CInvalidObjectStateError(const IBase* object, const CStringArg& state, const CStringArg& objectDescription = "");
    P<CException> clone() const override;

    P<IString> getState() const { return m_state; }

protected:
    CInvalidObjectStateError(Described, const IBase* object, const CStringArg& state, const CStringArg& description);

private:
    P<IString> m_state;
};

} // namespace kore
