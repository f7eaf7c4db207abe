#include "framework/posix/CPathes.h"

#include "framework/errors/CURIFormatError.h"
#include "framework/io/CURI.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/CString.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

namespace kore {

namespace {

P<IPathes> create()
{
    return make<posix::CPathes>();
}

// Absolute in any syntax CURI understands: POSIX, drive or UNC.
bool isAbsolute(const std::string& path)
{
    if (!path.empty() && (path[0] == '/' || path[0] == '\\'))
        return true;
    return path.size() >= 2 && ((path[0] | 0x20) >= 'a' && (path[0] | 0x20) <= 'z') && path[1] == ':';
}

std::string currentFolder(const CStringArg& path)
{
    std::vector<char> buffer(512);
    while (!::getcwd(buffer.data(), buffer.size())) {
        if (errno != ERANGE)
            throw CURIFormatError(path);
        buffer.resize(buffer.size() * 2);
    }
    return buffer.data();
}

} // namespace

P<IPathes>& IPathes::instance()
{
    return CGlobalObjFactory::accessor<IPathes, &create>();
}

namespace posix {

P<IURI> CPathes::folderPathToURI(const CStringArg& path)
{
    std::string text = path->toUTF8();
    if (text.empty())
        throw CURIFormatError(path);
    if (!isAbsolute(text))
        text = currentFolder(path) + '/' + text;
    // Doubled separators collapse, so one more "/" is harmless where there was one already.
    return CURI::fromLocalPath(CString::fromUTF8(text + '/'));
}

P<IURI> CPathes::getTempFolder()
{
    const char* tmp = std::getenv("TMPDIR");
    const std::string folder = tmp && tmp[0] == '/' ? tmp : "/tmp";
    return folderPathToURI(CString::fromUTF8(folder));
}

} // namespace posix
} // namespace kore
