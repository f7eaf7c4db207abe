#pragma once
// Offset arithmetic that sizes read from a file cannot overflow.

#include <cstdint>
#include <limits>

namespace chf {

inline bool addWithoutOverflow(int64_t a, int64_t b, int64_t& sum)
{
    return !__builtin_add_overflow(a, b, &sum);
}

// a + b, held at the 64-bit limit instead of wrapping. Only a chunk that claims a size near 2^63
// gets there; its region then lies behind every file, and I/O there fails in the file stream.
inline int64_t saturatingAdd(int64_t a, int64_t b)
{
    int64_t sum = 0;
    if (addWithoutOverflow(a, b, sum))
        return sum;
    return b > 0 ? std::numeric_limits<int64_t>::max() : std::numeric_limits<int64_t>::min();
}

} // namespace chf
