#pragma once
// The type-independent half of TSimpleHashTable: a chained hash table whose buckets are singly
// linked lists of nodes. This part owns the bucket array and does what is the same for every key
// and value type: the growth decision, the rehash (which reuses each node's stored hash, so keys
// are never hashed again), linking and unlinking. Look-up, which must compare keys, lives in the
// template and is inline.
//
// Growth: an insertion of a new key first rehashes when (count + 1) >= buckets x load factor.
// A rehash goes to 10 buckets from none, else to buckets x growth factor (truncated), at least
// one bucket more. Nodes move to the front of their new bucket, so nodes that land together
// end up in reverse order.
//
// Not locked: the owner serialises access.

#include "framework/objects/CObject.h"

#include <cstdint>

namespace kore {

class CSimpleHashTableTemplateBase : public CObject {
public:
    static constexpr uint32_t kFirstBucketCount = 10;
    // Chains stay short (under one node per bucket on average) without wasting much memory.
    static constexpr double kDefaultLoadFactor = 0.75;
    // Doubling keeps the number of rehashes logarithmic when a language loads 100,000 keys.
    static constexpr double kDefaultGrowthFactor = 2.0;

    CSimpleHashTableTemplateBase(const CSimpleHashTableTemplateBase&) = delete;
    CSimpleHashTableTemplateBase& operator=(const CSimpleHashTableTemplateBase&) = delete;

    uint32_t getCount() const noexcept { return m_count; }
    bool isEmpty() const noexcept { return m_count == 0; }
    uint32_t getBucketCount() const noexcept { return m_bucketCount; }
    double getLoadFactor() const noexcept { return m_loadFactor; }
    double getGrowthFactor() const noexcept { return m_growthFactor; }

    // Deletes every entry. The buckets stay: a table that is cleared is usually filled again
    // to a similar size (the string table at each change of language).
    void clear() noexcept;
    // Rehashes now, by the growth rule above.
    void rehash();

protected:
    // Throws CInvalidArgError unless both factors are finite and positive.
    CSimpleHashTableTemplateBase(double loadFactor, double growthFactor);
    // The template's destructor must already have called releaseAll().
    ~CSimpleHashTableTemplateBase() override;

    // The node's link to the next node in its bucket, and its stored hash.
    virtual void*& nextOf(void* node) const noexcept = 0;
    virtual uint32_t hashOf(const void* node) const noexcept = 0;
    virtual void deleteNode(void* node) noexcept = 0;

    // Call before linking a new node: rehashes when the insertion would pass the load factor.
    void prepareInsert();
    // Puts `node` (already carrying `hash`) at the front of its bucket.
    void linkFront(void* node, uint32_t hash) noexcept;
    // Takes the node that `*link` points to out of its chain (the caller deletes it).
    void unlink(void** link) noexcept;
    // Deletes every node and the bucket array (the destructor's step).
    void releaseAll() noexcept;
    // Exchanges entries, buckets and factors with `other`, a table of the same node type.
    void swapWith(CSimpleHashTableTemplateBase& other) noexcept;

    void** bucketFor(uint32_t hash) const noexcept { return &m_buckets[hash % m_bucketCount]; }

    double m_loadFactor;
    double m_growthFactor;
    void** m_buckets = nullptr;
    uint32_t m_bucketCount = 0;
    uint32_t m_count = 0;

private:
    void deleteChains(void** buckets, uint32_t bucketCount) noexcept;
};

} // namespace kore
