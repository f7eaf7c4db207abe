#pragma once
// The language files of one application id in one folder. Lists them lazily (the first query
// scans the folder; an empty list is scanned again at every query), hands them out by index in
// folder order, forgets them on reload, and loads the strings of one language into the
// process-wide string localizer.

#include "framework/CObject.h"
#include "framework/IString.h"
#include "framework/IURI.h"
#include "framework/P.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/LanguageId.h"

#include <functional>
#include <memory>
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
    // Loads the strings of the file for `language` into the string localizer: 1 when a file was
    // loaded, 0 when there is none or it could not be read (the localizer is then unchanged:
    // the whole table is read before the first text is handed over).
    int32_t setLanguage(const LanguageId& language);
    // The two halves of setLanguage. Reading gives null when there is no file or it cannot be
    // read (reported to the log); visiting gives every entry's key and text in the order in which
    // they reach the localizer (bucket by bucket, each chain from its head).
    std::unique_ptr<CLanguageStringTable> readLanguage(const LanguageId& language) const;
    static void forEachString(const CLanguageStringTable& table,
                              const std::function<void(const kore::CStringArg&, const kore::CStringArg&)>& visit);

    // The file name of `appId` for `tag`: appId + "-" + tag + ".qorlang", then every "--"
    // replaced by "-" in one pass.
    static kore::P<kore::IString> fileName(const kore::CStringArg& appId, const kore::CStringArg& tag);

    kore::P<kore::IURI> getFolder() const { return m_folder; }
    kore::P<kore::IString> getAppId() const { return m_appId; }

private:
    kore::P<kore::IURI> languageFileURI(const kore::IString& name) const;
    void scanIfEmpty();
    static void reportLoadError(const kore::IString& name);

    kore::P<kore::IURI> m_folder;
    kore::P<kore::IString> m_appId;
    std::vector<kore::P<CLanguageFile>> m_files;
};

} // namespace qor_lang
