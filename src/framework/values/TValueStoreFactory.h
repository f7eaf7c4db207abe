#pragma once

#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"
#include "framework/text/CString.h"
#include "framework/values/IValueStoreFactory.h"

namespace kore {

// A factory of one store class for one extension: what the built-in store factories share.
template <class Store>
class TValueStoreFactory : public CObject, public IValueStoreFactory {
public:
    P<IString> getExtension() const override { return CString::fromUTF8(m_extension); }
    P<IValueStore> createStore(const IURI& uri) override { return make<Store>(uri); }

protected:
    // `extension` with its dot, ASCII.
    explicit TValueStoreFactory(const char* extension) : m_extension(extension) {}

private:
    const char* m_extension;
};

} // namespace kore
