#include "framework/CStreamManager.h"

#include "framework/CDiskStream.h"
#include "framework/CGlobalObjFactory.h"
#include "framework/CInvalidArgError.h"
#include "framework/CURI.h"
#include "framework/CURITypeNotSupportedError.h"

namespace kore {

namespace {
P<IStreamManager> create()
{
    return make<CStreamManager>();
}
} // namespace

P<IStreamManager>& IStreamManager::instance()
{
    return CGlobalObjFactory::accessor<IStreamManager, &create>();
}

P<IStream> CStreamManager::openURI(const IURI& uri, uint32_t mode)
{
    if (mode != kRead && mode != kWrite && mode != kReadWrite)
        throw CInvalidArgError(this, "CStreamManager::openURI", "mode");
    if (!uri.isFile())
        throw CURITypeNotSupportedError(&uri);
    return make<CDiskStream>(uri, mode);
}

P<IStream> CStreamManager::openPath(const CStringArg& path, uint32_t mode)
{
    const P<CURI> uri = CURI::fromLocalPath(path);
    return openURI(*uri, mode);
}

} // namespace kore
