#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

#include <cstdint>

namespace kore {

class CStringArg;
class IStream;
class IURI;

// Opens streams by location: the process-wide service (instance()) behind every file access.
class IStreamManager : public virtual IBase {
public:
    // Modes. kRead needs an existing file; kWrite creates the file or empties it;
    // kReadWrite opens the file or creates it, keeping its content.
    static constexpr uint32_t kRead = 1;
    static constexpr uint32_t kWrite = 2;
    static constexpr uint32_t kReadWrite = 3;

    // A stream for a URI. The stream answers to the interfaces its mode allows (IInStream,
    // IOutStream, IIOStream and the seekable ones; see CDiskStream). Throws
    // CURITypeNotSupportedError for a scheme it cannot open, CFileNotFoundError,
    // CFileAccessDeniedError, CFileError, or CInvalidArgError for an unknown mode.
    virtual P<IStream> openURI(const IURI& uri, uint32_t mode) = 0;
    // The same for an absolute local path (any form CURI::fromLocalPath understands).
    virtual P<IStream> openPath(const CStringArg& path, uint32_t mode) = 0;

    static P<IStreamManager>& instance();
};

} // namespace kore
