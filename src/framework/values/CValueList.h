#pragma once
// A table of framework objects by string key. Keys compare exactly (case and every character
// count), by code point, whatever their encodings; the list keeps its own copy of each key, so
// keys may borrow caller memory. Values are usually variants (strings, CInt, CInt64, CDouble,
// CBool, CNull, CVariantMap, CVariantArray) or nested value lists: what value stores keep in
// their files.
//
// Not locked: the owner serialises access.

#include "framework/containers/TSimpleHashTable.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace kore {

class CValueList : public CObject {
public:
    // One value. A value that is a string is also kept as such, so that reading it back as a
    // string needs no cast.
    struct Entry {
        P<IBase> value;
        IString* text = nullptr;
    };

    CValueList() = default;
    CValueList(const CValueList&) = delete;
    CValueList& operator=(const CValueList&) = delete;

    // Adds the entry or replaces the value of an existing key. Throws CInvalidArgError for a
    // null value (a key is either present with a value or absent).
    void set(const CStringArg& key, P<IBase> value) { set(key.get(), hashKey(key.get()), std::move(value)); }
    // The same with the key's hash (hashKey) computed by the caller, for example outside a lock.
    void set(const IString& key, uint32_t hash, P<IBase> value);
    // The value under `key`, or null when the key is absent.
    P<IBase> get(const CStringArg& key) const;
    // The value under `key` as a string; null when absent or not a string. The pointer stays
    // valid until that key is set again, removed or cleared.
    IString* peekString(const CStringArg& key) const { return peekString(key.get(), hashKey(key.get())); }
    IString* peekString(const IString& key, uint32_t hash) const;
    bool contains(const CStringArg& key) const;
    // False when the key was absent.
    bool remove(const CStringArg& key);
    // Removes every entry.
    void clear() noexcept { m_table.clear(); }
    uint32_t getCount() const noexcept { return m_table.getCount(); }
    // Exchanges every entry with `other` in constant time (a store loads into a fresh list and
    // swaps, so that a failed load changes nothing).
    void swap(CValueList& other) noexcept { m_table.swap(other.m_table); }

    // Typed values. A copy of the text; CInt when the value fits 32 bits, else CInt64.
    void setString(const CStringArg& key, const CStringArg& text);
    void setInteger(const CStringArg& key, int64_t value);
    void setDouble(const CStringArg& key, double value);
    void setBool(const CStringArg& key, bool value);
    // Empty when the key is absent or its value is of another kind; an integer reads as a
    // double too.
    std::optional<int64_t> getInteger(const CStringArg& key) const;
    std::optional<double> getDouble(const CStringArg& key) const;
    std::optional<bool> getBool(const CStringArg& key) const;
    // The nested list under `key`, or null.
    P<CValueList> getList(const CStringArg& key) const;

    // Calls visit(const IString& key, IBase& value) for every entry, in no particular order.
    // The visit must not add or remove entries.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        const_cast<Table&>(m_table).forEach(
            [&visit](const P<IString>& key, const Entry& entry) { visit(*key, *entry.value); });
    }

    // The hash under which a key is stored.
    static uint32_t hashKey(const IString& key) { return key.hash(); }
    // An owned copy of `text` in its own encoding (a plain byte copy, no conversion).
    static P<IString> copyText(const IString& text);

private:
    using Table = TSimpleHashTable<P<IString>, Entry>;
    Table m_table;
};

} // namespace kore
