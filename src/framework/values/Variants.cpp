// The scalar variants, CVariantMap and CVariantArray.
#include "framework/errors/CInvalidArgError.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"
#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"
#include "framework/values/CNull.h"
#include "framework/values/CValueList.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace kore {

namespace {
P<IBase> orNull(P<IBase> value)
{
    return value ? std::move(value) : P<IBase>(make<CNull>());
}
} // namespace

P<IString> CInt::toString() const
{
    return formatString("%d", getValue());
}

P<IString> CInt64::toString() const
{
    return formatString("%d", getValue());
}

P<IBase> makeInteger(int64_t value)
{
    if (value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max())
        return make<CInt>(static_cast<int32_t>(value));
    return make<CInt64>(value);
}

P<IString> CDouble::toString() const
{
    return formatString("%g", getValue());
}

P<IString> CDouble::toExactString() const
{
    const double value = getValue();
    std::string text;
    for (int precision = 15; precision <= 17; ++precision) {
        text = formatString("%.*g", precision, value)->toUTF8();
        double back = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), back);
        if (result.ec == std::errc() && back == value)
            break;
    }
    if (text.find_first_not_of("-0123456789") == std::string::npos)
        text += ".0";
    return CString::fromUTF8(text);
}

P<IString> CBool::toString() const
{
    return CString::fromUTF8(getValue() ? "true" : "false");
}

P<IString> CNull::toString() const
{
    return CString::fromUTF8("null");
}

void CVariantMap::set(const CStringArg& key, P<IBase> value)
{
    value = orNull(std::move(value));
    const auto found = m_members.find(key.get());
    if (found != m_members.end())
        found->second = std::move(value);
    else
        m_members.emplace(CValueList::copyText(key.get()), std::move(value));
}

P<IBase> CVariantMap::get(const CStringArg& key) const
{
    const auto found = m_members.find(key.get());
    return found != m_members.end() ? found->second : nullptr;
}

bool CVariantMap::contains(const CStringArg& key) const
{
    return m_members.find(key.get()) != m_members.end();
}

bool CVariantMap::remove(const CStringArg& key)
{
    const auto found = m_members.find(key.get());
    if (found == m_members.end())
        return false;
    m_members.erase(found);
    return true;
}

void CVariantArray::add(P<IBase> value)
{
    m_values.push_back(orNull(std::move(value)));
}

void CVariantArray::set(uint32_t index, P<IBase> value)
{
    if (index >= m_values.size())
        throw CInvalidArgError(this, "CVariantArray::set", "index (outside the array)");
    m_values[index] = orNull(std::move(value));
}

P<IBase> CVariantArray::get(uint32_t index) const
{
    return index < m_values.size() ? m_values[index] : nullptr;
}

bool CVariantArray::remove(uint32_t index)
{
    if (index >= m_values.size())
        return false;
    m_values.erase(m_values.begin() + index);
    return true;
}

} // namespace kore
