#pragma once
// The type-independent half of TSimpleArray: buffer management, linear growth, bounds checks and
// the order of steps that keeps the array consistent when an element's assignment throws. The
// few things that depend on the element type (construct, destroy, assign, rotate) are virtual
// and supplied by the template, so the logic here exists once for every element type.
//
// Not locked: the owner of an array serialises access to it.

#include "framework/objects/CObject.h"

#include <cstddef>
#include <cstdint>

namespace kore {

class CSimpleArrayTemplateBase : public CObject {
public:
    // Linear growth: a full array grows by at least this many elements. Small, because the
    // framework's arrays are small (listener lists, sink lists); big arrays pass a bigger step.
    static constexpr int32_t kDefaultGrowStep = 16;

    CSimpleArrayTemplateBase(const CSimpleArrayTemplateBase&) = delete;
    CSimpleArrayTemplateBase& operator=(const CSimpleArrayTemplateBase&) = delete;

    int32_t getCount() const noexcept { return m_count; }
    int32_t getCapacity() const noexcept { return m_capacity; }
    int32_t getGrowStep() const noexcept { return m_growStep; }
    bool isEmpty() const noexcept { return m_count == 0; }

    // Throws CInvalidArgError for a negative step.
    void setGrowStep(int32_t growStep);
    // Reallocates to exactly `capacity` elements, copying the first min(capacity, count) with the
    // element's own assignment; elements beyond a smaller capacity are destroyed.
    void setCapacity(int32_t capacity);
    // Removes `count` elements from `position` on; later elements move down. The vacated slots
    // get default values at once, so removed smart pointers drop their references here.
    void remove(int32_t position, int32_t count = 1);
    // Removes every element; the capacity stays.
    void clear();

protected:
    explicit CSimpleArrayTemplateBase(int32_t growStep);
    // The template's destructor must already have called releaseBuffer(): the element type's
    // operations are gone by the time this runs.
    ~CSimpleArrayTemplateBase() override;

    virtual size_t elementSize() const noexcept = 0;
    virtual size_t elementAlignment() const noexcept = 0;
    virtual void constructElements(void* at, int32_t n) noexcept = 0;
    virtual void destroyElements(void* at, int32_t n) noexcept = 0;
    // Copy assignment of `n` elements (non-overlapping ranges); may throw.
    virtual void assignElements(void* to, const void* from, int32_t n) = 0;
    // Assigns a default value to `n` elements.
    virtual void resetElements(void* at, int32_t n) noexcept = 0;
    // Rotates elements [first, last) left so that `middle` becomes first (indexes into the buffer).
    virtual void rotateElements(int32_t first, int32_t middle, int32_t last) noexcept = 0;

    // Inserts `n` elements copied from `from` at `position`. `from` may point into this array.
    void insertElements(int32_t position, const void* from, int32_t n);
    // Throws CInvalidArgError unless 0 <= index < count.
    void checkIndex(int32_t index, const char* method) const;
    // Sets count and capacity to 0, destroying every element (the destructor's step).
    void releaseBuffer() noexcept;

    void* elementAddress(int32_t index) const noexcept
    {
        return static_cast<char*>(m_buffer) + static_cast<size_t>(index) * elementSize();
    }

    void* m_buffer = nullptr;
    int32_t m_capacity = 0;
    int32_t m_count = 0;
    int32_t m_growStep;

private:
    void* allocate(int32_t n);
    void deallocate(void* buffer) noexcept;
};

} // namespace kore
