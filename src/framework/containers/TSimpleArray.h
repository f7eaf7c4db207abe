#pragma once
// A growable array of elements stored by value. Smart-pointer elements (P, PC, PFrail) are the
// pointers themselves, so the array holds references exactly as the pointers do. Growth is
// linear (see CSimpleArrayTemplateBase), which keeps memory tight for the small lists the
// framework keeps; pass a larger grow step for big arrays.
//
// Element types must be default-constructible and movable without throwing; copy assignment
// may throw, and an insertion that fails that way leaves the array unchanged.

#include "framework/containers/CSimpleArrayTemplateBase.h"

#include <algorithm>
#include <concepts>
#include <memory>
#include <new>
#include <type_traits>

namespace kore {

template <class E>
class TSimpleArray : public CSimpleArrayTemplateBase {
    static_assert(std::is_nothrow_default_constructible_v<E>, "elements need a noexcept default");
    static_assert(std::is_nothrow_move_assignable_v<E> && std::is_nothrow_move_constructible_v<E>,
                  "elements need noexcept moves");

public:
    using ElementType = E;

    explicit TSimpleArray(int32_t growStep = kDefaultGrowStep, int32_t initialCapacity = 0)
        : CSimpleArrayTemplateBase(growStep)
    {
        if (initialCapacity)
            setCapacity(initialCapacity);
    }
    ~TSimpleArray() override { releaseBuffer(); }

    // Checked access: CInvalidArgError outside 0..count-1.
    E& operator[](int32_t index)
    {
        checkIndex(index, "TSimpleArray::operator[]");
        return data()[index];
    }
    const E& operator[](int32_t index) const
    {
        checkIndex(index, "TSimpleArray::operator[]");
        return data()[index];
    }

    // Appends; returns the new element's index.
    int32_t add(const E& element)
    {
        insertElements(m_count, &element, 1);
        return m_count - 1;
    }
    void insert(int32_t position, const E& element) { insertElements(position, &element, 1); }
    void insert(int32_t position, const E* elements, int32_t count) { insertElements(position, elements, count); }

    // Index of the first element equal to `element` at or after `from`, or -1.
    int32_t indexOf(const E& element, int32_t from = 0) const requires std::equality_comparable<E>
    {
        for (int32_t i = std::max(from, 0); i < m_count; ++i) {
            if (data()[i] == element)
                return i;
        }
        return -1;
    }

    E* data() noexcept { return static_cast<E*>(m_buffer); }
    const E* data() const noexcept { return static_cast<const E*>(m_buffer); }
    E* begin() noexcept { return data(); }
    E* end() noexcept { return data() + m_count; }
    const E* begin() const noexcept { return data(); }
    const E* end() const noexcept { return data() + m_count; }

protected:
    size_t elementSize() const noexcept override { return sizeof(E); }
    size_t elementAlignment() const noexcept override { return alignof(E); }
    void constructElements(void* at, int32_t n) noexcept override
    {
        E* p = static_cast<E*>(at);
        for (int32_t i = 0; i < n; ++i)
            ::new (static_cast<void*>(p + i)) E();
    }
    void destroyElements(void* at, int32_t n) noexcept override { std::destroy_n(static_cast<E*>(at), n); }
    void assignElements(void* to, const void* from, int32_t n) override
    {
        std::copy_n(static_cast<const E*>(from), n, static_cast<E*>(to));
    }
    void resetElements(void* at, int32_t n) noexcept override
    {
        E* p = static_cast<E*>(at);
        for (int32_t i = 0; i < n; ++i)
            p[i] = E();
    }
    void rotateElements(int32_t first, int32_t middle, int32_t last) noexcept override
    {
        std::rotate(data() + first, data() + middle, data() + last);
    }
};

} // namespace kore
