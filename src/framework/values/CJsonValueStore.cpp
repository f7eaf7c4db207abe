#include "framework/values/CJsonValueStore.h"

#include "framework/errors/CJsonParserError.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

namespace kore {

namespace {

// `value` with every value list in it turned into a CVariantMap, for the printer.
P<IBase> toVariant(IBase& value)
{
    const auto mapOf = [](const auto& members) {
        auto map = make<CVariantMap>();
        members.forEach([&](const IString& key, IBase& member) { map->set(key, toVariant(member)); });
        return map;
    };
    if (const auto* list = tryCast<CValueList>(&value))
        return mapOf(*list);
    if (const auto* map = tryCast<CVariantMap>(&value))
        return mapOf(*map);
    if (const auto* array = tryCast<CVariantArray>(&value)) {
        auto copy = make<CVariantArray>();
        for (uint32_t i = 0; i < array->getCount(); ++i)
            copy->add(toVariant(*array->get(i)));
        return copy;
    }
    return P<IBase>(&value);
}

// The members of `map` into `values`, objects as nested value lists.
void fillList(const CVariantMap& map, CValueList& values)
{
    map.forEach([&](const IString& key, IBase& member) {
        if (const auto* nested = tryCast<CVariantMap>(&member)) {
            auto list = make<CValueList>();
            fillList(*nested, *list);
            values.set(key, list);
        } else {
            values.set(key, P<IBase>(&member));
        }
    });
}

} // namespace

void CJsonValueStore::decode(std::string_view bytes, CValueList& values) const
{
    const P<IBase> tree = make<CJsonParser>()->parseUTF8(bytes);
    const auto* map = tryCast<CVariantMap>(tree);
    if (!map)
        throw CJsonParserError("the file holds no JSON object");
    fillList(*map, values);
}

std::string CJsonValueStore::encode(const CValueList& values) const
{
    const P<IBase> tree = toVariant(const_cast<CValueList&>(values));
    return make<CJsonPrinter>(true, true)->print(tree.get())->toUTF8() + "\n";
}

} // namespace kore
