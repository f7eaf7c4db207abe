// The one mapping from platform failures to the framework's file errors, and the one way files
// are opened.
#include "framework/io/FileSystemSupport.h"

#include "framework/errors/CFileAccessDeniedError.h"
#include "framework/errors/CFileNotFoundError.h"
#include "framework/errors/CURIError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/text/CString.h"

#include <atomic>

namespace kore::platform {

namespace {
std::atomic<NativeFileOpener> g_opener{nullptr};
}

NativeFileOpener setNativeFileOpener(NativeFileOpener opener)
{
    return g_opener.exchange(opener);
}

std::unique_ptr<INativeFile> openNativeFile(const IString& path, uint32_t mode, NativeError& error)
{
    if (const NativeFileOpener opener = g_opener.load(std::memory_order_acquire))
        return opener(path, mode, error);
    return openSystemFile(path, mode, error);
}

void throwFileError(const IURI* uri, const NativeError& error, const char* key, const char* englishDefault)
{
    switch (error.kind) {
    case NativeErrorKind::kNotFound: throw CFileNotFoundError(uri);
    case NativeErrorKind::kAccessDenied: throw CFileAccessDeniedError(uri);
    case NativeErrorKind::kOther: break;
    }
    throw CFileError(uri, getLocalizedText(key, englishDefault)
                              ->replaceAll("%FILE%", CURIError::uriText(uri))
                              ->replaceAll("%DESC%", CString::fromUTF8(error.message)));
}

} // namespace kore::platform
