#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutex.h"
#include "framework/values/IValueStoreFactory.h"
#include "framework/values/IValueStoreManager.h"

#include <vector>

namespace kore {

class CValueStoreManager : public CObject, public IValueStoreManager {
public:
    // With the built-in factories.
    CValueStoreManager();

    void addFactory(IValueStoreFactory& factory) override;
    P<IValueStoreFactory> getFactory(const CStringArg& extension) const override;
    P<IValueStore> createStore(const IURI& uri) override;

private:
    P<IMutex> m_mutex;
    // Guarded by m_mutex.
    std::vector<P<IValueStoreFactory>> m_factories;
};

} // namespace kore
