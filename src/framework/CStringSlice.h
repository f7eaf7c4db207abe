#pragma once
// A view of a range of characters of another string: borrows the parent's bytes and keeps the
// parent alive.

#include "framework/CString.h"
#include "framework/PC.h"

namespace kore {

class CStringSlice : public CString {
public:
    CStringSlice(const IString& parent, uint32_t byteStart, uint32_t byteEnd, uint32_t charCount)
        : CString(SliceTag{}, parent.getBuffer() + byteStart, byteEnd - byteStart, charCount,
                  *parent.getEncoding()),
          m_parent(&parent)
    {
    }

private:
    PC<IString> m_parent;
};

} // namespace kore
