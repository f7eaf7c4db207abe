#pragma once

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"

#include <cstdint>
#include <vector>

namespace kore {

// A JSON array: values by index. Values are any framework object, usually variants; a null value
// is stored as a CNull. Not locked: the owner serialises access.
class CVariantArray final : public CObject {
public:
    void add(P<IBase> value);
    // Replaces the value at `index`; throws CInvalidArgError for an index outside the array.
    void set(uint32_t index, P<IBase> value);
    // The value at `index`, or null outside the array.
    P<IBase> get(uint32_t index) const;
    // False for an index outside the array.
    bool remove(uint32_t index);
    void clear() noexcept { m_values.clear(); }
    uint32_t getCount() const noexcept { return static_cast<uint32_t>(m_values.size()); }

private:
    std::vector<P<IBase>> m_values;
};

} // namespace kore
