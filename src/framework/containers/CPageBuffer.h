#pragma once
// A block of memory straight from the operating system, owned by one object and moved, never
// copied. The large arrays behind a loaded language live in such blocks: freed pages go back to
// the system at once instead of staying in the heap, so a thousand language switches leave the
// process's memory where one switch leaves it. Blocks below kHeapLimit come from the heap
// instead (64-byte aligned): for them a system call would cost more than the block's whole use.

#include <cstddef>
#include <cstdint>

namespace kore {

class CPageBuffer {
public:
    static constexpr std::size_t kHeapLimit = 64 * 1024;

    CPageBuffer() = default;
    // Zero-filled. Throws COutOfmemoryException when the system refuses; 0 bytes allocate nothing.
    explicit CPageBuffer(std::size_t bytes);
    CPageBuffer(CPageBuffer&& other) noexcept;
    CPageBuffer& operator=(CPageBuffer&& other) noexcept;
    CPageBuffer(const CPageBuffer&) = delete;
    CPageBuffer& operator=(const CPageBuffer&) = delete;
    ~CPageBuffer();

    uint8_t* data() const noexcept { return m_data; }
    std::size_t size() const noexcept { return m_size; }
    // The block viewed as an array of `T` (the block is at least 64-byte aligned).
    template <class T>
    T* as() const noexcept
    {
        return reinterpret_cast<T*>(m_data);
    }

    // Makes the block at least `bytes` long, keeping its content (a new block and one copy); the
    // new bytes are zero.
    void grow(std::size_t bytes);

private:
    uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace kore
