#include "framework/win32/CPathes.h"

#include "framework/errors/CURIFormatError.h"
#include "framework/io/CURI.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/CString.h"
#include "framework/win32/Win32Path.h"

#include <windows.h>

#include <vector>

namespace kore {

namespace {

P<IPathes> create()
{
    return make<win32::CPathes>();
}

} // namespace

P<IPathes>& IPathes::instance()
{
    return CGlobalObjFactory::accessor<IPathes, &create>();
}

namespace win32 {

P<IURI> CPathes::folderPathToURI(const CStringArg& path)
{
    const std::wstring wide = toWide(path.get());
    if (wide.empty())
        throw CURIFormatError(path);
    // The system makes the path absolute (relative to the current folder or drive) and
    // normalises separators and "." / ".." segments.
    std::vector<wchar_t> full(MAX_PATH);
    for (;;) {
        const DWORD length = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0)
            throw CURIFormatError(path);
        if (length < full.size()) {
            full.resize(length);
            break;
        }
        full.resize(length);
    }
    full.push_back(L'\\');
    return CURI::fromLocalPath(fromWide(full.data(), full.size()));
}

P<IURI> CPathes::getTempFolder()
{
    wchar_t buffer[MAX_PATH + 2];
    const DWORD length = GetTempPathW(MAX_PATH + 1, buffer);
    if (length == 0 || length > MAX_PATH + 1)
        return folderPathToURI("C:\\Windows\\Temp");
    return folderPathToURI(CWCharString(buffer, length));
}

} // namespace win32
} // namespace kore
