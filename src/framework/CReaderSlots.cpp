#include "framework/CReaderSlots.h"

#include <thread>

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

} // namespace

std::atomic<uint32_t>* CReaderSlots::enter() noexcept
{
    CSlot& slot = m_slots[slotOfThisThread()];
    std::atomic<uint32_t>& counter = slot.count[m_phase.load(std::memory_order_seq_cst) & 1];
    counter.fetch_add(1, std::memory_order_seq_cst);
    return &counter;
}

void CReaderSlots::waitUntilLeft(uint32_t phase) const noexcept
{
    for (const CSlot& slot : m_slots) {
        for (unsigned spins = 0; slot.count[phase].load(std::memory_order_seq_cst) != 0; ++spins) {
            if (spins > 64)
                std::this_thread::yield();
        }
    }
}

void CReaderSlots::waitForReaders() noexcept
{
    // Only writers change the phase, one at a time.
    const uint32_t phase = m_phase.load(std::memory_order_relaxed) & 1;
    waitUntilLeft(phase ^ 1);
    m_phase.store(phase ^ 1, std::memory_order_seq_cst);
    waitUntilLeft(phase);
}

} // namespace kore
