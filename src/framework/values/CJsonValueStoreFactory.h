#pragma once

#include "framework/values/CJsonValueStore.h"
#include "framework/values/TValueStoreFactory.h"

namespace kore {

// Makes CJsonValueStore objects, for ".json" files.
class CJsonValueStoreFactory final : public TValueStoreFactory<CJsonValueStore> {
public:
    CJsonValueStoreFactory() : TValueStoreFactory(".json") {}
};

} // namespace kore
