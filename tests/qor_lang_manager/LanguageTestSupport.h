#pragma once
// Shared by the language tests: byte builders for hand-made language files, files from the
// writer, the texts a file or table answers, a log sink that records one module, a guard that
// leaves the process's localizer empty, and a watch that counts or fails allocations.

#include "../chunk_file/ChunkTestSupport.h"
#include "framework/io/CURI.h"
#include "framework/log/CLogManager.h"
#include "framework/objects/CObject.h"
#include "framework/text/CString.h"
#include "framework/text/CStringLocalizer.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace lang_test {

using chf_test::Bytes;
using chf_test::chunk;
using chf_test::container;
using chf_test::operator+;
using Strings = std::vector<std::pair<std::u16string, std::u16string>>;
using Texts = std::map<std::u16string, std::u16string>;

inline const auto u32 = [](uint32_t v) -> Bytes {
    return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
};

// A counted string: N = units + 1, the units, a zero unit; nullopt is N = 0.
inline Bytes counted(const qor_lang::CountedString& text)
{
    Bytes out = u32(text ? uint32_t(text->size() + 1) : 0);
    for (char16_t c : text ? *text + u'\0' : u"")
        out = out + Bytes{uint8_t(c), uint8_t(c >> 8)};
    return out;
}

inline Bytes langChunk(const char16_t* tag, const char16_t* native = u"", const char16_t* sub = u"")
{
    return chunk("lang", counted(tag) + counted(native) + counted(sub));
}
inline Bytes stmpChunk(const Strings& entries)
{
    Bytes data = u32(static_cast<uint32_t>(entries.size()));
    for (const auto& [key, text] : entries)
        data = data + u32(0) + counted(key) + counted(text) + u32(0) + u32(0);
    return chunk("STMP", chunk("data", data));
}

// A file with a tag, an application id (none for nullopt) and strings; the other items stay empty.
inline qor_lang::CLanguageFileWriter languageWriter(const qor_lang::CountedString& tag,
                                                    const qor_lang::CountedString& appId, const Strings& strings = {})
{
    qor_lang::CLanguageFileWriter writer;
    writer.setLanguage(tag, std::nullopt, std::nullopt);
    if (appId)
        writer.setApplication(appId);
    for (const auto& [key, text] : strings)
        writer.addString(key, text);
    return writer;
}
inline void writeLanguageFile(const std::filesystem::path& file, const qor_lang::CLanguageFileWriter& writer)
{
    writer.writeFile(*kore::CURI::fromLocalPath(file.u16string().c_str()));
}
inline Bytes written(const qor_lang::CLanguageFileWriter& writer)
{
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream());
    writer.write(*stream);
    return stream->getBytes();
}

// A file, and its string table, read from memory without a source.
inline kore::P<qor_lang::CLanguageFile> readFile(const Bytes& bytes)
{
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(bytes));
    return kore::make<qor_lang::CLanguageFile>(nullptr, *stream);
}
inline kore::P<kore::CTextTable> readTable(const Bytes& bytes)
{
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(bytes));
    return qor_lang::CLanguageFile::readTexts(*stream, nullptr);
}

// Every key of a table with the text it answers (empty texts included).
inline Texts contentOf(const kore::CTextTable& table)
{
    auto units = [](const uint8_t* bytes, uint32_t count) {
        std::u16string text(count, u'\0');
        std::memcpy(text.data(), bytes, 2 * count);
        return text;
    };
    Texts texts;
    table.forEach([&](const uint8_t* key, uint32_t keyUnits, const uint8_t* text, uint32_t textUnits) {
        texts[units(key, keyUnits)] = units(text, textUnits);
    });
    return texts;
}
inline const auto readTexts = [](const Bytes& bytes) -> Texts { return contentOf(*readTable(bytes)); };

inline const auto utf8 = [](const kore::P<kore::IString>& s) -> std::string { return s ? s->toUTF8() : "<null>"; };
inline const auto writeBytes = [](const kore_test::CTempFolder& folder, const std::string& name, const Bytes& bytes) {
    folder.writeFile(name, std::string(bytes.begin(), bytes.end()));
};

// Empties the process's localizer before and after a test that loads strings into it.
struct CLocalizerGuard {
    CLocalizerGuard() { kore::CStringLocalizer::instance()->clear(); }
    ~CLocalizerGuard() { kore::CStringLocalizer::instance()->clear(); }
};

// Records "<level>:<text>" of every record of one module while it lives.
class CLogCapture {
public:
    explicit CLogCapture(const char* module) : m_module(module)
    {
        kore::CLogManager::instance()->addLog(module, m_sink.get());
    }
    ~CLogCapture() { kore::CLogManager::instance()->removeLog(m_module, m_sink.get()); }
    std::vector<std::string>& records() { return m_sink->records; }

private:
    struct CSink : kore::CObject, kore::ILog {
        std::vector<std::string> records;
        void write(const kore::CStringArg&, const kore::CStringArg& record) override
        {
            records.push_back(record->toUTF8());
        }
        void setLevel(int32_t) override {}
        int32_t getLevel() const override { return 0; }
        void log(int32_t level, const kore::CStringArg&, const kore::CStringArg& text, int32_t, int32_t) override
        {
            records.push_back(std::to_string(level) + ":" + text->toUTF8());
        }
    };
    const char* m_module;
    kore::P<CSink> m_sink = kore::make<CSink>();
};

// The state of AllocationProbe.cpp's operator new, on this thread.
struct AllocationState {
    bool watching = false, failed = false;
    std::size_t limit = 0, largest = 0, failAt = 0, allocations = 0;
};
inline thread_local AllocationState t_allocation;

// While one lives, operator new counts the plain allocations of this thread and remembers the
// largest request; it refuses (std::bad_alloc, or null from the nothrow form; nothing allocated)
// the `failAt`-th one (0: none) and any request above `limit`.
struct CAllocationWatch {
    explicit CAllocationWatch(std::size_t failAt, std::size_t limit = SIZE_MAX)
    {
        t_allocation = {true, false, limit, 0, failAt, 0};
    }
    ~CAllocationWatch() { t_allocation.watching = false; }
    std::size_t allocations() const { return t_allocation.allocations; }
    std::size_t largest() const { return t_allocation.largest; }
    bool failed() const { return t_allocation.failed; }
};

} // namespace lang_test
