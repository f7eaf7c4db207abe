#include "framework/objects/CGlobalObjFactory.h"

#include "framework/PlatformSupport.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace kore {

namespace {

struct FactoryRecord {
    FactoryRecord() { new (m_instance) P<CGlobalObjFactory>(); }

    P<CGlobalObjFactory>& instance() { return *std::launder(reinterpret_cast<P<CGlobalObjFactory>*>(m_instance)); }

    std::atomic<uint64_t> state{0};
    std::atomic<uint64_t> deadMark{0};

private:
    // The pointer is never destroyed by the runtime: the record must outlive every other static
    // of the library during teardown, and only the unload routine empties it. So the record has
    // no destructor to run and needs no heap memory that an unloaded library would leak.
    alignas(P<CGlobalObjFactory>) unsigned char m_instance[sizeof(P<CGlobalObjFactory>)];
};

FactoryRecord& record()
{
    static FactoryRecord r;
    return r;
}

bool g_creationStarted = false;

P<IMutexFactory>& processMutexFactory()
{
    static P<IMutexFactory> factory = createMutexFactory();
    return factory;
}

void createInstance()
{
    FactoryRecord& r = record();
    r.instance() = nullptr;
    P<IMutex> mutex = processMutexFactory()->createMutex();
    mutex->lock();
    const bool started = g_creationStarted;
    g_creationStarted = true;
    if (!started) {
        r.state = 0;
        r.instance() = P<CGlobalObjFactory>::adopt(new CGlobalObjFactory);
        r.state = CGlobalObjFactory::kReadyState;
    }
    mutex->unlock();
}

} // namespace

CGlobalObjFactory::CGlobalObjFactory()
{
    m_mutexFactory = createMutexFactory();
    m_creationLock = m_mutexFactory->createMutex();
    m_lookupLock = m_mutexFactory->createMutex();
}

CGlobalObjFactory::~CGlobalObjFactory()
{
    // Newest first: a service may rely in its destructor on every service it used while it was
    // being created.
    while (!m_queue.empty()) {
        m_queue.back()->deleteThis();
        m_queue.pop_back();
    }
    m_map.clear();
    m_creationLock = nullptr;
    m_mutexFactory = nullptr;
    m_lookupLock = nullptr;
}

P<CGlobalObjFactory>& CGlobalObjFactory::instance()
{
    static const bool created = [] {
        createInstance();
        std::atexit(&CGlobalObjFactory::unload);
        return true;
    }();
    (void)created;
    FactoryRecord& r = record();
    while (r.state.load() != kReadyState) {
        if (r.deadMark.load() == kDeadMark)
            platform::debugBreak();
        platform::sleepMilliseconds(1);
    }
    return r.instance();
}

void CGlobalObjFactory::unload()
{
    FactoryRecord& r = record();
    r.state = 0;
    r.deadMark = kDeadMark;
    r.instance() = nullptr;
}

uint64_t CGlobalObjFactory::getState()
{
    return record().state.load();
}

uint64_t CGlobalObjFactory::getDeadMark()
{
    return record().deadMark.load();
}

size_t CGlobalObjFactory::getServiceCount() const
{
    CMutexLock guard(*m_lookupLock);
    return m_map.size();
}

void* CGlobalObjFactory::lookup(uint64_t key) const
{
    CMutexLock guard(*m_lookupLock);
    auto it = m_map.find(key);
    return it == m_map.end() ? nullptr : it->second->get();
}

} // namespace kore
