// A loadable module with its own copy of the framework: the test loads it, makes it create four
// services (one of them inside another's creation), unloads it, and watches the services die in
// reverse order of their creation.
#include "framework/objects/CGlobalObjFactory.h"

#if defined(_WIN32)
#define MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

void (*g_onDestroyed)(int) = nullptr;

template <int Id>
struct CReporting : kore::CObject {
    ~CReporting() override { g_onDestroyed(Id); }
};

template <int Id>
kore::P<CReporting<Id>> create()
{
    // The fourth asks for the third while being created: the third is complete first, so it
    // must outlive the fourth.
    if constexpr (Id == 4)
        kore::CGlobalObjFactory::accessor<CReporting<3>, &create<3>>();
    return kore::make<CReporting<Id>>();
}

template <int Id>
void access()
{
    kore::CGlobalObjFactory::accessor<CReporting<Id>, &create<Id>>();
}

} // namespace

MODULE_EXPORT int qorTestCreateServices(void (*onDestroyed)(int))
{
    g_onDestroyed = onDestroyed;
    access<1>();
    access<4>();
    access<2>();
    access<3>(); // exists already
    return static_cast<int>(kore::CGlobalObjFactory::instance()->getServiceCount());
}
