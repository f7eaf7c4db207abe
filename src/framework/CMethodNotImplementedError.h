#pragma once

#include "framework/CObjectError.h"

namespace kore {

// "Method not implemented (<method>)."
class CMethodNotImplementedError : public CObjectError {
public:
    CMethodNotImplementedError(const IBase* object, const CStringArg& methodName);
    P<CException> clone() const override;
};

} // namespace kore
