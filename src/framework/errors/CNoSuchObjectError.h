#pragma once

#include "framework/errors/CError.h"

namespace kore {

// A named object that does not exist.
class CNoSuchObjectError : public CError {
public:
    explicit CNoSuchObjectError(const CStringArg& name);
    P<CException> clone() const override;

    P<IString> getName() const { return m_name; }

private:
    P<IString> m_name;
};

} // namespace kore
