// The exported C functions: thin conversions between the host's UTF-16 strings and the one
// language manager. No exception crosses into the host: a C caller could not catch it.
#include "qor_lang2.h"

#include "framework/errors/CException.h"
#include "framework/io/CURI.h"
#include "framework/io/IPathes.h"
#include "framework/objects/CInstanceWrapper.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"
#include "framework/text/CStringLocalizer.h"
#include "framework/text/ICharEncoding.h"
#include "qor_lang_manager/CLanguageManager.h"

#include <bit>
#include <cstring>
#include <limits>
#include <new>

using kore::P;
using qor_lang::CLanguageFile;
using qor_lang::CLanguageManager;

static_assert(sizeof(QOR_LANG2_CHAR) == sizeof(char16_t), "the exported strings are UTF-16");
// The host's units are taken as the framework's UTF-16, which is little-endian, and back.
static_assert(std::endian::native == std::endian::little, "UTF-16 crosses the boundary as bytes");

namespace {

constexpr int32_t kOk = 0;
constexpr int32_t kFailed = -1;
constexpr int32_t kInvalidTag = 20;

// The host's text as a framework string argument (a null pointer reads as "").
kore::CStringArg arg(const QOR_LANG2_CHAR* text)
{
    return kore::CStringArg(reinterpret_cast<const char16_t*>(text));
}

// A new buffer of the library's allocator: length + 1 units, the size saturating, not wrapping.
// `text` holds `length` UTF-16 units; it need not be aligned.
QOR_LANG2_CHAR* copyOut(const void* text, size_t length)
{
    constexpr size_t kMax = std::numeric_limits<size_t>::max() / sizeof(QOR_LANG2_CHAR);
    const size_t units = length >= kMax ? kMax : length + 1;
    auto* buffer = new (std::nothrow) QOR_LANG2_CHAR[units];
    if (!buffer)
        return nullptr;
    if (length)
        std::memcpy(buffer, text, (units - 1) * sizeof(QOR_LANG2_CHAR));
    buffer[units - 1] = 0;
    return buffer;
}

// copyOut in the framework's terms, for answers copied straight out of the localizer.
char16_t* copyUnits(const void* text, size_t length)
{
    return reinterpret_cast<char16_t*>(copyOut(text, length));
}

QOR_LANG2_CHAR* copyOut(const std::u16string& text)
{
    return copyOut(text.data(), text.size());
}

QOR_LANG2_CHAR* copyOut(const kore::IString& text)
{
    // UTF-16 text (the host's own and the language files') is copied unit for unit: decoding
    // would drop unpaired surrogates, which Windows strings may hold.
    return reinterpret_cast<QOR_LANG2_CHAR*>(kore::copyUTF16(text, &copyUnits));
}

// The language file a handle holds, through the framework's checked cast; null otherwise.
const CLanguageFile* fileOf(QOR_LANG2_FILE_HANDLE handle)
{
    if (!handle)
        return nullptr;
    auto* wrapper = static_cast<kore::CInstanceWrapper*>(static_cast<kore::IInstanceWrapper*>(handle));
    return kore::cast<CLanguageFile>(wrapper->get());
}

template <class Getter>
QOR_LANG2_CHAR* fileText(QOR_LANG2_FILE_HANDLE handle, Getter getter)
{
    try {
        P<const CLanguageFile> file = fileOf(handle);
        if (!file)
            return nullptr;
        P<kore::IString> text = getter(*file);
        return copyOut(*text);
    } catch (...) {
        return nullptr;
    }
}

// add, addEx and reload report a framework failure as -1. Any other exception would end the
// host if it crossed the C boundary, so it is reported the same way.
template <class F>
int32_t reportFailure(F body)
{
    try {
        body();
        return kOk;
    } catch (const kore::CException&) {
        return kFailed;
    } catch (...) {
        return kFailed;
    }
}

} // namespace

extern "C" {

QOR_LANG2_API int32_t QOR_LANG2_add(const QOR_LANG2_CHAR* folderPath, void* /*reserved*/, const QOR_LANG2_CHAR* appId)
{
    return reportFailure([&] {
        if (!folderPath || !appId)
            throw kore::CError("", "QOR_LANG2_add: null argument");
        P<CLanguageManager> manager = CLanguageManager::instance();
        P<kore::IPathes> pathes = kore::IPathes::instance();
        manager->add(pathes->folderPathToURI(arg(folderPath)), arg(appId));
    });
}

QOR_LANG2_API int32_t QOR_LANG2_addEx(const QOR_LANG2_CHAR* folderUri, const QOR_LANG2_CHAR* appId)
{
    return reportFailure([&] {
        if (!folderUri || !appId)
            throw kore::CError("", "QOR_LANG2_addEx: null argument");
        P<CLanguageManager> manager = CLanguageManager::instance();
        manager->add(kore::CURI::fromURIText(arg(folderUri)), arg(appId));
    });
}

QOR_LANG2_API int32_t QOR_LANG2_reload(void)
{
    return reportFailure([] {
        P<CLanguageManager> manager = CLanguageManager::instance();
        manager->reload();
    });
}

QOR_LANG2_API int32_t QOR_LANG2_setCurrentLanguage(const QOR_LANG2_CHAR* tag)
{
    const qor_lang::LanguageId language(reinterpret_cast<const char16_t*>(tag), qor_lang::LanguageTagMode::Tag);
    if (!language.isValid())
        return kInvalidTag;
    try {
        P<CLanguageManager> manager = CLanguageManager::instance();
        manager->setCurrentLanguage(language);
    } catch (...) {
        // The packs report their own failures. What is left (memory running out while the texts
        // are handed over, a failing log sink) leaves the language that was current before.
    }
    return kOk;
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getCurrentLanguage(void)
{
    try {
        P<CLanguageManager> manager = CLanguageManager::instance();
        return copyOut(manager->getCurrentLanguage().getTag());
    } catch (...) {
        return nullptr;
    }
}

QOR_LANG2_API int32_t QOR_LANG2_getLanguageCount(const QOR_LANG2_CHAR* appId)
{
    try {
        P<CLanguageManager> manager = CLanguageManager::instance();
        return manager->getLanguageCount(arg(appId));
    } catch (...) {
        return 0;
    }
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getLanguage(const QOR_LANG2_CHAR* appId, int32_t index)
{
    try {
        if (index < 0)
            return nullptr;
        P<CLanguageManager> manager = CLanguageManager::instance();
        P<CLanguageFile> file = manager->getLanguageFile(arg(appId), index);
        return file ? copyOut(file->getLanguage().getTag()) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

QOR_LANG2_API QOR_LANG2_FILE_HANDLE QOR_LANG2_getLanguageFile(const QOR_LANG2_CHAR* appId, int32_t index)
{
    try {
        if (index < 0)
            return nullptr;
        P<CLanguageManager> manager = CLanguageManager::instance();
        P<CLanguageFile> file = manager->getLanguageFile(arg(appId), index);
        if (!file)
            return nullptr;
        kore::IInstanceWrapper* handle = new kore::CInstanceWrapper(file.get());
        return handle;
    } catch (...) {
        return nullptr;
    }
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_findLocalizedFile(const QOR_LANG2_CHAR* folderUri, const QOR_LANG2_CHAR* prefix,
                                                          const QOR_LANG2_CHAR* infix, const QOR_LANG2_CHAR* suffix)
{
    try {
        if (!folderUri || !prefix || !infix || !suffix)
            return nullptr;
        P<CLanguageManager> manager = CLanguageManager::instance();
        P<kore::IURI> folder = kore::CURI::fromURIText(arg(folderUri));
        P<kore::IURI> found = manager->findLocalizedFile(*folder, arg(prefix), arg(infix), arg(suffix));
        return found ? copyOut(*found->getLocalPath()) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getLocalString(const QOR_LANG2_CHAR* key, const QOR_LANG2_CHAR* defaultText)
{
    try {
        // The hot path: no reference taken on the localizer (it lives until the process ends,
        // so a look-up on another thread while the host exits still answers), no framework
        // strings built, the key hashed straight from the host's buffer and the answer copied
        // once.
        return reinterpret_cast<QOR_LANG2_CHAR*>(kore::CStringLocalizer::forLookups().copyString(
            reinterpret_cast<const char16_t*>(key), reinterpret_cast<const char16_t*>(defaultText), &copyUnits));
    } catch (...) {
        return nullptr;
    }
}

QOR_LANG2_API void QOR_LANG2_freeWideString(QOR_LANG2_CHAR* text)
{
    delete[] text;
}

QOR_LANG2_API void QOR_LANG2_freeQorLangFile(QOR_LANG2_FILE_HANDLE file)
{
    if (file)
        static_cast<kore::IInstanceWrapper*>(file)->deleteThis();
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getAppID(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getAppId(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getAuthor(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getAuthor(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getComment(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getComment(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getEnglishName(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getEnglishName(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getEnglishSubName(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getEnglishSubName(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getNativeName(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getNativeName(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getNativeSubName(QOR_LANG2_FILE_HANDLE file)
{
    return fileText(file, [](const CLanguageFile& f) { return f.getNativeSubName(); });
}

QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getLanguageID(QOR_LANG2_FILE_HANDLE file)
{
    try {
        P<const CLanguageFile> f = fileOf(file);
        return f ? copyOut(f->getLanguage().getTag()) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

} // extern "C"
