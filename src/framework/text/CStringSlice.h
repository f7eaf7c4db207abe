#pragma once
// A view of a range of characters of another string: borrows the parent's bytes and keeps the
// string that owns them alive. A slice of a slice holds that owner, not the slice it was cut
// from, so slicing in a loop leaves no chain behind (whose release would recurse once per link).

#include "framework/objects/PC.h"
#include "framework/text/CString.h"

namespace kore {

class CStringSlice : public CString {
public:
    CStringSlice(const IString& parent, uint32_t byteStart, uint32_t byteEnd, uint32_t charCount)
        : CString(SliceTag{}, parent.getBuffer() + byteStart, byteEnd - byteStart, charCount, *parent.getEncoding()),
          m_parent(owner(parent))
    {
    }

private:
    static const IString* owner(const IString& parent)
    {
        const auto* slice = dynamic_cast<const CStringSlice*>(&parent);
        return slice ? slice->m_parent.get() : &parent;
    }

    PC<IString> m_parent;
};

} // namespace kore
