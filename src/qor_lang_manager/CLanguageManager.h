#pragma once
// The one object behind the exported interface: one language pack per application id, the
// current language of the whole process, and the listeners told when it changes. It also finds
// language-specific companion files. Any thread may call any method at any time: changes (add,
// reload, a language switch) run one at a time under the change lock, which also guards the
// current language; packs and listeners are guarded by a short state lock that no file access
// holds, so listing languages never waits for a switch. Look-ups never come here: they read the
// string localizer without locks.

#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/sync/IMutex.h"
#include "framework/text/IString.h"
#include "qor_lang_manager/CLanguageFile.h"
#include "qor_lang_manager/CLanguagePack.h"
#include "qor_lang_manager/ILanguageChangeListener.h"
#include "qor_lang_manager/LanguageId.h"

#include <map>
#include <vector>

namespace qor_lang {

class CLanguageManager : public kore::CObject {
public:
    // The module under which language changes are logged.
    static constexpr const char* kLogModule = "qor_lang::manager";
    // The second choice of the file search: "en-US".
    static const LanguageId kFallbackLanguage;

    // The process's manager, created on first request and destroyed at unload.
    static kore::P<CLanguageManager>& instance();

    CLanguageManager();

    // Registers a folder for an application id; the first registration of an id wins.
    void add(kore::P<kore::IURI> folder, const kore::CStringArg& appId);
    // Makes every pack forget its files.
    void reload();
    // Logs the change, stores the language, has every pack read its file for it and makes their
    // texts the string localizer's whole content (of two packs with one key, the later in map order
    // answers); then traces and tells the listeners. The caller has checked that the id is valid.
    //
    // Each pack's file is chosen by name along a fixed chain: the exact tag (A-de-AT.qorlang),
    // else a file of the same language with another country (CLanguagePack::fallbackTag: the
    // language's own country, de-DE, else the first tag in order), else none. A pack with neither
    // contributes no texts, and when no pack has any, every look-up answers the caller's default:
    // texts of the previous language never stay. getCurrentLanguage answers `language` all the same.
    bool setCurrentLanguage(const LanguageId& language);
    // Waits for a switch in progress, so the answer and the texts look-ups find never disagree.
    LanguageId getCurrentLanguage() const;
    int32_t getLanguageCount(const kore::CStringArg& appId);
    // Null for an unknown id or an index not below the count.
    kore::P<CLanguageFile> getLanguageFile(const kore::CStringArg& appId, int32_t index);
    // The first non-folder entry of `folder` matching prefix + tag + infix + suffix, with the
    // current tag and then "en-US"; null when neither matches (or the folder does not exist).
    kore::P<kore::IURI> findLocalizedFile(const kore::IURI& folder, const kore::CStringArg& prefix,
                                          const kore::CStringArg& infix, const kore::CStringArg& suffix);

    // Listeners are not owned: a listener removes itself before it dies.
    void addListener(ILanguageChangeListener* listener);
    void removeListener(ILanguageChangeListener* listener);

private:
    // The string's own order; transparent, so that look-ups need no copy of the argument.
    struct ByText {
        using is_transparent = void;
        bool operator()(const kore::P<kore::IString>& a, const kore::P<kore::IString>& b) const
        {
            return a->compare(*b) < 0;
        }
        bool operator()(const kore::P<kore::IString>& a, const kore::IString& b) const { return a->compare(b) < 0; }
        bool operator()(const kore::IString& a, const kore::P<kore::IString>& b) const { return a.compare(*b) < 0; }
    };

    kore::P<CLanguagePack> findPack(const kore::CStringArg& appId) const;
    // The packs in map order, for a change that must not hold the state lock while it reads files.
    std::vector<kore::P<CLanguagePack>> packs() const;
    kore::P<kore::IURI> findFile(const kore::IURI& folder, const kore::CStringArg& prefix, const LanguageId& language,
                                 const kore::CStringArg& infix, const kore::CStringArg& suffix);

    std::map<kore::P<kore::IString>, kore::P<CLanguagePack>, ByText> m_packs;
    LanguageId m_current;
    std::vector<ILanguageChangeListener*> m_listeners;
    // Held by each change from start to end (recursive: a listener may change the language again
    // or ask for it); guards m_current.
    kore::P<kore::IMutex> m_changeLock;
    // Guards m_packs and m_listeners, held only while they are read or written.
    kore::P<kore::IMutex> m_stateLock;
};

} // namespace qor_lang
