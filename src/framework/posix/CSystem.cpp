#include "framework/posix/CSystem.h"

#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/IURI.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/text/IString.h"

#include <sys/stat.h>

namespace kore {

namespace {

P<ISystem> create()
{
    return make<posix::CSystem>();
}

// The mode of what the URI names, or false when nothing is there.
bool statURI(const IURI& uri, mode_t& mode)
{
    if (!uri.isFile())
        throw CURITypeNotSupportedError(&uri);
    struct stat st {};
    if (::stat(uri.getLocalPath()->toUTF8().c_str(), &st) != 0)
        return false;
    mode = st.st_mode;
    return true;
}

} // namespace

P<ISystem>& ISystem::instance()
{
    return CGlobalObjFactory::accessor<ISystem, &create>();
}

namespace posix {

bool CSystem::fileExists(const IURI& uri)
{
    mode_t mode = 0;
    return statURI(uri, mode) && !S_ISDIR(mode);
}

bool CSystem::folderExists(const IURI& uri)
{
    mode_t mode = 0;
    return statURI(uri, mode) && S_ISDIR(mode);
}

} // namespace posix
} // namespace kore
