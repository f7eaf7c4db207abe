// The one mapping from platform failures to the framework's file errors.
#include "framework/FileSystemSupport.h"

#include "framework/CFileAccessDeniedError.h"
#include "framework/CFileNotFoundError.h"
#include "framework/CString.h"
#include "framework/CURIError.h"
#include "framework/LocalizedText.h"

namespace kore::platform {

void throwFileError(const IURI* uri, const NativeError& error, const char* key,
                    const char* englishDefault)
{
    switch (error.kind) {
    case NativeErrorKind::kNotFound:
        throw CFileNotFoundError(uri);
    case NativeErrorKind::kAccessDenied:
        throw CFileAccessDeniedError(uri);
    case NativeErrorKind::kOther:
        break;
    }
    throw CFileError(uri, getLocalizedText(key, englishDefault)
                              ->replaceAll("%FILE%", CURIError::uriText(uri))
                              ->replaceAll("%DESC%", CString::fromUTF8(error.message)));
}

} // namespace kore::platform
