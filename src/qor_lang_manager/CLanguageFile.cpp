#include "qor_lang_manager/CLanguageFile.h"

#include "qor_lang_manager/PluralLookup.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/io/CURI.h"
#include "framework/io/IStreamManager.h"
#include "framework/text/CString.h"
#include "qor_lang_manager/CStringTableReader.h"
#include "qor_lang_manager/LanguageChunks.h"

#include <cstring>
#include <exception>
#include <map>

namespace qor_lang {

using kore::make;
using kore::P;

namespace {

constexpr char kMagic[9] = {'U', 'R', 'E', 'S', 'F', 'I', 'L', 'E', '\0'};

P<kore::IString> toFrameworkString(const CountedString& text)
{
    return make<kore::CUTF16String>(text ? std::u16string_view(*text) : std::u16string_view());
}

// Everything one pass over the descriptive chunks finds.
struct LanguageDocument {
    CountedString tag;
    CountedString nativeName;
    CountedString nativeSubName;
    CountedString appId;
    CountedString appString2;
    CountedString comment;
    std::map<std::u16string, std::u16string> extra;
    uint32_t version = 0;
};

chf::TChunkRef<chf::CChunkFile> openContainer(chf::IStream& stream)
{
    chf::TChunkRef<chf::CChunkFile> file(chf::CChunkFile::open(&stream));
    if (std::memcmp(file->getMagic(), kMagic, sizeof kMagic) != 0)
        throw std::exception();
    return file;
}

class CDocumentReader {
public:
    CDocumentReader(chf::CChunkFile& file, int64_t fileLength, const kore::IURI* source)
        : m_file(file), m_fileLength(fileLength), m_source(source)
    {
    }

    LanguageDocument read()
    {
        LanguageDocument doc;
        // "lang" must come before every chunk but "RSID": any other chunk ends the search.
        m_file.rewind();
        while (m_file.nextChunk()) {
            const uint32_t id = m_file.getChunkId();
            if (id == kChunkRsid)
                continue;
            if (id == kChunkLang) {
                withChunk([&](CLanguageChunkReader& r) {
                    doc.tag = r.readCountedString();
                    doc.nativeName = r.readCountedString();
                    doc.nativeSubName = r.readCountedString();
                });
            }
            break;
        }
        // Each further step searches from the first chunk.
        if (m_file.findFirstChunk(kChunkApid)) {
            withChunk([&](CLanguageChunkReader& r) {
                doc.appId = r.readCountedString();
                doc.appString2 = r.readCountedString();
            });
        }
        if (m_file.findFirstChunk(kChunkCmnt))
            withChunk([&](CLanguageChunkReader& r) { doc.comment = r.readCountedString(); });
        if (m_file.findFirstChunk(kChunkXdid)) {
            withChunk([&](CLanguageChunkReader& r) {
                const uint32_t pairs = r.readUInt32();
                // Each pair takes at least its two counts: a hostile count fails here.
                r.require(8ull * pairs);
                for (uint32_t i = 0; i < pairs; ++i) {
                    CountedString key = r.readCountedString();
                    CountedString value = r.readCountedString();
                    doc.extra.insert_or_assign(key.value_or(u""), value.value_or(u""));
                }
            });
        }
        if (m_file.findFirstChunk(kChunkVers))
            withChunk([&](CLanguageChunkReader& r) { doc.version = r.readUInt32(); });
        m_file.rewind();
        return doc;
    }

private:
    template <class F>
    void withChunk(const F& readChunk)
    {
        chf::TChunkRef<chf::CChunkStream> chunk(m_file.openChunkStream());
        CLanguageChunkReader reader(*chunk, m_fileLength, m_source);
        readChunk(reader);
    }

    chf::CChunkFile& m_file;
    int64_t m_fileLength;
    const kore::IURI* m_source;
};

chf::TChunkRef<chf::IStream> openForReading(const kore::IURI& location)
{
    return chf::TChunkRef<chf::IStream>(new chf::CKoreFileStream(location, kore::IStreamManager::kRead));
}

} // namespace

CLanguageFile::CLanguageFile(const kore::IURI& location) : m_source(kore::CURI::fromURIText(*location.toString()))
{
    chf::TChunkRef<chf::IStream> stream = openForReading(*m_source);
    load(*stream);
}

CLanguageFile::CLanguageFile(const kore::IURI* source, chf::IStream& stream)
{
    if (source)
        m_source = kore::CURI::fromURIText(*source->toString());
    load(stream);
}

void CLanguageFile::load(chf::IStream& stream)
{
    m_author = m_appId = m_appString2 = m_englishName = m_englishSubName = m_nativeName = m_nativeSubName = m_comment =
        kore::CString::empty();

    const int64_t fileLength = stream.getLength();
    chf::TChunkRef<chf::CChunkFile> file = openContainer(stream);
    const LanguageDocument doc = CDocumentReader(*file, fileLength, m_source.get()).read();

    m_language = LanguageId(doc.tag ? doc.tag->c_str() : nullptr, LanguageTagMode::Tag);
    m_nativeName = toFrameworkString(doc.nativeName);
    m_nativeSubName = toFrameworkString(doc.nativeSubName);
    // The English names come from the code tables, not from the file.
    if (const char16_t* name = m_language.getEnglishName(); name && *name)
        m_englishName = make<kore::CUTF16String>(name);
    if (const char16_t* name = m_language.getCountryName(); name && *name)
        m_englishSubName = make<kore::CUTF16String>(name);
    m_comment = toFrameworkString(doc.comment);
    m_appId = toFrameworkString(doc.appId);
    if (auto author = doc.extra.find(u"QOR_LANG_AUTHOR"); author != doc.extra.end())
        m_author = make<kore::CUTF16String>(std::u16string_view(author->second));
    m_appString2 = toFrameworkString(doc.appString2);
    m_tagText = doc.tag.value_or(u"");
    m_version = doc.version;
}

namespace {

// Opens the container, reads (and so checks) the descriptive chunks as a scan does, then hands
// the string table's reader to `read`.
template <class F>
auto withStringTable(chf::IStream& stream, const kore::IURI* source, const F& read)
{
    const int64_t fileLength = stream.getLength();
    chf::TChunkRef<chf::CChunkFile> file = openContainer(stream);
    const LanguageDocument doc = CDocumentReader(*file, fileLength, source).read();
    CStringTableReader reader(stream, *file, fileLength);
    return read(reader, doc);
}

} // namespace

kore::P<kore::CTextTable> CLanguageFile::readTexts() const
{
    chf::TChunkRef<chf::IStream> stream = openForReading(*m_source);
    return readTexts(*stream, m_source.get());
}

kore::P<kore::CTextTable> CLanguageFile::readTexts(chf::IStream& stream, const kore::IURI* source)
{
    return withStringTable(stream, source, [](CStringTableReader& reader, const LanguageDocument& doc) {
        const auto own = doc.extra.find(std::u16string(kPluralFormsExtra));
        return reader.readTexts(
            pluralRuleText(own == doc.extra.end() ? std::nullopt : std::optional(own->second), doc.tag.value_or(u"")));
    });
}

void CLanguageFile::readEntries(chf::IStream& stream, const kore::IURI* source,
                                const std::function<void(const std::u16string&, const std::u16string&)>& visit)
{
    withStringTable(stream, source, [&](CStringTableReader& reader, const LanguageDocument&) {
        reader.readEntries(visit);
        return 0;
    });
}

void CLanguageFile::readEntries(
    chf::IStream& stream, const kore::IURI* source,
    const std::function<void(const std::u16string&, const std::u16string&, const std::u16string&)>& visit)
{
    withStringTable(stream, source, [&](CStringTableReader& reader, const LanguageDocument&) {
        reader.readEntries(visit);
        return 0;
    });
}

} // namespace qor_lang
