#pragma once

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <cstdint>
#include <map>

namespace kore {

// A JSON object: values by string key, enumerated in the keys' order (the string comparison by
// code point, IString::compare), so that printing a map is deterministic. Keys are copied in;
// values are any framework object, usually variants. A null value is stored as a CNull.
// Not locked: the owner serialises access.
class CVariantMap final : public CObject {
public:
    // Adds the member or replaces the value of an existing key.
    void set(const CStringArg& key, P<IBase> value);
    // The value under `key`, or null when the key is absent.
    P<IBase> get(const CStringArg& key) const;
    bool contains(const CStringArg& key) const;
    // False when the key was absent.
    bool remove(const CStringArg& key);
    void clear() noexcept { m_members.clear(); }
    uint32_t getCount() const noexcept { return static_cast<uint32_t>(m_members.size()); }

    // Calls visit(const IString& key, IBase& value) for every member in key order. The visit
    // must not change the map.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        for (const auto& [key, value] : m_members)
            visit(*key, *value);
    }

private:
    struct KeyLess {
        using is_transparent = void;
        bool operator()(const P<IString>& a, const P<IString>& b) const { return a->compare(*b) < 0; }
        bool operator()(const IString& a, const P<IString>& b) const { return a.compare(*b) < 0; }
        bool operator()(const P<IString>& a, const IString& b) const { return a->compare(b) < 0; }
    };

    std::map<P<IString>, P<IBase>, KeyLess> m_members;
};

} // namespace kore
