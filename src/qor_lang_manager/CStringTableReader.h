#pragma once
// Reads the string entries of a language file: the "data" chunk nested in each top-level "STMP"
// chunk, of which only the last counts (reading a "data" chunk first empties the file's table).
// The chunk's bytes are read into one block and every count is checked against it; the entries
// are not copied but indexed where they lie, so loading a language costs one read, one index and
// a fixed number of allocations.
//
// Of two entries with one key the file's table order decides which answers: the table starts
// with 1000 buckets, doubles once its count passes 0.8 times its buckets (keeping its bucket count
// from one "data" chunk to the next), puts each entry at the head of its bucket's chain and moves
// entries one by one to the heads of their new chains when it doubles; its entries are then handed
// over bucket by bucket, each chain from its head, and the one handed over last answers. Entries
// with one key always share a chain, and only insertion and doubling change their order there:
// each insertion goes to the head, each doubling reverses them. So the entry that ends at the tail
// is the last one inserted in an era (between doublings) of the parity opposite to the number of
// doublings, or, if there is none, the first one inserted in an era of the other parity; that is
// the rank each entry gets.
//
// A file cut short is damaged, not a file without strings: a chunk area longer than the file, a
// walk that ends inside a chunk header, an "STMP" or "data" chunk or a counted string running past
// the end of the file all throw kore::CError naming the chunk, the offset and what is wrong.

#include "chunk_file/CChunkFile.h"
#include "chunk_file/IStream.h"
#include "framework/io/IURI.h"
#include "framework/objects/P.h"
#include "framework/text/CTextTable.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qor_lang {

class CStringTableReader {
public:
    // `stream` is the file `file` was opened on; `fileLength` its length.
    CStringTableReader(chf::IStream& stream, chf::CChunkFile& file, int64_t fileLength);

    // The texts by key; an empty table when no "STMP" chunk holds a "data" chunk. When some key
    // ends in U+0005 (a plural entry), the table keeps `pluralRule`, parsed (setPluralRule).
    kore::P<kore::CTextTable> readTexts(std::u16string_view pluralRule = {});
    // Every entry of the last "data" chunk in file order (duplicates included): its key and text.
    void readEntries(const std::function<void(const std::u16string& key, const std::u16string& text)>& visit);
    // The same with each entry's third string (a plural entry's source for n != 1), empty when absent.
    void readEntries(const std::function<void(const std::u16string& key, const std::u16string& text,
                                              const std::u16string& third)>& visit);

private:
    struct DataChunk {
        int64_t header; // absolute offsets
        int64_t base;
        int64_t size;
    };
    class CEntryCursor;

    void read(int64_t at, uint8_t* out, int64_t bytes);
    void checkExtent(uint32_t id, int64_t header, int64_t size) const;
    std::vector<DataChunk> findDataChunks();
    // Reads one "data" chunk into a block and hands each entry to `visit` (builder holding the
    // block, key, text, rank, third string). `buckets`: the file table's bucket count, carried from chunk to chunk.
    template <class Visit>
    kore::CTextTable::CBuilder readChunk(const DataChunk& chunk, int64_t& buckets, const Visit& visit);
    template <class Visit>
    kore::CTextTable::CBuilder readLastChunk(const Visit& visit);

    chf::IStream& m_stream;
    chf::CChunkFile& m_file;
    int64_t m_fileLength;
};

} // namespace qor_lang
