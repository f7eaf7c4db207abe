#pragma once

#include "framework/TValueBox.h"

#include <cstdint>

namespace kore {

// A 64-bit integer variant; prints with "%d" as a signed 64-bit value.
class CInt64 final : public TValueBox<int64_t> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
};

} // namespace kore
