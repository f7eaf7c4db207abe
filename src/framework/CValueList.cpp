#include "framework/CValueList.h"

#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/Cast.h"

namespace kore {

P<IString> CValueList::copyText(const IString& text)
{
    return make<CString>(text.getBuffer(), text.getByteLength(), text.getLength(), false,
                         *text.getEncoding(), CString::kCopy);
}

void CValueList::set(const IString& key, uint32_t hash, P<IBase> value)
{
    if (!value)
        throw CInvalidArgError(nullptr, "CValueList::set", "value (null)", "CValueList");
    IString* text = tryCast<IString>(value.get());
    Entry& entry = m_table.findOrAddHashed(key, hash, [&key]() { return copyText(key); });
    entry.text = text;
    entry.value = std::move(value);
}

P<IBase> CValueList::get(const CStringArg& key) const
{
    const Entry* entry = m_table.find(key.get());
    return entry ? entry->value : nullptr;
}

IString* CValueList::peekString(const IString& key, uint32_t hash) const
{
    const Entry* entry = m_table.findHashed(key, hash);
    return entry ? entry->text : nullptr;
}

bool CValueList::contains(const CStringArg& key) const
{
    return m_table.contains(key.get());
}

bool CValueList::remove(const CStringArg& key)
{
    return m_table.remove(key.get());
}

} // namespace kore
