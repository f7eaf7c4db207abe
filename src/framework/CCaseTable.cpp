#include "framework/CCaseTable.h"

namespace kore {

// Provisional: ASCII only, until the generated table replaces this file.
uint32_t CCaseTable::map(uint32_t cp) noexcept
{
    return cp >= 'A' && cp <= 'Z' ? cp + 32 : cp;
}

} // namespace kore
