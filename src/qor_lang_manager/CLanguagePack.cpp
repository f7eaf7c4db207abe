#include "qor_lang_manager/CLanguagePack.h"

#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/CException.h"
#include "framework/CFileNotFoundError.h"
#include "framework/CLogManager.h"
#include "framework/CString.h"
#include "framework/CStringFormat.h"
#include "framework/IFileEntry.h"
#include "framework/IFileEnum.h"
#include "framework/IFileSystemManager.h"
#include "framework/IMutexFactory.h"
#include "framework/IStreamManager.h"
#include "framework/ISystem.h"

namespace qor_lang {

using kore::P;

namespace {
constexpr int32_t kErrorLevel = 3;
}

CLanguagePack::CLanguagePack(P<kore::IURI> folder, const kore::CStringArg& appId)
    : m_folder(std::move(folder)), m_appId(kore::keepText(appId)),
      m_listLock(kore::createMutexFactory()->createMutex())
{
}

P<kore::IString> CLanguagePack::fileName(const kore::CStringArg& appId, const kore::CStringArg& tag)
{
    // One pass, so "A--" + "-" + tag keeps "A--" in front, as the folder scan ("A--*") expects.
    return kore::formatString("%s-%s.qorlang", appId.get(), tag.get())->replaceAll("--", "-");
}

void CLanguagePack::reportLoadError(const kore::IString& name, const kore::IString* cause)
{
    P<kore::CLogManager> log = kore::CLogManager::instance();
    log->log(kErrorLevel, kLogModule, *kore::formatString("error while loading '%s'", name), 0, -1);
    if (cause && cause->getLength() != 0)
        log->log(kErrorLevel, kLogModule, *kore::formatString("'%s': %s", name, *cause), 0, -1);
}

void CLanguagePack::scanIfEmpty()
{
    if (!m_files.empty())
        return;
    P<kore::IFileEnum> entries;
    try {
        entries = kore::IFileSystemManager::instance()->enumerate(
            *m_folder, *kore::formatString("%s*.qorlang", *m_appId));
    } catch (const kore::CFileNotFoundError&) {
        return; // a folder that does not exist (yet) holds no files
    }
    while (entries->hasNext()) {
        P<kore::IFileEntry> entry = entries->next();
        if (entry->isFolder())
            continue;
        try {
            m_files.push_back(kore::make<CLanguageFile>(*entry->getURI()));
        } catch (const kore::CException& e) {
            reportLoadError(*entry->getName(), e.getDescription().get());
        } catch (...) {
            reportLoadError(*entry->getName(), nullptr);
        }
    }
}

int32_t CLanguagePack::count()
{
    kore::CMutexLock listing(*m_listLock);
    scanIfEmpty();
    return static_cast<int32_t>(m_files.size());
}

P<CLanguageFile> CLanguagePack::file(int32_t index)
{
    kore::CMutexLock listing(*m_listLock);
    scanIfEmpty();
    // The manager checks only the upper bound; an index outside the list must still not read
    // outside it.
    if (index < 0 || static_cast<size_t>(index) >= m_files.size())
        return nullptr;
    return m_files[static_cast<size_t>(index)];
}

void CLanguagePack::reload()
{
    kore::CMutexLock listing(*m_listLock);
    m_files.clear();
}

P<kore::IURI> CLanguagePack::languageFileURI(const kore::IString& name) const
{
    P<kore::IURI> uri = m_folder->resolve(name);
    return kore::ISystem::instance()->fileExists(*uri) ? uri : nullptr;
}

int32_t CLanguagePack::setLanguage(const kore::CStringArg& tag, std::vector<P<kore::CTextTable>>& texts)
{
    P<kore::IString> name = fileName(*m_appId, tag);
    try {
        P<kore::IURI> uri = languageFileURI(*name);
        if (!uri)
            return 0;
        chf::TChunkRef<chf::IStream> stream(new chf::CKoreFileStream(*uri, kore::IStreamManager::kRead));
        texts.push_back(CLanguageFile::readTexts(*stream, uri.get()));
        return 1;
    } catch (const kore::CException& e) {
        reportLoadError(*name, e.getDescription().get());
    } catch (...) {
        reportLoadError(*name, nullptr);
    }
    return 0;
}

} // namespace qor_lang
