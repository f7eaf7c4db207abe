#pragma once

#include "framework/objects/CObject.h"

namespace kore {

// One immutable value of type T as a framework object: the base of the scalar variants (CInt,
// CInt64, CDouble, CBool). Each variant is a class of its own that casts to nothing but itself
// (and this base), so readers tell the kinds apart by cast alone.
template <class T>
class TValueBox : public CObject {
public:
    explicit TValueBox(T value) noexcept : m_value(value) {}

    T getValue() const noexcept { return m_value; }

private:
    const T m_value;
};

} // namespace kore
