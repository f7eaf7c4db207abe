#include "qor_lang_manager/CLanguageManager.h"

#include "framework/errors/CException.h"
#include "framework/errors/CFileNotFoundError.h"
#include "framework/io/IFileEntry.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IFileSystemManager.h"
#include "framework/log/CLogManager.h"
#include "framework/log/Trace.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/sync/IMutexFactory.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"
#include "framework/text/CStringLocalizer.h"
#include "qor_lang_manager/PluralLookup.h"

#include <algorithm>

namespace qor_lang {

using kore::CMutexLock;
using kore::P;

namespace {

// Where the language change is traced, as debugger users of this library know it.
constexpr int32_t kTraceLine = 189;

P<CLanguageManager> create()
{
    return kore::make<CLanguageManager>();
}

} // namespace

const LanguageId CLanguageManager::kFallbackLanguage(u"en-US", LanguageTagMode::Tag);

P<CLanguageManager>& CLanguageManager::instance()
{
    return kore::CGlobalObjFactory::accessor<CLanguageManager, &create>();
}

CLanguageManager::CLanguageManager()
{
    P<kore::IMutexFactory> mutexes = kore::createMutexFactory();
    m_changeLock = mutexes->createMutex();
    m_stateLock = mutexes->createMutex();
}

P<CLanguagePack> CLanguageManager::findPack(const kore::CStringArg& appId) const
{
    CMutexLock state(*m_stateLock);
    auto it = m_packs.find(appId.get());
    return it == m_packs.end() ? nullptr : it->second;
}

std::vector<P<CLanguagePack>> CLanguageManager::packs() const
{
    CMutexLock state(*m_stateLock);
    std::vector<P<CLanguagePack>> packs;
    packs.reserve(m_packs.size());
    for (const auto& [id, pack] : m_packs)
        packs.push_back(pack);
    return packs;
}

void CLanguageManager::add(P<kore::IURI> folder, const kore::CStringArg& appId)
{
    // A change like a switch: an id added while a switch runs is added after it, so it has no
    // texts in the switch's language until the next switch, as if the calls had come in turn.
    CMutexLock changing(*m_changeLock);
    P<kore::IString> id = kore::keepText(appId);
    CMutexLock state(*m_stateLock);
    if (m_packs.count(id))
        return; // the first registration of an id wins, silently
    m_packs.emplace(id, kore::make<CLanguagePack>(std::move(folder), *id));
}

void CLanguageManager::reload()
{
    CMutexLock changing(*m_changeLock);
    for (const P<CLanguagePack>& pack : packs())
        pack->reload();
}

LanguageId CLanguageManager::getCurrentLanguage() const
{
    // Waits for a switch in progress: its texts may already answer look-ups, and a thread that
    // has seen them must not be told the tag before it.
    CMutexLock changing(*m_changeLock);
    return m_current;
}

bool CLanguageManager::setCurrentLanguage(const LanguageId& language)
{
    // Switches run one at a time from the first file read to the last listener: of two threads
    // switching at once, the later leaves both the current tag and the loaded texts. The tag is
    // stored first: whatever happens below, the host asked for this language, and nobody reads the
    // tag before the switch ends (getCurrentLanguage waits for the lock).
    CMutexLock changing(*m_changeLock);
    m_current = language;
    installPluralLookup();
    // Every pack reads its file first, or else the file of its fallback (same language, another
    // country). Texts of the previous language must never show, so the new texts (a later pack's
    // text of a key answering before an earlier one's) replace the localizer's whole content in one
    // step, even when there are none; a look-up meanwhile sees the old or the new text.
    std::u16string tag;
    try {
        tag = language.getTag();
        kore::CLogManager::instance()->log(kore::ILog::kInfo, kLogModule,
                                           *kore::formatString("Setting Language: %s", tag.c_str()),
                                           kore::ILog::kNoCode, kore::ILog::kNoLine);
        std::vector<P<kore::CTextTable>> texts;
        for (const P<CLanguagePack>& pack : packs()) {
            if (pack->setLanguage(tag.c_str(), texts))
                continue;
            const std::u16string fallback = pack->fallbackTag(language);
            if (!fallback.empty())
                pack->setLanguage(fallback.c_str(), texts);
        }
        kore::CStringLocalizer::instance()->setTexts(texts);
    } catch (...) {
        // Out of memory midway: better no texts than the previous language's, if even that can be had.
        try {
            kore::CStringLocalizer::instance()->setTexts({});
        } catch (...) {
        }
        throw;
    }
    // A copy: a listener may remove itself while being told.
    std::vector<ILanguageChangeListener*> listeners;
    {
        CMutexLock state(*m_stateLock);
        listeners = m_listeners;
    }
    if (kore::isTraceEnabled())
        kore::debugTrace("CLanguageManager.cpp", kTraceLine, tag.c_str());
    for (ILanguageChangeListener* listener : listeners)
        listener->onLanguageChanged(language);
    return true;
}

int32_t CLanguageManager::getLanguageCount(const kore::CStringArg& appId)
{
    P<CLanguagePack> pack = findPack(appId);
    return pack ? pack->count() : 0;
}

P<CLanguageFile> CLanguageManager::getLanguageFile(const kore::CStringArg& appId, int32_t index)
{
    P<CLanguagePack> pack = findPack(appId);
    // One call to the pack: a count taken first could be stale by the time the file is taken.
    return pack ? pack->file(index) : nullptr;
}

P<kore::IURI> CLanguageManager::findFile(const kore::IURI& folder, const kore::CStringArg& prefix,
                                         const LanguageId& language, const kore::CStringArg& infix,
                                         const kore::CStringArg& suffix)
{
    const std::u16string tag = language.getTag();
    P<kore::IString> pattern = kore::formatString("%s%s%s%s", prefix.get(), tag.c_str(), infix.get(), suffix.get());
    P<kore::IFileEnum> entries;
    try {
        entries = kore::IFileSystemManager::instance()->enumerate(folder, *pattern);
    } catch (const kore::CFileNotFoundError&) {
        return nullptr;
    }
    while (entries->hasNext()) {
        P<kore::IFileEntry> entry = entries->next();
        if (!entry->isFolder())
            return entry->getURI();
    }
    return nullptr;
}

P<kore::IURI> CLanguageManager::findLocalizedFile(const kore::IURI& folder, const kore::CStringArg& prefix,
                                                  const kore::CStringArg& infix, const kore::CStringArg& suffix)
{
    if (P<kore::IURI> found = findFile(folder, prefix, getCurrentLanguage(), infix, suffix))
        return found;
    return findFile(folder, prefix, kFallbackLanguage, infix, suffix);
}

void CLanguageManager::addListener(ILanguageChangeListener* listener)
{
    CMutexLock state(*m_stateLock);
    if (listener && std::find(m_listeners.begin(), m_listeners.end(), listener) == m_listeners.end())
        m_listeners.push_back(listener);
}

void CLanguageManager::removeListener(ILanguageChangeListener* listener)
{
    CMutexLock state(*m_stateLock);
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), listener), m_listeners.end());
}

} // namespace qor_lang
