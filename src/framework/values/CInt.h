#pragma once

#include "framework/values/TValueBox.h"

#include <cstdint>

namespace kore {

// A 32-bit integer variant; prints with "%d".
class CInt final : public TValueBox<int32_t> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
};

} // namespace kore
