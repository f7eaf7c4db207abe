#pragma once
// A chained hash table from keys K to values V (see CSimpleHashTableTemplateBase for the growth
// rules). Each node holds, in this order, the key's hash, the key, the value and the link to the
// next node of its bucket. Look-ups take the key's look-up form (for string keys any IString,
// so a borrowed argument is never copied to look something up) and compare the stored hash
// before the full key.
//
// Keys: integers, enumerations and pointers hash to themselves (folded to 32 bits); P<IString>
// keys hash with IString::hash() and compare exactly, by code point, whatever the encodings.
// Another key type supplies its own traits (hash, equals, view, isValid; see below).

#include "framework/containers/CSimpleHashTableTemplateBase.h"
#include "framework/objects/P.h"
#include "framework/text/IString.h"

#include <cstdint>
#include <type_traits>
#include <utility>

namespace kore {

template <class K>
struct TSimpleHashKeyTraits {
    static_assert(std::is_integral_v<K> || std::is_enum_v<K> || std::is_pointer_v<K>,
                  "give TSimpleHashTable traits for this key type");
    using Lookup = K;

    static uint32_t hash(const K& key) noexcept
    {
        uint64_t v = 0;
        if constexpr (std::is_pointer_v<K>)
            v = reinterpret_cast<uintptr_t>(key);
        else
            v = static_cast<uint64_t>(key);
        return static_cast<uint32_t>(v ^ (v >> 32));
    }
    static bool equals(const K& stored, const K& key) noexcept { return stored == key; }
    static const K& view(const K& key) noexcept { return key; }
    static bool isValid(const K&) noexcept { return true; }
};

template <>
struct TSimpleHashKeyTraits<P<IString>> {
    using Lookup = IString;

    static uint32_t hash(const IString& key) { return key.hash(); }
    static bool equals(const P<IString>& stored, const IString& key);
    static const IString& view(const P<IString>& key) noexcept { return *key; }
    static bool isValid(const P<IString>& key) noexcept { return key != nullptr; }
};

template <class K, class V, class Traits = TSimpleHashKeyTraits<K>>
class TSimpleHashTable : public CSimpleHashTableTemplateBase {
public:
    using KeyType = K;
    using ValueType = V;
    using Lookup = typename Traits::Lookup;

    explicit TSimpleHashTable(double loadFactor = kDefaultLoadFactor, double growthFactor = kDefaultGrowthFactor)
        : CSimpleHashTableTemplateBase(loadFactor, growthFactor)
    {
    }
    ~TSimpleHashTable() override { releaseAll(); }

    // The value of `key`, or null.
    V* find(const Lookup& key)
    {
        // An empty table answers without hashing (the log manager with no module sinks).
        return m_bucketCount == 0 ? nullptr : findWithHash(key, Traits::hash(key));
    }
    const V* find(const Lookup& key) const { return const_cast<TSimpleHashTable*>(this)->find(key); }
    // The same with the key's hash (Traits::hash(key)) computed by the caller, which may do the
    // costly part of a look-up outside its lock.
    V* findHashed(const Lookup& key, uint32_t hash) { return m_bucketCount == 0 ? nullptr : findWithHash(key, hash); }
    const V* findHashed(const Lookup& key, uint32_t hash) const
    {
        return const_cast<TSimpleHashTable*>(this)->findHashed(key, hash);
    }
    bool contains(const Lookup& key) const { return find(key) != nullptr; }

    // Adds the entry or replaces the value of an existing key; true when the key was new.
    bool set(const K& key, V value)
    {
        if (!Traits::isValid(key))
            throwInvalidKey();
        bool added = false;
        V& slot = findOrAdd(
            Traits::view(key), [&key]() -> K { return key; }, &added);
        slot = std::move(value);
        return added;
    }

    // The value of `key`; when the key is new, an entry is added first with a default value and
    // the key that `makeKey()` returns (called only then, so that a borrowed look-up key is
    // copied only when it must be kept). The key is hashed once.
    template <class MakeKey>
    V& findOrAdd(const Lookup& key, MakeKey&& makeKey, bool* added = nullptr)
    {
        return findOrAddHashed(key, Traits::hash(key), std::forward<MakeKey>(makeKey), added);
    }
    // The same with the key's hash computed by the caller.
    template <class MakeKey>
    V& findOrAddHashed(const Lookup& key, uint32_t hash, MakeKey&& makeKey, bool* added = nullptr)
    {
        if (V* found = findHashed(key, hash)) {
            if (added)
                *added = false;
            return *found;
        }
        K stored = makeKey();
        if (!Traits::isValid(stored))
            throwInvalidKey();
        prepareInsert();
        Node* node = new Node{hash, std::move(stored), V(), nullptr};
        linkFront(node, hash);
        if (added)
            *added = true;
        return node->value;
    }

    // False when the key was absent.
    bool remove(const Lookup& key)
    {
        if (m_bucketCount == 0)
            return false;
        const uint32_t hash = Traits::hash(key);
        for (void** link = bucketFor(hash); *link; link = &static_cast<Node*>(*link)->next) {
            Node* node = static_cast<Node*>(*link);
            if (node->hash == hash && Traits::equals(node->key, key)) {
                unlink(link);
                delete node;
                return true;
            }
        }
        return false;
    }

    // Exchanges every entry with `other` in constant time.
    void swap(TSimpleHashTable& other) noexcept { swapWith(other); }

    // Calls visit(const K&, V&) for every entry, bucket by bucket, each chain from its head.
    // The visit must not add or remove entries.
    template <class Visit>
    void forEach(Visit&& visit)
    {
        for (uint32_t b = 0; b < m_bucketCount; ++b) {
            for (void* n = m_buckets[b]; n; n = static_cast<Node*>(n)->next)
                visit(std::as_const(static_cast<Node*>(n)->key), static_cast<Node*>(n)->value);
        }
    }

protected:
    void*& nextOf(void* node) const noexcept override { return static_cast<Node*>(node)->next; }
    uint32_t hashOf(const void* node) const noexcept override { return static_cast<const Node*>(node)->hash; }
    void deleteNode(void* node) noexcept override { delete static_cast<Node*>(node); }

private:
    struct Node {
        uint32_t hash;
        K key;
        V value;
        void* next;
    };

    V* findWithHash(const Lookup& key, uint32_t hash)
    {
        if (m_bucketCount == 0)
            return nullptr;
        for (void* n = *bucketFor(hash); n; n = static_cast<Node*>(n)->next) {
            Node* node = static_cast<Node*>(n);
            if (node->hash == hash && Traits::equals(node->key, key))
                return &node->value;
        }
        return nullptr;
    }

    [[noreturn]] static void throwInvalidKey();
};

// Out of line, so that the error headers stay out of every includer.
[[noreturn]] void throwInvalidHashTableKey();

template <class K, class V, class Traits>
void TSimpleHashTable<K, V, Traits>::throwInvalidKey()
{
    throwInvalidHashTableKey();
}

} // namespace kore
