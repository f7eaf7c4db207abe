#pragma once

#include "framework/values/TValueBox.h"

#include <cstdint>

namespace kore {

// A floating-point variant; prints with "%g".
class CDouble final : public TValueBox<double> {
public:
    using TValueBox::TValueBox;
    P<IString> toString() const override;
    // The shortest text (at most 17 significant digits) that reads back as exactly this value,
    // with ".0" added where it would otherwise read as an integer: what stores write, so that
    // no digit and no type is lost. Infinities and NaN come out as "inf", "-inf" and "nan".
    P<IString> toExactString() const;
};

} // namespace kore
