#pragma once
// The case table behind case-insensitive comparison: a two-level table of signed 16-bit deltas,
// pages of 512 code points, built at compile time from the Unicode simple case mappings.

#include <cstdint>

namespace kore {

class CCaseTable {
public:
    static constexpr uint32_t kPageBits = 9;
    static constexpr uint32_t kPageSize = 1u << kPageBits;

    // The case-folded form of `cp`; code points beyond the table map to themselves.
    static uint32_t map(uint32_t cp) noexcept;
};

} // namespace kore
