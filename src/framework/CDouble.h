#pragma once

#include "framework/TValueBox.h"

#include <cstdint>

namespace kore {

// A floating-point variant; prints with "%g".
class CDouble final : public TValueBox<double> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
};

} // namespace kore
