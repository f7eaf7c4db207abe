// Text read as a URI, as a local path and as either: whatever parses must print in a normal form
// that parses to itself, and answer its parts, its local path and resolved names without failing
// in any way but the framework's errors.
#include "FuzzInput.h"
#include "FuzzTargets.h"

#include "framework/io/CURI.h"
#include "framework/text/CString.h"

#include <exception>

namespace qor_fuzz {

namespace {

using kore::CURI;
using kore::IString;
using kore::P;

void explore(const P<CURI>& uri, const IString& name)
{
    const P<IString> normal = uri->toString();
    check(CURI::fromURIText(*normal)->toString()->equals(*normal));

    uri->getScheme();
    uri->getHost();
    uri->getPath();
    uri->getName();
    uri->isFolder();
    for (CURI::PathStyle style : {CURI::kNativePath, CURI::kWindowsPath, CURI::kPosixPath}) {
        try {
            const P<IString> path = uri->getLocalPath(style);
            // A local path names the same file again.
            check(CURI::fromLocalPath(*path)->toString()->equals(*CURI::fromLocalPath(*path)->toString()));
        } catch (const std::exception&) {
        }
    }
    for (bool asFolder : {false, true}) {
        try {
            check(uri->resolve(name, asFolder)->isFolder() == asFolder);
        } catch (const std::exception&) {
        }
    }
}

} // namespace

void fuzzURI(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const uint8_t mode = input.byte();
    const std::string nameBytes = input.piece();
    P<IString> text;
    P<IString> name;
    if (mode & 1) {
        text = kore::CString::fromUTF16(input.units(input.remaining() / 2));
        name = kore::CString::fromUTF16(std::u16string(nameBytes.begin(), nameBytes.end()));
    } else {
        text = kore::CString::fromUTF8(input.rest());
        name = kore::CString::fromUTF8(nameBytes);
    }

    P<CURI> uri;
    try {
        switch ((mode >> 1) % 3) {
        case 0: uri = CURI::fromURIText(*text); break;
        case 1: uri = CURI::fromLocalPath(*text); break;
        default: uri = CURI::fromLocation(*text); break;
        }
    } catch (const std::exception&) {
        return;
    }
    explore(uri, *name);
}

} // namespace qor_fuzz
