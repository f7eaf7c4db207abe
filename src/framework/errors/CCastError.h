#pragma once

#include "framework/errors/CObjectError.h"

#include <typeinfo>

namespace kore {

// A framework cast that failed: "Error casting a '<class>' object to '<target>'."
class CCastError : public CObjectError {
public:
    CCastError(const IBase* object, const std::type_info& target);
    P<CException> clone() const override;

    const std::type_info& getTargetType() const { return *m_target; }

private:
    const std::type_info* m_target;
};

} // namespace kore
