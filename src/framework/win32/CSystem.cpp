#include "framework/win32/CSystem.h"

#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/IURI.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/IString.h"
#include "framework/win32/Win32Path.h"

#include <windows.h>

namespace kore {

namespace {

P<ISystem> create()
{
    return make<win32::CSystem>();
}

DWORD attributesOf(const IURI& uri)
{
    if (!uri.isFile())
        throw CURITypeNotSupportedError(&uri);
    return GetFileAttributesW(win32::toWin32Path(*uri.getLocalPath()).c_str());
}

} // namespace

P<ISystem>& ISystem::instance()
{
    return CGlobalObjFactory::accessor<ISystem, &create>();
}

namespace win32 {

bool CSystem::fileExists(const IURI& uri)
{
    const DWORD attributes = attributesOf(uri);
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool CSystem::folderExists(const IURI& uri)
{
    const DWORD attributes = attributesOf(uri);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace win32
} // namespace kore
