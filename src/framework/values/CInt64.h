#pragma once

#include "framework/values/TValueBox.h"

#include <cstdint>

namespace kore {

// A 64-bit integer variant; prints with "%d" as a signed 64-bit value.
class CInt64 final : public TValueBox<int64_t> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
};

// A CInt when `value` fits 32 bits, else a CInt64: the variant an integer is kept as.
P<IBase> makeInteger(int64_t value);

} // namespace kore
