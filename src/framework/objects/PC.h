#pragma once
// Strong smart pointer with const access only: exactly P of a const pointee.

#include "framework/objects/P.h"

namespace kore {

template <class T>
using PC = P<const T>;

} // namespace kore
