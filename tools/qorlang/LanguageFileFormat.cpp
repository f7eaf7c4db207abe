// The language file itself: compiled from a catalogue with the library's writer, read back with
// the library's own reader, so that the tool sees exactly what the library will see.
#include "Formats.h"
#include "Unicode.h"

#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/CException.h"
#include "framework/CTextTable.h"
#include "framework/IString.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include <cstring>
#include <exception>
#include <map>

namespace qorlang {

namespace {

std::u16string utf16Of(const kore::P<kore::IString>& text)
{
    if (!text || text->getLength() == 0)
        return {};
    const std::string utf8 = text->toUTF8();
    return decodeUtf8(utf8).value_or(u"");
}

chf::TChunkRef<chf::CMemoryStream> streamOver(const std::vector<uint8_t>& bytes)
{
    return chf::TChunkRef<chf::CMemoryStream>(new chf::CMemoryStream(bytes));
}

// The library's reader reports a broken container with the runtime's base exception only.
template <class F>
auto guarded(const std::string& path, const F& read)
{
    try {
        return read();
    } catch (const kore::CException& e) {
        fail(path, 0, "not a readable language file: " + e.getDescription()->toUTF8());
    } catch (const std::exception&) {
        fail(path, 0, "not a readable language file");
    }
}

} // namespace

Catalogue readQorlang(const std::string& path, const std::vector<uint8_t>& bytes)
{
    return guarded(path, [&] {
        Catalogue c;
        c.path = path;
        {
            auto stream = streamOver(bytes);
            kore::P<qor_lang::CLanguageFile> file = kore::make<qor_lang::CLanguageFile>(nullptr, *stream);
            c.language = file->getTagText();
            c.author = utf16Of(file->getAuthor());
            c.appId = utf16Of(file->getAppId());
            c.comment = utf16Of(file->getComment());
            c.nativeName = utf16Of(file->getNativeName());
            c.nativeSubName = utf16Of(file->getNativeSubName());
            c.version = file->getVersion();
        }
        auto stream = streamOver(bytes);
        qor_lang::CLanguageFile::readEntries(*stream, nullptr, [&](const std::u16string& key, const std::u16string& text) {
            c.entries.push_back(Entry{key, text});
        });
        return c;
    });
}

std::vector<const Entry*> compiledEntries(const Catalogue& catalogue, const CompileOptions& options)
{
    std::vector<const Entry*> out;
    std::map<std::u16string_view, size_t> position;
    for (const Entry& e : catalogue.entries) {
        if (!e.usable(options.useFuzzy))
            continue;
        auto [it, added] = position.emplace(e.key, out.size());
        if (added)
            out.push_back(&e);
        else
            out[it->second] = &e; // the later definition wins, in the place of the first
    }
    return out;
}

std::vector<uint8_t> compileLanguageFile(const Catalogue& c, const CompileOptions& options)
{
    qor_lang::CLanguageFileWriter writer;
    writer.setLanguage(c.language.value_or(u""), c.nativeName.value_or(u""), c.nativeSubName.value_or(u""));
    writer.setApplication(c.appId.value_or(u""));
    writer.setComment(c.comment.value_or(u""));
    if (c.author)
        writer.setAuthor(*c.author);
    writer.setVersion(c.version.value_or(1));
    for (const Entry* e : compiledEntries(c, options))
        writer.addString(e->key, e->text);
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream());
    writer.write(*stream);
    return stream->getBytes();
}

std::function<std::u16string(std::u16string_view key)> answersOf(const std::vector<uint8_t>& languageFile)
{
    auto stream = streamOver(languageFile);
    kore::P<kore::CTextTable> table = qor_lang::CLanguageFile::readTexts(*stream, nullptr);
    return [table](std::u16string_view key) {
        kore::CTextTable::Text text;
        const auto units = static_cast<uint32_t>(key.size());
        if (!table->find(key.data(), units, kore::CTextTable::hash(key.data(), units), text))
            return std::u16string();
        std::u16string out(text.units, u'\0');
        std::memcpy(out.data(), text.bytes, 2 * size_t(text.units));
        return out;
    };
}

} // namespace qorlang
