#pragma once
// Writes a complete language file: the container header, then "lang", "apid", "cmnt", "xdid"
// (the author among its pairs), "vers" and an "STMP" chunk holding the "data" chunk of string
// entries — through the container's own streams, the way the container grows files. Tools and
// tests build their files with it.

#include "chunk_file/IStream.h"
#include "framework/io/IURI.h"
#include "qor_lang_manager/LanguageChunks.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qor_lang {

class CLanguageFileWriter {
public:
    struct Entry {
        uint32_t value = 0;
        CountedString key;
        CountedString text;
        CountedString third;
        CountedString fourth;
    };

    void setLanguage(CountedString tag, CountedString nativeName, CountedString nativeSubName);
    void setApplication(CountedString appId, CountedString appString2 = std::nullopt);
    void setComment(CountedString comment);
    // An "xdid" pair; the author is the pair with the key "QOR_LANG_AUTHOR".
    void addExtra(std::u16string key, std::u16string value);
    void setAuthor(std::u16string author) { addExtra(u"QOR_LANG_AUTHOR", std::move(author)); }
    void setVersion(uint32_t version) { m_version = version; }
    void addString(std::u16string key, std::u16string text, uint32_t value = 0);
    void addEntry(Entry entry) { m_entries.push_back(std::move(entry)); }

    // Writes the file onto an empty container stream.
    void write(chf::IStream& emptyStream) const;
    // Creates (or replaces) the file at `location`.
    void writeFile(const kore::IURI& location) const;

    // The value encodings, for tools that assemble chunks of their own.
    static void appendUInt32(std::vector<uint8_t>& out, uint32_t value);
    static void appendCountedString(std::vector<uint8_t>& out, const CountedString& text);

private:
    CountedString m_tag;
    CountedString m_nativeName;
    CountedString m_nativeSubName;
    CountedString m_appId;
    CountedString m_appString2;
    CountedString m_comment;
    std::vector<std::pair<std::u16string, std::u16string>> m_extra;
    uint32_t m_version = 1;
    std::vector<Entry> m_entries;
};

} // namespace qor_lang
