#include "qor_lang_manager/CLanguageFileWriter.h"

#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/io/IStreamManager.h"

#include <algorithm>

namespace qor_lang {

namespace {

// Writes a chunk's data in pieces: a single write moves at most 2^31 - 1 bytes.
void appendChunk(chf::CChunkIterator& sequence, uint32_t id, const std::vector<uint8_t>& data)
{
    chf::TChunkRef<chf::CChunkStream> chunk(chf::CChunkFileWriter::appendChunk(&sequence, id));
    for (size_t done = 0; done < data.size();) {
        const size_t piece = std::min<size_t>(data.size() - done, 0x40000000);
        chunk->write(data.data() + done, static_cast<int32_t>(piece));
        done += piece;
    }
    chunk.reset(); // the size reaches the file here; let a failure reach the caller
}

} // namespace

void CLanguageFileWriter::setLanguage(CountedString tag, CountedString nativeName, CountedString nativeSubName)
{
    m_tag = std::move(tag);
    m_nativeName = std::move(nativeName);
    m_nativeSubName = std::move(nativeSubName);
}

void CLanguageFileWriter::setApplication(CountedString appId, CountedString appString2)
{
    m_appId = std::move(appId);
    m_appString2 = std::move(appString2);
}

void CLanguageFileWriter::setComment(CountedString comment)
{
    m_comment = std::move(comment);
}

void CLanguageFileWriter::addExtra(std::u16string key, std::u16string value)
{
    m_extra.emplace_back(std::move(key), std::move(value));
}

void CLanguageFileWriter::addString(std::u16string key, std::u16string text, uint32_t value)
{
    Entry entry;
    entry.value = value;
    entry.key = std::move(key);
    entry.text = std::move(text);
    m_entries.push_back(std::move(entry));
}

void CLanguageFileWriter::appendUInt32(std::vector<uint8_t>& out, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void CLanguageFileWriter::appendCountedString(std::vector<uint8_t>& out, const CountedString& text)
{
    if (!text) {
        appendUInt32(out, 0);
        return;
    }
    appendUInt32(out, static_cast<uint32_t>(text->size() + 1));
    for (char16_t c : *text) {
        out.push_back(static_cast<uint8_t>(c));
        out.push_back(static_cast<uint8_t>(c >> 8));
    }
    out.push_back(0);
    out.push_back(0);
}

void CLanguageFileWriter::write(chf::IStream& emptyStream) const
{
    chf::TChunkRef<chf::CChunkFile> file(chf::CChunkFileWriter::createFile(&emptyStream));
    std::vector<uint8_t> data;

    appendCountedString(data, m_tag);
    appendCountedString(data, m_nativeName);
    appendCountedString(data, m_nativeSubName);
    appendChunk(*file, kChunkLang, data);

    data.clear();
    appendCountedString(data, m_appId);
    appendCountedString(data, m_appString2);
    appendChunk(*file, kChunkApid, data);

    data.clear();
    appendCountedString(data, m_comment);
    appendChunk(*file, kChunkCmnt, data);

    data.clear();
    appendUInt32(data, static_cast<uint32_t>(m_extra.size()));
    for (const auto& [key, value] : m_extra) {
        appendCountedString(data, key);
        appendCountedString(data, value);
    }
    appendChunk(*file, kChunkXdid, data);

    data.clear();
    appendUInt32(data, m_version);
    appendChunk(*file, kChunkVers, data);

    data.clear();
    appendUInt32(data, static_cast<uint32_t>(m_entries.size()));
    for (const Entry& e : m_entries) {
        appendUInt32(data, e.value);
        appendCountedString(data, e.key);
        appendCountedString(data, e.text);
        appendCountedString(data, e.third);
        appendCountedString(data, e.fourth);
    }
    {
        chf::TChunkRef<chf::CChunkIterator> stmp(chf::CChunkFileWriter::appendChunkIterator(file.get(), kChunkStmp));
        appendChunk(*stmp, kChunkData, data);
        stmp.reset();
    }
    file.reset();
}

void CLanguageFileWriter::writeFile(const kore::IURI& location) const
{
    // The container reads back what it wrote (its header, sizes): it needs a read-write stream,
    // and that mode keeps old content, so empty the file first.
    kore::P<kore::IStreamManager> streams = kore::IStreamManager::instance();
    streams->openURI(location, kore::IStreamManager::kWrite)->close();
    chf::TChunkRef<chf::IStream> stream(
        new chf::CKoreFileStream(streams->openURI(location, kore::IStreamManager::kReadWrite)));
    write(*stream);
    stream.reset();
}

} // namespace qor_lang
