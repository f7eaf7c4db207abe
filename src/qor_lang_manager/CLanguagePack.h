#pragma once
// The language files of one application id in one folder. Lists them lazily (the first query
// scans the folder; an empty list is scanned again at every query), hands them out by index in
// folder order, forgets them on reload, and reads the texts of one language for the
// process-wide string localizer. Safe from any thread: the list is read, filled and emptied under
// the pack's own lock, so two threads asking at once see one scan; reading texts uses only the
// pack's fixed folder and id.

#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/sync/IMutex.h"
#include "framework/text/CTextTable.h"
#include "framework/text/IString.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/LanguageId.h"

#include <string>
#include <vector>

namespace qor_lang {

class CLanguagePack : public kore::CObject {
public:
    // The module under which the pack reports files it cannot load.
    static constexpr const char* kLogModule = "qor_lang::pack";

    CLanguagePack(kore::P<kore::IURI> folder, const kore::CStringArg& appId);

    int32_t count();
    // Null for an index outside the list.
    kore::P<CLanguageFile> file(int32_t index);
    // Releases every file; files held elsewhere (handles) stay alive.
    void reload();
    // Reads the texts of its file for the language of tag `tag` and appends them to `texts`: 1
    // when the file exists and could be read, 0 otherwise (nothing appended; a file that cannot
    // be read is reported to the log with its cause). The manager hands the texts of every pack
    // to the string localizer in one step.
    int32_t setLanguage(const kore::CStringArg& tag, std::vector<kore::P<kore::CTextTable>>& texts);
    // The tag of the file that stands in for `language` when the folder has none of its own: a file
    // of the same language with another country, found by its name (never by the tag inside it).
    // Of several, the one whose country is the language's own (de-DE, fr-FR; en-US for English),
    // else the first tag in code-unit order. Empty when there is none.
    std::u16string fallbackTag(const LanguageId& language) const;

    // The file name of `appId` for `tag`: appId + "-" + tag + ".qorlang", then every "--"
    // replaced by "-" in one pass.
    static kore::P<kore::IString> fileName(const kore::CStringArg& appId, const kore::CStringArg& tag);

    kore::P<kore::IURI> getFolder() const { return m_folder; }
    kore::P<kore::IString> getAppId() const { return m_appId; }

private:
    kore::P<kore::IURI> languageFileURI(const kore::IString& name) const;
    // Under m_listLock.
    void scanIfEmpty();
    bool belongsToAnotherApp(const CLanguageFile& file) const;
    // "error while loading '<name>'", and the cause in a second record when there is one.
    static void reportLoadError(const kore::IString& name, const kore::IString* cause);

    kore::P<kore::IURI> m_folder;
    kore::P<kore::IString> m_appId;
    std::vector<kore::P<CLanguageFile>> m_files;
    kore::P<kore::IMutex> m_listLock;
};

} // namespace qor_lang
