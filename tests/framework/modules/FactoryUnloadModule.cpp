// A loadable module with its own copy of the framework: the test loads it, makes it create two
// services, unloads it, and watches the services die in reverse order of their creation.
#include "framework/CGlobalObjFactory.h"

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

kore::P<First> createFirst()
{
    return kore::make<First>();
}
kore::P<Second> createSecond()
{
    return kore::make<Second>();
}

} // namespace

MODULE_EXPORT int qorTestCreateServices(Callback onDestroyed)
{
    g_onDestroyed = onDestroyed;
    kore::CGlobalObjFactory::accessor<First, &createFirst>();
    kore::CGlobalObjFactory::accessor<Second, &createSecond>();
    return static_cast<int>(kore::CGlobalObjFactory::instance()->getServiceCount());
}
