// Builds without TinyXML-2 (the Windows cross build) have no XML value store.
#include "framework/CValueStoreManager.h"

namespace kore {

void addXmlValueStoreFactory(IValueStoreManager&) {}

} // namespace kore
