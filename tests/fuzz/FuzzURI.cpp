// Text read as a URI, as a local path and as either: whatever parses must print in a normal form
// that parses to itself, and answer its parts, its local path and resolved names without failing
// in any way but the framework's errors.
#include "FuzzInput.h"
#include "FuzzTargets.h"

#include "framework/io/CURI.h"
#include "framework/text/CString.h"

#include <exception>

namespace qor_fuzz {

using kore::CURI;
using kore::IString;
using kore::P;

void fuzzURI(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const uint8_t mode = input.byte();
    const std::string nameBytes = input.piece();
    const bool utf16 = mode & 1;
    const P<IString> name = utf16 ? kore::CString::fromUTF16(std::u16string(nameBytes.begin(), nameBytes.end()))
                                  : kore::CString::fromUTF8(nameBytes);
    const P<IString> text =
        utf16 ? kore::CString::fromUTF16(input.units(input.remaining() / 2)) : kore::CString::fromUTF8(input.rest());
    P<CURI> uri;
    tolerate([&] {
        switch ((mode >> 1) % 3) {
        case 0: uri = CURI::fromURIText(*text); break;
        case 1: uri = CURI::fromLocalPath(*text); break;
        default: uri = CURI::fromLocation(*text); break;
        }
    });
    if (!uri)
        return;

    const P<IString> normal = uri->toString();
    check(CURI::fromURIText(*normal)->toString()->equals(*normal));
    uri->getScheme();
    uri->getHost();
    uri->getPath();
    uri->getName();
    uri->isFolder();
    for (CURI::PathStyle style : {CURI::kNativePath, CURI::kWindowsPath, CURI::kPosixPath})
        tolerate([&] {
            const P<IString> path = uri->getLocalPath(style);
            // A local path names the same file again.
            check(CURI::fromLocalPath(*path)->toString()->equals(*CURI::fromLocalPath(*path)->toString()));
        });
    for (bool asFolder : {false, true})
        tolerate([&] { check(uri->resolve(*name, asFolder)->isFolder() == asFolder); });
}

} // namespace qor_fuzz
