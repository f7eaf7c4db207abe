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

using Callback = void (*)(int);
Callback g_onDestroyed = nullptr;

class CReporting : public kore::CObject {
public:
    explicit CReporting(int id) : m_id(id) {}
    ~CReporting() override
    {
        if (g_onDestroyed)
            g_onDestroyed(m_id);
    }

private:
    int m_id;
};

struct First : CReporting {
    First() : CReporting(1) {}
};
struct Second : CReporting {
    Second() : CReporting(2) {}
};
struct Third : CReporting {
    Third() : CReporting(3) {}
};
struct Fourth : CReporting {
    Fourth() : CReporting(4) {}
};

kore::P<First> createFirst()
{
    return kore::make<First>();
}
kore::P<Second> createSecond()
{
    return kore::make<Second>();
}
kore::P<Third> createThird()
{
    return kore::make<Third>();
}
// Asks for the third service while being created: the third is complete first, so it must
// outlive the fourth.
kore::P<Fourth> createFourth()
{
    kore::CGlobalObjFactory::accessor<Third, &createThird>();
    return kore::make<Fourth>();
}

} // namespace

MODULE_EXPORT int qorTestCreateServices(Callback onDestroyed)
{
    g_onDestroyed = onDestroyed;
    kore::CGlobalObjFactory::accessor<First, &createFirst>();
    kore::CGlobalObjFactory::accessor<Fourth, &createFourth>();
    kore::CGlobalObjFactory::accessor<Second, &createSecond>();
    kore::CGlobalObjFactory::accessor<Third, &createThird>(); // exists already
    return static_cast<int>(kore::CGlobalObjFactory::instance()->getServiceCount());
}
