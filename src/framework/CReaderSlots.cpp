#include "framework/CReaderSlots.h"

#include <thread>

namespace kore {

namespace {

constexpr uint32_t kUnassigned = ~0u;
// A trivial thread-local: no destructor to register, so the library can still be unloaded while
// threads that read through it live on.
thread_local uint32_t t_slot = kUnassigned;
std::atomic<uint32_t> s_nextSlot{0};

uint32_t slotOfThisThread() noexcept
{
    if (t_slot == kUnassigned)
        t_slot = s_nextSlot.fetch_add(1, std::memory_order_relaxed) % CReaderSlots::kSlotCount;
    return t_slot;
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
