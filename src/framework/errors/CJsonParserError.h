#pragma once

#include "framework/errors/CError.h"

namespace kore {

// JSON text that does not parse ("JSONParser Error").
class CJsonParserError : public CError {
public:
    explicit CJsonParserError(const CStringArg& description);
    P<CException> clone() const override;
};

} // namespace kore
