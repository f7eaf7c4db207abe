#pragma once
// A variant tree as one line of text, so that a test compares kinds and values in one check.

#include "FrameworkTest.h"

#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"
#include "framework/values/CNull.h"
#include "framework/values/CValueList.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <map>
#include <string>

namespace kore_test {

// A value with its kind, members in key order: "list{a=int 1;b=[double 0.5,true];}",
// "map{}", "string 'x'", "null"; "?" for an object that is no variant.
inline std::string describe(IBase& value)
{
    std::map<std::string, std::string> members;
    const auto collect = [&](const IString& key, IBase& member) { members[key.toUTF8()] = describe(member); };
    std::string out;
    if (auto* list = tryCast<CValueList>(&value)) {
        list->forEach(collect);
        out = "list{";
    } else if (auto* map = tryCast<CVariantMap>(&value)) {
        map->forEach(collect);
        out = "map{";
    } else if (auto* array = tryCast<CVariantArray>(&value)) {
        for (uint32_t i = 0; i < array->getCount(); ++i)
            out += (i ? "," : "") + describe(*array->get(i));
        return "[" + out + "]";
    } else if (auto* text = tryCast<IString>(&value)) {
        return "string '" + text->toUTF8() + "'";
    } else if (auto* i32 = tryCast<CInt>(&value)) {
        return "int " + std::to_string(i32->getValue());
    } else if (auto* i64 = tryCast<CInt64>(&value)) {
        return "int64 " + std::to_string(i64->getValue());
    } else if (auto* real = tryCast<CDouble>(&value)) {
        return "double " + real->toExactString()->toUTF8();
    } else {
        auto* flag = tryCast<CBool>(&value);
        return flag ? (flag->getValue() ? "true" : "false") : tryCast<CNull>(&value) ? "null" : "?";
    }
    for (const auto& [key, member] : members)
        out += key + "=" + member + ";";
    return out + "}";
}

inline std::string describe(const P<IBase>& value)
{
    return value ? describe(*value) : "<null pointer>";
}

} // namespace kore_test
