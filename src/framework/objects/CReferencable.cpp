#include "framework/objects/CReferencable.h"

#include <cassert>

namespace kore {

int32_t CReferencable::addRef() const
{
    return m_count.fetch_add(1) + 1;
}

int32_t CReferencable::release() const
{
    const int32_t count = m_count.fetch_sub(1) - 1;
    // A count between the destroying mark and zero means a release without a matching addRef.
    assert(count >= 0 || count <= kDestroyingCount / 2);
    if (count != 0)
        return count;
    m_count.store(kDestroyingCount);
    const_cast<CReferencable*>(this)->deleteThis();
    return 0;
}

void CReferencable::deleteThis()
{
    delete this;
}

} // namespace kore
