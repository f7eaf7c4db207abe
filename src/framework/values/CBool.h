#pragma once

#include "framework/values/TValueBox.h"

#include <cstdint>

namespace kore {

// A truth-value variant; prints as "true" or "false".
class CBool final : public TValueBox<bool> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
};

} // namespace kore
