#include "framework/sync/CReaderSlots.h"

namespace kore {

namespace {

// The slot of this thread plus one, 0 until it has one. A zero-initialised, trivial thread-local:
// no destructor to register (so the library can still be unloaded while threads that read
// through it live on), and in an ELF shared library the initial-exec model makes each access one
// instruction instead of a call (it takes four bytes of the static TLS reserve).
#if defined(__ELF__)
__attribute__((tls_model("initial-exec")))
#endif
thread_local uint32_t t_slot;
std::atomic<uint32_t> s_nextSlot{0};

uint32_t slotOfThisThread() noexcept
{
    if (t_slot == 0)
        t_slot = s_nextSlot.fetch_add(1, std::memory_order_relaxed) % CReaderSlots::kSlotCount + 1;
    return t_slot - 1;
}

// How often the writer looks at a slot before it sleeps: about a microsecond, long enough for a
// reader that is running to finish its look-up.
constexpr unsigned kSpins = 100;

inline void relax() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

} // namespace

std::atomic<uint32_t>* CReaderSlots::enter() noexcept
{
    const uint32_t slot = slotOfThisThread();
    std::atomic<uint32_t>& counter = m_slots[slot].count[m_phase.load(std::memory_order_seq_cst) & 1];
    // Another thread inside the same slot would make both pass the line between their cores at
    // every look-up: this one moves on (its thread-local only; the count taken here stays valid).
    if (counter.fetch_add(1, std::memory_order_seq_cst) != 0)
        t_slot = (slot + 1) % kSlotCount + 1;
    return &counter;
}

void CReaderSlots::wake() noexcept
{
    // Taking the lock orders this wake after a writer's look at the counter: either the writer
    // already sleeps and hears it, or it has not looked yet and will see the slot empty.
    std::lock_guard<std::mutex> lock(m_sleepLock);
    m_sleep.notify_all();
}

void CReaderSlots::waitUntilLeft(uint32_t phase) noexcept
{
    for (CSlot& slot : m_slots) {
        std::atomic<uint32_t>& counter = slot.count[phase];
        for (unsigned spins = 0; spins < kSpins && counter.load(std::memory_order_seq_cst) != 0; ++spins)
            relax();
        if (counter.load(std::memory_order_seq_cst) == 0)
            continue;
        m_waiting.store(1, std::memory_order_seq_cst);
        // A reader that empties the slot after the writer's look sees the mark and wakes it.
        // Not std::atomic::wait: MinGW's libstdc++ 12 can lose its wake-up and hang a switch.
        std::unique_lock<std::mutex> lock(m_sleepLock);
        m_sleep.wait(lock, [&] { return counter.load(std::memory_order_seq_cst) == 0; });
    }
}

void CReaderSlots::waitForReaders() noexcept
{
    // Only writers change the phase, one at a time.
    const uint32_t phase = m_phase.load(std::memory_order_relaxed) & 1;
    waitUntilLeft(phase ^ 1);
    m_phase.store(phase ^ 1, std::memory_order_seq_cst);
    waitUntilLeft(phase);
    m_waiting.store(0, std::memory_order_relaxed);
}

} // namespace kore
