#pragma once

#include "framework/values/TValueStoreFactory.h"
#include "framework/xml/CXmlValueStore.h"

namespace kore {

// Makes CXmlValueStore objects, for ".xml" files.
class CXmlValueStoreFactory final : public TValueStoreFactory<CXmlValueStore> {
public:
    CXmlValueStoreFactory() : TValueStoreFactory(".xml") {}
};

} // namespace kore
