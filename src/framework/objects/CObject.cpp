#include "framework/objects/CObject.h"

#include "framework/text/CString.h"

#include <cstdlib>
#include <string>

#if defined(__GNUG__)
#include <cxxabi.h>
#endif

namespace kore {

CObject::~CObject() = default;

bool CObject::castQuery(const std::type_info&, const IBase*&, const CCastCandidate*&) const
{
    return true;
}

P<IString> CObject::toString() const
{
    return getClassName(*this)->concat(" object");
}

P<IString> getClassName(const std::type_info& type)
{
    std::string name = type.name();
#if defined(__GNUG__)
    // gcc gives the mangled name; the framework speaks in the "class ns::Name" form everywhere.
    int status = 0;
    char* demangled = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
    if (status == 0 && demangled) {
        name = demangled;
        std::free(demangled);
    }
    name.insert(0, "class ");
#endif
    return make<CUTF8String>(name.c_str());
}

P<IString> getClassName(const IBase& object)
{
    return getClassName(typeid(object));
}

} // namespace kore
