#pragma once
// Lets any number of threads read through a shared pointer without locks while one writer at a
// time replaces it, and tells the writer when no reader can still hold the pointer it replaced.
//
// Each thread counts its reads in a slot of its own (a cache line), so a reader writes no memory
// that another thread uses. A thread that finds another reader inside its slot when it enters
// takes the next slot from then on: threads that read at the same time drift apart, and as long
// as fewer threads read at once than there are slots, they end up on lines of their own. More
// threads share slots, which costs speed, never safety. Readers count in one of two phases. A
// writer publishes its new pointer, then waits until the readers of the other phase (stragglers
// from earlier) have left, turns the phase, and waits until the readers of the old phase have
// left: new readers count in the new phase, so a stream of readers cannot starve it.
//
// The writer spins only briefly, then sleeps until the last reader of a slot leaves: a reader
// that leaves an emptied slot while the writer says it waits wakes it. A reader preempted inside
// its scope would otherwise cost the writer's core a whole time slice of spinning, which on a
// busy machine is the slice that reader needs to finish.
//
// Every step is sequentially consistent: a reader that the writer's wait did not see counted
// had not yet entered when the new pointer was published, so it reads the new one; a reader that
// emptied a slot either sees the writer's "waiting" mark and wakes it, or the writer, which set
// the mark before it looked, sees the slot empty.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

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
        explicit CScope(CReaderSlots& slots) noexcept : m_slots(slots), m_counter(slots.enter()) {}
        ~CScope()
        {
            if (m_counter->fetch_sub(1, std::memory_order_seq_cst) == 1 &&
                m_slots.m_waiting.load(std::memory_order_seq_cst) != 0)
                m_slots.wake();
        }
        CScope(const CScope&) = delete;
        CScope& operator=(const CScope&) = delete;

    private:
        CReaderSlots& m_slots;
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
    void waitUntilLeft(uint32_t phase) noexcept;
    void wake() noexcept;

    // Written by writers only; readers read both on every look-up, so they share one line that
    // stays in every reader's cache.
    std::atomic<uint32_t> m_phase{0};
    // Non-zero while a writer may sleep on a slot's counter.
    std::atomic<uint32_t> m_waiting{0};
    CSlot m_slots[kSlotCount];
    // Where a writer sleeps while a slot is still in use; used only when a writer waits.
    std::mutex m_sleepLock;
    std::condition_variable m_sleep;
};

} // namespace kore
