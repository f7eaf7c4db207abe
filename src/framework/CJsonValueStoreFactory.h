#pragma once

#include "framework/CJsonValueStore.h"
#include "framework/TValueStoreFactory.h"

namespace kore {

// Makes CJsonValueStore objects, for ".json" files.
class CJsonValueStoreFactory final : public TValueStoreFactory<CJsonValueStore> {
public:
    CJsonValueStoreFactory() : TValueStoreFactory(".json") {}
};

} // namespace kore
