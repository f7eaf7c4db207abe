#pragma once
// One language file (".qorlang") in memory: which language it is, for which application, who
// wrote it, a comment. Built from the file's location; reads the descriptive chunks once, in the
// constructor, and never changes afterwards. The string entries are read on demand
// (readTexts), when a pack loads the language.

#include "chunk_file/IStream.h"
#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CTextTable.h"
#include "framework/text/IString.h"
#include "qor_lang_manager/LanguageId.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qor_lang {

class CLanguageFile : public kore::CObject {
public:
    // Opens the file at `location` (the file keeps a URI of its own) for reading. Throws when it
    // cannot be opened, is not a container ("URESFILE"), or a read fails; missing chunks are not
    // errors.
    explicit CLanguageFile(const kore::IURI& location);
    // Reads from an open stream positioned at the container's header; `source` names the file.
    CLanguageFile(const kore::IURI* source, chf::IStream& stream);

    kore::P<kore::IURI> getSource() const { return m_source; }
    kore::P<kore::IString> getAuthor() const { return m_author; }
    kore::P<kore::IString> getAppId() const { return m_appId; }
    kore::P<kore::IString> getAppString2() const { return m_appString2; }
    LanguageId getLanguage() const { return m_language; }
    kore::P<kore::IString> getEnglishName() const { return m_englishName; }
    kore::P<kore::IString> getEnglishSubName() const { return m_englishSubName; }
    kore::P<kore::IString> getNativeName() const { return m_nativeName; }
    kore::P<kore::IString> getNativeSubName() const { return m_nativeSubName; }
    kore::P<kore::IString> getComment() const { return m_comment; }
    // The "lang" tag as the file writes it (valid or not) and the "vers" value, for tools.
    const std::u16string& getTagText() const { return m_tagText; }
    uint32_t getVersion() const { return m_version; }

    // The texts of the file's string table by key, each key answered as the table's order makes
    // it answer. Reopens the file at the source location. Throws like the constructor, and
    // kore::CError naming the place for a file cut short.
    kore::P<kore::CTextTable> readTexts() const;
    // The same from an open stream positioned at the container's header.
    static kore::P<kore::CTextTable> readTexts(chf::IStream& stream, const kore::IURI* source);
    // Every string entry's key and text in file order, duplicates included (for tools).
    static void readEntries(chf::IStream& stream, const kore::IURI* source,
                            const std::function<void(const std::u16string& key, const std::u16string& text)>& visit);
    // The same with each entry's third string, empty when absent.
    static void readEntries(chf::IStream& stream, const kore::IURI* source,
                            const std::function<void(const std::u16string& key, const std::u16string& text,
                                                     const std::u16string& third)>& visit);

private:
    void load(chf::IStream& stream);

    kore::P<kore::IURI> m_source;
    kore::P<kore::IString> m_author;
    kore::P<kore::IString> m_appId;
    kore::P<kore::IString> m_appString2;
    LanguageId m_language;
    kore::P<kore::IString> m_englishName;
    kore::P<kore::IString> m_englishSubName;
    kore::P<kore::IString> m_nativeName;
    kore::P<kore::IString> m_nativeSubName;
    kore::P<kore::IString> m_comment;
    std::u16string m_tagText;
    uint32_t m_version = 0;
};

} // namespace qor_lang
