#include "qor_lang_manager/CStringTableReader.h"

#include "qor_lang_manager/PluralLookup.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/CChunkIterator.h"
#include "chunk_file/TChunkRef.h"
#include "framework/errors/CError.h"
#include "framework/text/CStringFormat.h"
#include "qor_lang_manager/LanguageChunks.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace qor_lang {

using kore::CTextTable;

namespace {

constexpr int64_t kInitialBuckets = 1000;
constexpr int64_t kChunkHeader = chf::CChunkIterator::kChunkHeaderSize;
constexpr int64_t kContainerHeader = chf::CChunkFile::kFileHeaderSize;
// An entry is at least its value and four counts.
constexpr int64_t kSmallestEntry = 20;
// Offsets in a block are 32-bit.
constexpr int64_t kLargestBlock = std::numeric_limits<uint32_t>::max();
// Ranks: the entries that can end at the tail of their chain rank above all others.
constexpr uint64_t kTailSide = uint64_t(1) << 32;

std::string idText(uint32_t id)
{
    std::string text(4, ' ');
    for (int i = 0; i < 4; ++i)
        text[static_cast<size_t>(i)] = static_cast<char>(id >> (8 * i));
    return text;
}

// The smallest entry count that makes a table of `buckets` buckets double (count > 0.8 x buckets,
// compared as floating-point numbers).
int64_t doublingCount(int64_t buckets)
{
    return static_cast<int64_t>(0.8 * static_cast<double>(buckets)) + 1;
}

template <class... Args>
[[noreturn]] void damaged(const char* format, const Args&... args)
{
    throw kore::CError("", *kore::formatString(format, args...));
}

} // namespace

// Reads the values of one "data" chunk from its block. Reads are not bound to the chunk (a count
// that runs past it takes the bytes that follow, up to the end of the file): the block is read up
// to the chunk's end first and extended to the end of the file only when an entry needs it.
class CStringTableReader::CEntryCursor {
public:
    CEntryCursor(CStringTableReader& reader, const DataChunk& chunk, CTextTable::CBuilder& table, int64_t blockEnd,
                 int64_t limit)
        : m_reader(reader), m_chunk(chunk), m_table(table), m_blockEnd(blockEnd), m_limit(limit)
    {
    }

    uint32_t readUInt32()
    {
        require(4);
        const uint8_t* b = m_table.block() + m_at;
        m_at += 4;
        return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
               static_cast<uint32_t>(b[3]) << 24;
    }

    // A counted string: N units of which the last is the terminator; N = 0 is absent (empty).
    CTextTable::Span readCountedString()
    {
        const uint32_t units = readUInt32();
        if (units == 0)
            return {static_cast<uint32_t>(m_at), 0};
        require(2 * static_cast<int64_t>(units));
        const CTextTable::Span span{static_cast<uint32_t>(m_at), units - 1};
        m_at += 2 * static_cast<int64_t>(units);
        return span;
    }

    int64_t left() const { return m_limit - m_at; }
    int64_t offset() const { return m_chunk.base + m_at; }
    void setEntry(uint32_t index, uint32_t count)
    {
        m_entry = index;
        m_entries = count;
    }

private:
    void require(int64_t bytes)
    {
        if (bytes <= m_blockEnd - m_at)
            return;
        if (m_blockEnd < m_limit) {
            // The entries run on behind the chunk: read the rest of the file.
            const int64_t old = m_blockEnd;
            uint8_t* block = m_table.growBlock(static_cast<size_t>(m_limit));
            m_reader.read(m_chunk.base + old, block + old, m_limit - old);
            m_blockEnd = m_limit;
            if (bytes <= m_blockEnd - m_at)
                return;
        }
        if (m_limit == kLargestBlock)
            damaged("chunk 'data' at offset %d: its entries take more than 4 GiB", m_chunk.header);
        damaged("chunk 'data' at offset %d: entry %d of %d needs %d bytes at offset %d, but the file ends "
                "after %d",
                m_chunk.header, int64_t(m_entry) + 1, int64_t(m_entries), bytes, offset(), m_limit - m_at);
    }

    CStringTableReader& m_reader;
    const DataChunk& m_chunk;
    CTextTable::CBuilder& m_table;
    int64_t m_at = 0; // block offset of the next byte
    int64_t m_blockEnd;
    int64_t m_limit;
    uint32_t m_entry = 0;
    uint32_t m_entries = 0;
};

CStringTableReader::CStringTableReader(chf::IStream& stream, chf::CChunkFile& file, int64_t fileLength)
    : m_stream(stream), m_file(file), m_fileLength(fileLength)
{
}

void CStringTableReader::read(int64_t at, uint8_t* out, int64_t bytes)
{
    m_stream.setPosition(at);
    // Single reads move at most 2^31 - 1 bytes.
    while (bytes > 0) {
        const auto piece = static_cast<int32_t>(std::min<int64_t>(bytes, int64_t(1) << 30));
        m_stream.read(out, piece);
        out += piece;
        bytes -= piece;
    }
}

void CStringTableReader::checkExtent(uint32_t id, int64_t header, int64_t size) const
{
    const int64_t left = m_fileLength - header - kChunkHeader;
    if (size < 0 || size > left)
        damaged("chunk '%s' at offset %d: its header gives %d bytes of data, but the file ends after %d",
                idText(id).c_str(), header, size, std::max<int64_t>(left, 0));
}

std::vector<CStringTableReader::DataChunk> CStringTableReader::findDataChunks()
{
    const int64_t area = m_file.getLength();
    if (area < 0 || area > m_fileLength - kContainerHeader)
        damaged("the container header gives %d bytes of chunks, but the file holds %d after the header", area,
                std::max<int64_t>(m_fileLength - kContainerHeader, 0));
    std::vector<DataChunk> chunks;
    m_file.rewind();
    while (m_file.findChunk(kChunkStmp)) {
        checkExtent(kChunkStmp, m_file.getBase() + m_file.getChunkOffset(), m_file.getChunkSize());
        chf::TChunkRef<chf::CChunkIterator> stmp(m_file.openChunkIterator());
        if (!stmp->findFirstChunk(kChunkData))
            continue;
        const int64_t header = stmp->getBase() + stmp->getChunkOffset();
        checkExtent(kChunkData, header, stmp->getChunkSize());
        chunks.push_back({header, header + kChunkHeader, stmp->getChunkSize()});
    }
    const int64_t stop = m_file.getChunkOffset();
    if (stop < area && area - stop < kChunkHeader)
        damaged("offset %d: the file ends inside a chunk header (%d of its %d bytes)", kContainerHeader + stop,
                area - stop, kChunkHeader);
    m_file.rewind();
    return chunks;
}

template <class Visit>
CTextTable::CBuilder CStringTableReader::readChunk(const DataChunk& chunk, int64_t& buckets, const Visit& visit)
{
    const int64_t limit = std::min(m_fileLength - chunk.base, kLargestBlock);
    const int64_t first = std::min(chunk.size, limit);
    kore::CPageBuffer block(static_cast<size_t>(first));
    read(chunk.base, block.data(), first);
    CTextTable::CBuilder table(std::move(block));
    CEntryCursor cursor(*this, chunk, table, first, limit);

    const uint32_t count = cursor.readUInt32();
    if (int64_t(count) > cursor.left() / kSmallestEntry)
        damaged("chunk 'data' at offset %d: it gives %d entries, but the %d bytes left in the file hold at "
                "most %d",
                chunk.header, int64_t(count), cursor.left(), cursor.left() / kSmallestEntry);
    table.reserve(count);

    // The eras between the table's doublings, and how many doublings the whole chunk causes.
    int64_t doublings = 0;
    for (int64_t b = buckets; doublingCount(b) <= count; b *= 2)
        ++doublings;
    int64_t era = 0;
    int64_t next = doublingCount(buckets);
    for (uint32_t i = 0; i < count; ++i) {
        if (i == next) {
            ++era;
            buckets *= 2;
            next = doublingCount(buckets);
        }
        cursor.setEntry(i, count);
        cursor.readUInt32(); // the entry's value: kept in the file, not used
        const CTextTable::Span key = cursor.readCountedString();
        const CTextTable::Span text = cursor.readCountedString();
        const CTextTable::Span third = cursor.readCountedString();
        cursor.readCountedString();
        const uint64_t rank = ((era ^ doublings) & 1) ? kTailSide + i : kTailSide - 1 - i;
        visit(table, key, text, rank, third);
    }
    if (count == next)
        buckets *= 2; // the last insertion doubled the table too
    return table;
}

template <class Visit>
CTextTable::CBuilder CStringTableReader::readLastChunk(const Visit& visit)
{
    const std::vector<DataChunk> chunks = findDataChunks();
    if (chunks.empty())
        return CTextTable::CBuilder();
    // Earlier chunks count only for their errors and for the buckets they leave behind.
    int64_t buckets = kInitialBuckets;
    for (size_t i = 0; i + 1 < chunks.size(); ++i)
        readChunk(chunks[i], buckets, [](auto&&...) {});
    return readChunk(chunks.back(), buckets, visit);
}

kore::P<CTextTable> CStringTableReader::readTexts(std::u16string_view pluralRule)
{
    bool plural = false;
    CTextTable::CBuilder table = readLastChunk([&](CTextTable::CBuilder& builder, CTextTable::Span key,
                                                   CTextTable::Span text, uint64_t rank, CTextTable::Span) {
        if (key.units != 0) {
            const uint8_t* last = builder.block() + key.offset + 2 * (key.units - 1);
            plural = plural || (last[0] == kPluralMark && last[1] == 0);
        }
        builder.add(key, text, rank);
    });
    if (plural)
        setPluralRule(table, pluralRule);
    return table.build();
}

void CStringTableReader::readEntries(
    const std::function<void(const std::u16string& key, const std::u16string& text)>& visit)
{
    readEntries(
        [&](const std::u16string& key, const std::u16string& text, const std::u16string&) { visit(key, text); });
}

void CStringTableReader::readEntries(const std::function<void(const std::u16string& key, const std::u16string& text,
                                                              const std::u16string& third)>& visit)
{
    auto units = [](const uint8_t* block, CTextTable::Span span) {
        std::u16string text(span.units, u'\0');
        for (uint32_t i = 0; i < span.units; ++i)
            text[i] = static_cast<char16_t>(block[span.offset + 2 * i] | block[span.offset + 2 * i + 1] << 8);
        return text;
    };
    readLastChunk([&](CTextTable::CBuilder& table, CTextTable::Span key, CTextTable::Span text, uint64_t,
                      CTextTable::Span third) {
        visit(units(table.block(), key), units(table.block(), text), units(table.block(), third));
    });
}

} // namespace qor_lang
