#pragma once

#include "framework/errors/CObjectError.h"

namespace kore {

// "Method not implemented (<method>)."
class CMethodNotImplementedError : public CObjectError {
public:
    CMethodNotImplementedError(const IBase* object, const CStringArg& methodName);
    P<CException> clone() const override;
};

} // namespace kore
