#pragma once
// An immutable table from UTF-16 keys to UTF-16 texts: built once, then read by any number of
// threads at the same time without locks. Keys and texts stay where they lie in one block of
// bytes that the table owns (for a language, the file's string data exactly as read from disk:
// little-endian UTF-16 at any byte offset), so a table costs its block plus about 28 bytes per
// key, and building one allocates a fixed number of times whatever the number of keys.
//
// The index is one array of entries grouped by bucket (the top bits of the key's hash) and one
// array of where each bucket starts. Within a bucket the entries are ordered by key, so even a
// hostile file whose keys all share one hash is searched in logarithmic time and built in
// n log n.

#include "framework/containers/CPageBuffer.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace kore {

static_assert(std::endian::native == std::endian::little,
              "keys in memory are compared byte for byte with the file's little-endian units");

class CTextTable : public CObject {
public:
    // `units` UTF-16 units starting at byte `offset` of the block.
    struct Span {
        uint32_t offset = 0;
        uint32_t units = 0;
    };
    // A text found in a table; valid while the table lives.
    struct Text {
        const uint8_t* bytes = nullptr;
        uint32_t units = 0;
    };

    class CBuilder {
    public:
        // Entries will be copied in with addCopy.
        CBuilder() = default;
        // Entries will lie in `block` (a language file's string data, say).
        explicit CBuilder(CPageBuffer block);
        // Room for `entries` entries in all, so that adding them allocates nothing more; without
        // it the room grows by doubling.
        void reserve(uint32_t entries);

        const uint8_t* block() const noexcept { return m_block.data(); }
        std::size_t blockSize() const noexcept { return m_block.size(); }
        // More room at the end of the block, its content kept (for readers that find that the
        // entries run on beyond the data they first read).
        uint8_t* growBlock(std::size_t bytes);

        // Adds the entry `key` -> `text`, both in the block. Of several entries with one key the
        // table keeps the one of the highest rank (of equal ranks, the one added last).
        void add(Span key, Span text, uint64_t rank);
        // Copies the units (any alignment) to the end of the block, then adds them.
        void addCopy(const void* key, uint32_t keyUnits, const void* text, uint32_t textUnits, uint64_t rank);
        uint32_t getCount() const noexcept { return m_count; }
        // Something the layer building the table derives from its entries once and keeps with it
        // for the table's whole life (the language layer's parsed plural rule), so that readers
        // need not derive it on every look-up; immutable once the table is built.
        void setCompanion(P<CObject> companion) noexcept { m_companion = std::move(companion); }

        // The table; the builder is empty afterwards.
        P<CTextTable> build();

    private:
        struct Added {
            uint64_t hash;
            uint64_t rank;
            Span key;
            Span text;
        };
        Span append(const void* units, uint32_t count);

        CPageBuffer m_block;
        std::size_t m_blockUsed = 0;
        CPageBuffer m_added;
        uint32_t m_count = 0;
        P<CObject> m_companion;
    };

    // The hash of a key of `units` little-endian units at `bytes` (any alignment).
    static uint64_t hash(const void* bytes, uint32_t units) noexcept;
    // The same for a zero-terminated key, measured in the same pass: `units` receives its length.
    static uint64_t hashTerminated(const char16_t* key, uint32_t& units) noexcept;

    // The text of the key of `units` units at `key` with hash `hash`; false when the key is
    // absent. A present key may have an empty text.
    bool find(const void* key, uint32_t units, uint64_t hash, Text& text) const noexcept;

    uint32_t getCount() const noexcept { return m_count; }
    // The builder's companion, null when it set none.
    const CObject* getCompanion() const noexcept { return m_companion.get(); }

    // Every entry as (key bytes, key units, text bytes, text units), bucket by bucket.
    template <class F>
    void forEach(const F& visit) const
    {
        for (uint32_t i = 0; i < m_count; ++i) {
            const Entry& e = m_entries[i];
            visit(m_block.data() + e.key.offset, e.key.units, m_block.data() + e.text.offset, e.text.units);
        }
    }

private:
    struct Entry {
        uint32_t tag; // the low half of the key's hash, to skip most comparisons
        Span key;
        Span text;
    };

    CTextTable(CPageBuffer block, CPageBuffer index, uint32_t bucketBits, uint32_t count, P<CObject> companion);

    CPageBuffer m_block;
    CPageBuffer m_index;
    const uint32_t* m_bucketStart; // bucket count + 1 values, in m_index
    const Entry* m_entries; // in m_index, after the bucket starts
    uint32_t m_shift; // 64 - bucket bits
    uint32_t m_count;
    P<CObject> m_companion;
};

} // namespace kore
