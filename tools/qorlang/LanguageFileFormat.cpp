// The language file itself: compiled from a catalogue with the library's writer, read back with
// the library's own reader, so that the tool sees exactly what the library will see.
#include "Formats.h"
#include "Unicode.h"

#include "chunk_file/CChunkFile.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/errors/CException.h"
#include "framework/text/CTextTable.h"
#include "framework/text/IString.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/CLanguageFileWriter.h"
#include "qor_lang_manager/LanguageChunks.h"

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

// The "xdid" value under `key`, read as the library reads the chunk: the last pair wins.
std::optional<std::u16string> extraValue(const std::vector<uint8_t>& bytes, std::u16string_view key)
{
    auto stream = streamOver(bytes);
    chf::TChunkRef<chf::CChunkFile> file(chf::CChunkFile::open(stream.get()));
    if (!file->findFirstChunk(qor_lang::kChunkXdid))
        return std::nullopt;
    chf::TChunkRef<chf::CChunkStream> chunk(file->openChunkStream());
    qor_lang::CLanguageChunkReader reader(*chunk, stream->getLength(), nullptr);
    const uint32_t pairs = reader.readUInt32();
    reader.require(8ull * pairs);
    std::optional<std::u16string> value;
    for (uint32_t i = 0; i < pairs; ++i) {
        const qor_lang::CountedString name = reader.readCountedString();
        qor_lang::CountedString text = reader.readCountedString();
        if (name.value_or(u"") == key)
            value = text.value_or(u"");
    }
    return value;
}

std::vector<std::u16string> splitForms(std::u16string_view joined)
{
    std::vector<std::u16string> forms(1);
    for (char16_t c : joined) {
        if (c == u'\0')
            forms.emplace_back();
        else
            forms.back().push_back(c);
    }
    return forms;
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
        c.pluralForms = extraValue(bytes, kPluralFormsExtra);
        // A plural entry's "K U+0005" entry joins its "K" entry as its forms; one without a "K"
        // entry stands alone.
        std::map<std::u16string, size_t> byKey;
        std::vector<std::pair<std::u16string, std::pair<std::u16string, std::u16string>>> plurals;
        auto stream = streamOver(bytes);
        qor_lang::CLanguageFile::readEntries(
            *stream, nullptr, [&](const std::u16string& key, const std::u16string& text, const std::u16string& third) {
                if (!key.empty() && key.back() == kPluralMark) {
                    plurals.push_back({key.substr(0, key.size() - 1), {text, third}});
                    return;
                }
                byKey[key] = c.entries.size();
                c.entries.push_back(Entry{key, text});
            });
        for (auto& [key, value] : plurals) {
            auto it = byKey.find(key);
            if (it == byKey.end()) {
                it = byKey.emplace(key, c.entries.size()).first;
                c.entries.push_back(Entry{key, splitForms(value.first).front()});
            }
            Entry& e = c.entries[it->second];
            e.plural = true;
            e.forms = splitForms(value.first);
            e.pluralSource = value.second;
        }
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
    if (c.pluralForms)
        writer.addExtra(std::u16string(kPluralFormsExtra), *c.pluralForms);
    for (const Entry* e : compiledEntries(c, options)) {
        writer.addString(e->key, e->text);
        if (e->forms.empty())
            continue;
        std::u16string joined;
        for (size_t i = 0; i < e->forms.size(); ++i) {
            if (i > 0)
                joined.push_back(u'\0');
            joined += e->forms[i];
        }
        qor_lang::CLanguageFileWriter::Entry forms;
        forms.key = e->key + kPluralMark;
        forms.text = std::move(joined);
        forms.third = e->pluralSource;
        writer.addEntry(std::move(forms));
    }
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
