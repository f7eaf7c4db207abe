#pragma once
// The atomic reference count behind every framework object.

#include <atomic>
#include <cstdint>

namespace kore {

class CReferencable {
public:
    // Stored into the count when it reaches zero: addRef/release pairs made by code running inside
    // the destructor (wrapping `this` in a P, say) can then never reach zero a second time.
    static constexpr int32_t kDestroyingCount = -1000000;

    CReferencable() noexcept = default;
    // A copy is a new object: it starts with its own count of 1.
    CReferencable(const CReferencable&) noexcept {}
    CReferencable& operator=(const CReferencable&) noexcept { return *this; }
    virtual ~CReferencable() = default;

    // Returns the new count; callers do not rely on it.
    virtual int32_t addRef() const;
    // Returns the new count; at zero the object destroys itself through deleteThis().
    virtual int32_t release() const;
    // Frees the object; virtual so that an object from another heap or pool frees itself correctly.
    virtual void deleteThis();

    int32_t getRefCount() const noexcept { return m_count.load(); }

private:
    mutable std::atomic<int32_t> m_count{1};
};

} // namespace kore
