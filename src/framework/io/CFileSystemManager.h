#pragma once

#include "framework/io/IFileSystemManager.h"
#include "framework/objects/CObject.h"
#include "framework/text/IString.h"

#include <cstdint>

namespace kore {

// The file-system service. Matching and ordering are done here, the same way on every platform;
// only the case rule follows the platform (platform::fileNamesIgnoreCase()), so that
// enumeration, the existence test and opening a file agree on which names are equal.
class CFileSystemManager : public CObject, public IFileSystemManager {
public:
    P<IFileEnum> enumerate(const IURI& folder, const CStringArg& pattern) override;

    // True when `name` matches the wildcard `pattern` ("*" any run, "?" one character).
    static bool matches(const IString& name, const IString& pattern, bool ignoreCase);
    // The enumeration order, the same on every platform: names compared character by character
    // in upper case (the order NTFS keeps), names equal but for case by their code points.
    static int32_t compareNames(const IString& a, const IString& b);
};

} // namespace kore
