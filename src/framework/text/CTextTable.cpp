#include "framework/text/CTextTable.h"

#include "framework/errors/CInvalidArgError.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace kore {

namespace {

constexpr uint64_t kSeeds[2] = {0x243F6A8885A308D3ull, 0x13198A2E03707344ull};
constexpr uint64_t kFoldMultiplier = 0x9E3779B97F4A7C15ull;
// Buckets up to this size are scanned; larger ones (only colliding keys make them) are searched.
constexpr uint32_t kScanLimit = 8;

// A key is folded four units (one word) at a time into two lanes, even words into one and odd
// words into the other, so that the two chains of multiplications overlap: a look-up's hash is
// most of its cost.
inline uint64_t fold(uint64_t lane, uint64_t word) noexcept
{
    return (lane ^ word) * kFoldMultiplier;
}

// Every bit of the result depends on every bit of both lanes and of the length.
inline uint64_t finish(uint64_t even, uint64_t odd, uint32_t units) noexcept
{
    uint64_t h = even ^ ((odd ^ units) * 0xFF51AFD7ED558CCDull);
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ull;
    h ^= h >> 29;
    h *= 0xFF51AFD7ED558CCDull;
    return h ^ (h >> 32);
}

// Up to four units of a zero-terminated key as one word; returns how many there were. Nothing
// past the terminator is read, and the four tests do not depend on each other.
inline uint32_t gather(const char16_t* at, uint64_t& word) noexcept
{
    const uint64_t c0 = at[0];
    if (c0 == 0)
        return 0;
    const uint64_t c1 = at[1];
    if (c1 == 0) {
        word = c0;
        return 1;
    }
    const uint64_t c2 = at[2];
    if (c2 == 0) {
        word = c0 | c1 << 16;
        return 2;
    }
    const uint64_t c3 = at[3];
    if (c3 == 0) {
        word = c0 | c1 << 16 | c2 << 32;
        return 3;
    }
    word = c0 | c1 << 16 | c2 << 32 | c3 << 48;
    return 4;
}

inline uint32_t unitAt(const uint8_t* bytes, uint32_t index) noexcept
{
    return static_cast<uint32_t>(bytes[2 * index]) | static_cast<uint32_t>(bytes[2 * index + 1]) << 8;
}

// Orders keys by the low half of their hash (the entry's tag), then by length, then by their
// bytes: any total order serves the search in a bucket, and this one reads a key's bytes only
// when the tags agree, so sorting and searching rarely touch the block.
inline int compareKeys(uint32_t aTag, const uint8_t* a, uint32_t aUnits, uint32_t bTag, const uint8_t* b,
                       uint32_t bUnits) noexcept
{
    if (aTag != bTag)
        return aTag < bTag ? -1 : 1;
    if (aUnits != bUnits)
        return aUnits < bUnits ? -1 : 1;
    return aUnits == 0 ? 0 : std::memcmp(a, b, 2 * static_cast<std::size_t>(aUnits));
}

inline std::size_t unitBytes(uint32_t units)
{
    return 2 * static_cast<std::size_t>(units);
}

} // namespace

uint64_t CTextTable::hash(const void* key, uint32_t units) noexcept
{
    const auto* bytes = static_cast<const uint8_t*>(key);
    uint64_t lanes[2] = {kSeeds[0], kSeeds[1]};
    const uint32_t words = units / 4;
    for (uint32_t i = 0; i < words; ++i) {
        uint64_t word;
        std::memcpy(&word, bytes + 8 * static_cast<std::size_t>(i), sizeof word);
        lanes[i & 1] = fold(lanes[i & 1], word);
    }
    if (const uint32_t rest = units % 4) {
        uint64_t word = 0;
        for (uint32_t j = 0; j < rest; ++j)
            word |= static_cast<uint64_t>(unitAt(bytes, 4 * words + j)) << (16 * j);
        lanes[words & 1] = fold(lanes[words & 1], word);
    }
    return finish(lanes[0], lanes[1], units);
}

uint64_t CTextTable::hashTerminated(const char16_t* key, uint32_t& units) noexcept
{
    uint64_t even = kSeeds[0];
    uint64_t odd = kSeeds[1];
    uint32_t n = 0;
    for (;;) {
        uint64_t word;
        uint32_t got = gather(key + n, word);
        if (got != 0)
            even = fold(even, word);
        n += got;
        if (got < 4)
            break;
        got = gather(key + n, word);
        if (got != 0)
            odd = fold(odd, word);
        n += got;
        if (got < 4)
            break;
    }
    units = n;
    return finish(even, odd, n);
}

CTextTable::CTextTable(CPageBuffer block, CPageBuffer index, uint32_t bucketBits, uint32_t count, P<CObject> companion)
    : m_block(std::move(block)), m_index(std::move(index)), m_bucketStart(m_index.as<uint32_t>()),
      m_entries(reinterpret_cast<const Entry*>(m_index.as<uint32_t>() + (std::size_t(1) << bucketBits) + 1)),
      m_shift(64 - bucketBits), m_count(count), m_companion(std::move(companion))
{
}

bool CTextTable::find(const void* key, uint32_t units, uint64_t hash, Text& text) const noexcept
{
    const auto bucket = static_cast<std::size_t>(hash >> m_shift);
    uint32_t low = m_bucketStart[bucket];
    uint32_t high = m_bucketStart[bucket + 1];
    const auto* wanted = static_cast<const uint8_t*>(key);
    const uint8_t* block = m_block.data();
    const auto tag = static_cast<uint32_t>(hash);
    const Entry* found = nullptr;
    if (high - low <= kScanLimit) {
        for (uint32_t i = low; i < high; ++i) {
            const Entry& e = m_entries[i];
            if (compareKeys(e.tag, block + e.key.offset, e.key.units, tag, wanted, units) == 0) {
                found = &e;
                break;
            }
        }
    } else {
        while (low < high) {
            const uint32_t middle = low + (high - low) / 2;
            const Entry& e = m_entries[middle];
            const int order = compareKeys(e.tag, block + e.key.offset, e.key.units, tag, wanted, units);
            if (order == 0) {
                found = &e;
                break;
            }
            if (order < 0)
                low = middle + 1;
            else
                high = middle;
        }
    }
    if (!found)
        return false;
    text.bytes = block + found->text.offset;
    text.units = found->text.units;
    return true;
}

CTextTable::CBuilder::CBuilder(CPageBuffer block) : m_block(std::move(block)), m_blockUsed(m_block.size())
{
}

void CTextTable::CBuilder::reserve(uint32_t entries)
{
    m_added.grow(sizeof(Added) * std::size_t(entries));
}

uint8_t* CTextTable::CBuilder::growBlock(std::size_t bytes)
{
    m_block.grow(bytes);
    m_blockUsed = m_block.size();
    return m_block.data();
}

CTextTable::Span CTextTable::CBuilder::append(const void* units, uint32_t count)
{
    const std::size_t bytes = unitBytes(count);
    if (m_blockUsed + bytes > std::numeric_limits<uint32_t>::max())
        throw CInvalidArgError(nullptr, "CTextTable::CBuilder::addCopy", "text (beyond 4 GiB)", "CTextTable");
    if (m_blockUsed + bytes > m_block.size())
        m_block.grow(std::max<std::size_t>({m_blockUsed + bytes, 2 * m_block.size(), 4096}));
    if (bytes)
        std::memcpy(m_block.data() + m_blockUsed, units, bytes);
    const Span span{static_cast<uint32_t>(m_blockUsed), count};
    m_blockUsed += bytes;
    return span;
}

void CTextTable::CBuilder::addCopy(const void* key, uint32_t keyUnits, const void* text, uint32_t textUnits,
                                   uint64_t rank)
{
    const Span keySpan = append(key, keyUnits);
    add(keySpan, append(text, textUnits), rank);
}

void CTextTable::CBuilder::add(Span key, Span text, uint64_t rank)
{
    if (sizeof(Added) * (std::size_t(m_count) + 1) > m_added.size())
        m_added.grow(std::max<std::size_t>(2 * m_added.size(), 64 * sizeof(Added)));
    m_added.as<Added>()[m_count++] = Added{hash(m_block.data() + key.offset, key.units), rank, key, text};
}

P<CTextTable> CTextTable::CBuilder::build()
{
    const uint32_t count = m_count;
    const Added* added = m_added.as<const Added>();
    const uint8_t* block = m_block.data();

    // At least as many buckets as entries, and never fewer than two.
    const uint32_t bits = count <= 2 ? 1 : static_cast<uint32_t>(std::bit_width(count - 1));
    const std::size_t buckets = std::size_t(1) << bits;
    const uint32_t shift = 64 - bits;
    CPageBuffer index(sizeof(uint32_t) * (buckets + 1) + sizeof(Entry) * std::size_t(count));
    auto* start = index.as<uint32_t>();
    auto* entries = reinterpret_cast<Entry*>(start + buckets + 1);

    // Counting sort by bucket: `start[b]` first counts, then becomes the end, then the start.
    CPageBuffer orderBuffer(sizeof(uint32_t) * std::size_t(count));
    auto* order = orderBuffer.as<uint32_t>();
    for (uint32_t i = 0; i < count; ++i)
        ++start[added[i].hash >> shift];
    for (std::size_t b = 1; b < buckets; ++b)
        start[b] += start[b - 1];
    for (uint32_t i = count; i-- > 0;)
        order[--start[added[i].hash >> shift]] = i;
    start[buckets] = count;

    // Within a bucket: by key, the highest rank (then the latest) first, so that the first of
    // each run of one key is the one kept. Then the kept entries are packed in bucket order.
    auto before = [&](uint32_t a, uint32_t b) {
        const Added& x = added[a];
        const Added& y = added[b];
        if (const int keys = compareKeys(static_cast<uint32_t>(x.hash), block + x.key.offset, x.key.units,
                                         static_cast<uint32_t>(y.hash), block + y.key.offset, y.key.units))
            return keys < 0;
        return x.rank != y.rank ? x.rank > y.rank : a > b;
    };
    uint32_t kept = 0;
    for (std::size_t b = 0; b < buckets; ++b) {
        const uint32_t first = start[b];
        const uint32_t end = start[b + 1];
        if (end - first > 1)
            std::sort(order + first, order + end, before);
        start[b] = kept;
        for (uint32_t i = first; i < end; ++i) {
            const Added& a = added[order[i]];
            if (i > first) {
                const Added& previous = added[order[i - 1]];
                if (compareKeys(static_cast<uint32_t>(a.hash), block + a.key.offset, a.key.units,
                                static_cast<uint32_t>(previous.hash), block + previous.key.offset,
                                previous.key.units) == 0)
                    continue;
            }
            entries[kept++] = Entry{static_cast<uint32_t>(a.hash), a.key, a.text};
        }
    }
    start[buckets] = kept;

    m_added = CPageBuffer();
    m_count = 0;
    m_blockUsed = 0;
    return P<CTextTable>::adopt(
        new CTextTable(std::move(m_block), std::move(index), bits, kept, std::move(m_companion)));
}

} // namespace kore
