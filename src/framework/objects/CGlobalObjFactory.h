#pragma once
// The one registry of process-wide services. Every service is created on its first request,
// exactly once even when threads race for it, and destroyed when the library (or the program)
// is unloaded, in the reverse order of creation. Reach services through their accessors
// (CGlobalObjFactory::accessor), never through globals.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/sync/IMutex.h"
#include "framework/sync/IMutexFactory.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>

namespace kore {

class CGlobalObjFactory : public CObject {
public:
    static constexpr uint64_t kReadyState = 0x73DF50893D92A405ULL;
    static constexpr uint64_t kDeadMark = 0x84E0619A4EA3B516ULL;

    // Keeps one service alive; the factory destroys holders without knowing the service type.
    class IPtrHolder {
    public:
        virtual ~IPtrHolder() = default;
        virtual void deleteThis() = 0;
        // The address of the held P<T>; stable for the holder's whole life.
        virtual void* get() = 0;
    };

    template <class T>
    class CPtrHolderImpl : public IPtrHolder {
    public:
        explicit CPtrHolderImpl(P<T> object) : m_cell(new P<T>(std::move(object))) {}
        ~CPtrHolderImpl() override { delete m_cell; }
        void deleteThis() override { delete this; }
        void* get() override { return m_cell; }

    private:
        P<T>* m_cell;
    };

    template <class T>
    using Creator = P<T> (*)();

    CGlobalObjFactory();
    ~CGlobalObjFactory() override;

    // The process-wide factory, created on first call. After unload it stops in the debugger.
    static P<CGlobalObjFactory>& instance();

    // The service held under `key`, created by `creator` if absent. An exception from the creator
    // propagates and leaves the key absent, so a later call tries again.
    template <class T>
    P<T>& getOrCreate(uint64_t key, Creator<T> creator)
    {
        return *static_cast<P<T>*>(
            getOrCreateHolder(key, [creator]() -> IPtrHolder* { return new CPtrHolderImpl<T>(creator()); }));
    }

    // The accessor body shared by every service: the first call creates or finds the service and
    // remembers the reference; later calls only return it. The key is the address of a static
    // that belongs to this instantiation, so keys never collide. The reference must not be used
    // after unload.
    // The reference is remembered in a constant-initialised atomic, not a function-local static:
    // the static's initialisation guard would be a third lock, held while the factory's creation
    // lock is taken, and a creator calling another accessor on one thread while a second thread
    // makes that accessor's first call would deadlock. Racing first calls all reach getOrCreate,
    // which hands them the one reference.
    template <class T, Creator<T> creatorFn>
    static P<T>& accessor()
    {
        static int32_t key = 0;
        static constinit std::atomic<P<T>*> remembered{nullptr};
        P<T>* found = remembered.load(std::memory_order_acquire);
        if (!found) {
            P<CGlobalObjFactory> factory = instance();
            found = &factory->getOrCreate<T>(reinterpret_cast<uintptr_t>(&key), creatorFn);
            remembered.store(found, std::memory_order_release);
        }
        return *found;
    }

    // The routine run at unload: marks the factory dead and destroys it with every service.
    // Public so that tests can simulate an unload in a child process.
    static void unload();

    static uint64_t getState();
    static uint64_t getDeadMark();
    // Number of services currently held (for diagnostics and tests).
    size_t getServiceCount() const;

private:
    template <class F>
    void* getOrCreateHolder(uint64_t key, const F& makeHolder)
    {
        void* found = lookup(key);
        if (found)
            return found;
        CMutexLock creation(*m_creationLock);
        found = lookup(key);
        if (!found) {
            IPtrHolder* holder = makeHolder();
            CMutexLock guard(*m_lookupLock);
            m_queue.push_back(holder);
            m_map[key] = holder;
            found = holder->get();
        }
        return found;
    }
    void* lookup(uint64_t key) const;

    std::map<uint64_t, IPtrHolder*> m_map;
    std::deque<IPtrHolder*> m_queue;
    P<IMutexFactory> m_mutexFactory;
    P<IMutex> m_creationLock;
    P<IMutex> m_lookupLock;
};

} // namespace kore
