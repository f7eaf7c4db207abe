#pragma once
// The string entries of a language file: a chained hash table keyed by the entry's key, with the
// file format's own hash, 1000 initial buckets, doubling past a load of 0.8 and insertion at the
// head of a chain. The visiting order (bucket by bucket, each chain from its head) decides which
// of two entries with the same key reaches the localizer last.

#include "qor_lang_manager/LanguageChunks.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace qor_lang {

struct CLanguageStringEntry {
    uint32_t value = 0;
    CountedString key;
    CountedString text;
    CountedString third;
    CountedString fourth;
};

class CLanguageStringTable {
public:
    static constexpr int32_t kInitialBuckets = 1000;

    CLanguageStringTable();
    ~CLanguageStringTable();
    CLanguageStringTable(const CLanguageStringTable&) = delete;
    CLanguageStringTable& operator=(const CLanguageStringTable&) = delete;

    // The hash of a key over its UTF-16 units; an absent or empty key hashes to 0.
    static uint32_t hashKey(const CountedString& key);

    void insert(CLanguageStringEntry entry);
    // Frees every entry; the buckets stay.
    void clear();
    // Frees every entry and the bucket array.
    void release();

    int32_t getCount() const { return m_count; }
    int32_t getBucketCount() const { return static_cast<int32_t>(m_buckets.size()); }
    // The first entry of the key's chain with that key (the one inserted last), or null.
    const CLanguageStringEntry* find(const std::u16string& key) const;
    // Bucket 0 upwards, each chain from its head.
    void forEach(const std::function<void(const CLanguageStringEntry&)>& visit) const;

private:
    struct Node {
        CLanguageStringEntry entry;
        uint32_t hash;
        Node* next;
    };
    void grow();

    std::vector<Node*> m_buckets;
    int32_t m_count = 0;
};

} // namespace qor_lang
