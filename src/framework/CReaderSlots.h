#pragma once
// Lets any number of threads read through a shared pointer without locks while one writer at a
// time replaces it, and tells the writer when no reader can still hold the pointer it replaced.
//
// Each thread counts its reads in a slot of its own (a cache line, chosen once per thread), so a
// reader writes no memory that another thread uses as long as fewer threads read than there are
// slots; more threads share slots, which costs speed, never safety. Readers count in one of two
// phases. A writer publishes its new pointer, then waits until the readers of the other phase
// (stragglers from earlier) have left, turns the phase, and waits until the readers of the old
// phase have left: new readers count in the new phase, so a stream of readers cannot starve it.
//
// Every step is sequentially consistent: a reader that the writer's wait did not see counted
// had not yet entered when the new pointer was published, so it reads the new one.

#include <atomic>
#include <cstdint>

namespace kore {

class CReaderSlots {
public:
    static constexpr uint32_t kSlotCount = 64;

    CReaderSlots() = default;
    CReaderSlots(const CReaderSlots&) = delete;
    CReaderSlots& operator=(const CReaderSlots&) = delete;

    // One read: what is loaded through the shared pointer while it lives stays valid.
    class CScope {
    public:
        explicit CScope(CReaderSlots& slots) noexcept : m_counter(slots.enter()) {}
        ~CScope() { m_counter->fetch_sub(1, std::memory_order_release); }
        CScope(const CScope&) = delete;
        CScope& operator=(const CScope&) = delete;

    private:
        std::atomic<uint32_t>* m_counter;
    };

    // For the writer (one at a time), after it has published a new pointer: returns once no
    // reader can still hold the pointer it replaced. A reader must not wait for a writer of the
    // same slots while in its scope.
    void waitForReaders() noexcept;

private:
    // Both phases of one slot share a cache line: a reader touches only its own line.
    struct alignas(128) CSlot {
        std::atomic<uint32_t> count[2] = {0, 0};
    };

    std::atomic<uint32_t>* enter() noexcept;
    void waitUntilLeft(uint32_t phase) const noexcept;

    std::atomic<uint32_t> m_phase{0};
    CSlot m_slots[kSlotCount];
};

} // namespace kore
