#include "qor_lang_manager/CLanguagePack.h"

#include "qor_lang_manager/CLanguageManager.h"

#include "chunk_file/CKoreFileStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/errors/CException.h"
#include "framework/errors/CFileNotFoundError.h"
#include "framework/io/IFileEntry.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IFileSystemManager.h"
#include "framework/io/IStreamManager.h"
#include "framework/io/ISystem.h"
#include "framework/log/CLogManager.h"
#include "framework/sync/IMutexFactory.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

namespace qor_lang {

using kore::P;

namespace {
// The country a language is most at home in, as far as codes tell: "de" -> "de-DE"; English's is
// the library's own second choice, "en-US".
std::u16string ownCountryTag(const std::u16string& code)
{
    std::u16string tag = code + u"-";
    const std::u16string second = CLanguageManager::kFallbackLanguage.getTag();
    if (second.compare(0, tag.size(), tag) == 0)
        return second;
    for (char16_t c : code)
        tag += (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - u'a' + u'A') : c;
    return tag;
}
} // namespace

CLanguagePack::CLanguagePack(P<kore::IURI> folder, const kore::CStringArg& appId)
    : m_folder(std::move(folder)), m_appId(kore::keepText(appId)), m_listLock(kore::createMutexFactory()->createMutex())
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
    log->error(kLogModule, *kore::formatString("error while loading '%s'", name), kore::ILog::kNoCode);
    if (cause && cause->getLength() != 0)
        log->error(kLogModule, *kore::formatString("'%s': %s", name, *cause), kore::ILog::kNoCode);
}

bool CLanguagePack::belongsToAnotherApp(const CLanguageFile& file) const
{
    // "A*.qorlang" also matches the files of "A-tools" or "Ab"; their "apid" chunk tells them
    // apart. Letter case does not count, as it does not in file names on Windows. A file without
    // the chunk stays listed.
    P<kore::IString> id = file.getAppId();
    return id->getLength() != 0 && id->compareString(*m_appId, true, kore::IString::kUnknown, false) != 0;
}

void CLanguagePack::scanIfEmpty()
{
    if (!m_files.empty())
        return;
    P<kore::IFileEnum> entries;
    try {
        entries =
            kore::IFileSystemManager::instance()->enumerate(*m_folder, *kore::formatString("%s*.qorlang", *m_appId));
    } catch (const kore::CFileNotFoundError&) {
        return; // a folder that does not exist (yet) holds no files
    }
    while (entries->hasNext()) {
        P<kore::IFileEntry> entry = entries->next();
        if (entry->isFolder())
            continue;
        try {
            P<CLanguageFile> file = kore::make<CLanguageFile>(*entry->getURI());
            if (belongsToAnotherApp(*file))
                continue;
            m_files.push_back(std::move(file));
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

std::u16string CLanguagePack::fallbackTag(const LanguageId& language) const
{
    const std::u16string tag = language.getTag();
    const std::size_t dash = tag.find(u'-');
    if (!language.hasLanguage() || dash == std::u16string::npos)
        return {};
    const std::u16string code = tag.substr(0, dash);
    const std::u16string own = ownCountryTag(code);
    P<kore::IFileEnum> entries;
    try {
        entries =
            kore::IFileSystemManager::instance()->enumerate(*m_folder, *fileName(*m_appId, (code + u"-*").c_str()));
    } catch (const kore::CFileNotFoundError&) {
        return {};
    }
    std::u16string best;
    while (entries->hasNext()) {
        P<kore::IFileEntry> entry = entries->next();
        if (entry->isFolder())
            continue;
        // The name's last part before ".qorlang" is the country; the name must be exactly the one
        // the exact load would compose for that tag, so "A-de-x-AT" or "A-de-at" never count.
        const std::u16string name = entry->getName()->toU16();
        constexpr std::u16string_view kExtension = u".qorlang";
        if (name.size() <= kExtension.size())
            continue;
        const std::u16string stem = name.substr(0, name.size() - kExtension.size());
        const std::size_t country = stem.rfind(u'-');
        if (country == std::u16string::npos)
            continue;
        const std::u16string candidate = code + stem.substr(country);
        const LanguageId id(candidate.c_str(), LanguageTagMode::Tag);
        if (!id.isValid() || id.getTag() != candidate || candidate == tag ||
            fileName(*m_appId, candidate.c_str())->toU16() != name)
            continue;
        if (candidate == own)
            return candidate;
        if (best.empty() || candidate < best)
            best = candidate;
    }
    return best;
}

} // namespace qor_lang
