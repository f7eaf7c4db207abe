#include "framework/io/CStreamManager.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/CDiskStream.h"
#include "framework/io/CURI.h"
#include "framework/objects/CGlobalObjFactory.h"

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
