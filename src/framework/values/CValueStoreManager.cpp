#include "framework/values/CValueStoreManager.h"

#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/IURI.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/sync/IMutexFactory.h"
#include "framework/text/CString.h"
#include "framework/values/CJsonValueStoreFactory.h"
#include "framework/values/IValueStore.h"
#include "framework/xml/CXmlValueStoreFactory.h"

namespace kore {

namespace {
P<IValueStoreManager> create()
{
    return make<CValueStoreManager>();
}
} // namespace

P<IValueStoreManager>& IValueStoreManager::instance()
{
    return CGlobalObjFactory::accessor<IValueStoreManager, &create>();
}

CValueStoreManager::CValueStoreManager() : m_mutex(createMutexFactory()->createMutex())
{
    addFactory(*make<CJsonValueStoreFactory>());
    addFactory(*make<CXmlValueStoreFactory>());
}

void CValueStoreManager::addFactory(IValueStoreFactory& factory)
{
    const P<IString> extension = factory.getExtension();
    CMutexLock lock(*m_mutex);
    for (P<IValueStoreFactory>& known : m_factories) {
        if (known->getExtension()->equalsIgnoreCase(extension)) {
            known = &factory;
            return;
        }
    }
    m_factories.emplace_back(&factory);
}

P<IValueStoreFactory> CValueStoreManager::getFactory(const CStringArg& extension) const
{
    CMutexLock lock(*m_mutex);
    for (const P<IValueStoreFactory>& known : m_factories) {
        if (known->getExtension()->equalsIgnoreCase(extension))
            return known;
    }
    return nullptr;
}

P<IValueStore> CValueStoreManager::createStore(const IURI& uri)
{
    const P<IString> name = uri.getName();
    const uint32_t dot = name->findLast('.');
    const P<IValueStoreFactory> factory = dot == IString::kNotFound ? nullptr : getFactory(name->slice(dot));
    if (!factory)
        throw CURITypeNotSupportedError(&uri);
    return factory->createStore(uri);
}

} // namespace kore
