#include "framework/values/CValueList.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"
#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"

namespace kore {

P<IString> CValueList::copyText(const IString& text)
{
    return make<CString>(text.getBuffer(), text.getByteLength(), text.getLength(), false, *text.getEncoding(),
                         CString::kCopy);
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

void CValueList::setString(const CStringArg& key, const CStringArg& text)
{
    set(key, copyText(text.get()));
}

void CValueList::setInteger(const CStringArg& key, int64_t value)
{
    set(key, makeInteger(value));
}

void CValueList::setDouble(const CStringArg& key, double value)
{
    set(key, make<CDouble>(value));
}

void CValueList::setBool(const CStringArg& key, bool value)
{
    set(key, make<CBool>(value));
}

namespace {

std::optional<int64_t> integerOf(const IBase* value)
{
    if (const auto* i32 = tryCast<CInt>(value))
        return i32->getValue();
    if (const auto* i64 = tryCast<CInt64>(value))
        return i64->getValue();
    return std::nullopt;
}

} // namespace

std::optional<int64_t> CValueList::getInteger(const CStringArg& key) const
{
    return integerOf(get(key).get());
}

std::optional<double> CValueList::getDouble(const CStringArg& key) const
{
    const P<IBase> value = get(key);
    if (const auto* real = tryCast<CDouble>(value))
        return real->getValue();
    if (const std::optional<int64_t> integer = integerOf(value.get()))
        return static_cast<double>(*integer);
    return std::nullopt;
}

std::optional<bool> CValueList::getBool(const CStringArg& key) const
{
    if (const auto* flag = tryCast<CBool>(get(key)))
        return flag->getValue();
    return std::nullopt;
}

P<CValueList> CValueList::getList(const CStringArg& key) const
{
    return P<CValueList>(tryCast<CValueList>(get(key)));
}

} // namespace kore
