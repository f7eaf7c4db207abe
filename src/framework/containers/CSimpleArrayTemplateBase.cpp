#include "framework/containers/CSimpleArrayTemplateBase.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/COutOfmemoryException.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>

namespace kore {

namespace {

constexpr int64_t kMaxElements = std::numeric_limits<int32_t>::max();

[[noreturn]] void badArgument(const char* method, const std::string& what)
{
    // Arrays are often members of other objects, so the error must not hold on to them.
    throw CInvalidArgError(nullptr, method, what.c_str(), "TSimpleArray");
}

} // namespace

CSimpleArrayTemplateBase::CSimpleArrayTemplateBase(int32_t growStep) : m_growStep(0)
{
    setGrowStep(growStep);
}

CSimpleArrayTemplateBase::~CSimpleArrayTemplateBase() = default;

void CSimpleArrayTemplateBase::setGrowStep(int32_t growStep)
{
    if (growStep < 0)
        badArgument("TSimpleArray::setGrowStep", "growStep " + std::to_string(growStep) + " < 0");
    m_growStep = growStep;
}

void* CSimpleArrayTemplateBase::allocate(int32_t n)
{
    try {
        return ::operator new(static_cast<size_t>(n) * elementSize(), std::align_val_t(elementAlignment()));
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
}

void CSimpleArrayTemplateBase::deallocate(void* buffer) noexcept
{
    ::operator delete(buffer, std::align_val_t(elementAlignment()));
}

void CSimpleArrayTemplateBase::setCapacity(int32_t capacity)
{
    if (capacity < 0)
        badArgument("TSimpleArray::setCapacity", "capacity " + std::to_string(capacity) + " < 0");
    if (capacity == m_capacity)
        return;
    void* fresh = nullptr;
    const int32_t keep = std::min(capacity, m_count);
    if (capacity > 0) {
        fresh = allocate(capacity);
        constructElements(fresh, capacity);
        try {
            if (keep > 0)
                assignElements(fresh, m_buffer, keep);
        } catch (...) {
            destroyElements(fresh, capacity);
            deallocate(fresh);
            throw;
        }
    }
    // The array is consistent again before the old elements drop their references, in case a
    // destructor that runs there looks at it.
    void* old = m_buffer;
    const int32_t oldCapacity = m_capacity;
    m_buffer = fresh;
    m_capacity = capacity;
    m_count = keep;
    if (old) {
        destroyElements(old, oldCapacity);
        deallocate(old);
    }
}

void CSimpleArrayTemplateBase::insertElements(int32_t position, const void* from, int32_t n)
{
    if (position < 0 || position > m_count)
        badArgument("TSimpleArray::insert",
                    "position " + std::to_string(position) + " outside 0.." + std::to_string(m_count));
    if (n < 0)
        badArgument("TSimpleArray::insert", "count " + std::to_string(n) + " < 0");
    if (n == 0)
        return;
    if (!from)
        badArgument("TSimpleArray::insert", "elements (null)");
    if (static_cast<int64_t>(m_count) + n > kMaxElements)
        throw COutOfmemoryException();

    // Elements taken from this array itself must be found again after a reallocation.
    int64_t aliasIndex = -1;
    const auto source = reinterpret_cast<uintptr_t>(from);
    const auto begin = reinterpret_cast<uintptr_t>(m_buffer);
    const uintptr_t size = elementSize();
    if (m_buffer && source >= begin && source < begin + static_cast<uintptr_t>(m_capacity) * size) {
        aliasIndex = static_cast<int64_t>((source - begin) / size);
        if (aliasIndex + n > m_count)
            badArgument("TSimpleArray::insert", "elements (beyond the array's own count)");
    }

    if (m_count + n > m_capacity) {
        // Linear growth, never doubling: the larger of what is needed and one grow step more.
        const int64_t wanted = std::min(kMaxElements, std::max<int64_t>(static_cast<int64_t>(m_count) + n,
                                                                        static_cast<int64_t>(m_capacity) + m_growStep));
        setCapacity(static_cast<int32_t>(wanted));
        if (aliasIndex >= 0)
            from = elementAddress(static_cast<int32_t>(aliasIndex));
    }

    // The new elements are copied into the free tail first: if an assignment throws, the array
    // is unchanged. Moving them into place afterwards cannot throw.
    void* tail = elementAddress(m_count);
    try {
        assignElements(tail, from, n);
    } catch (...) {
        resetElements(tail, n);
        throw;
    }
    const int32_t oldCount = m_count;
    m_count += n;
    if (position < oldCount)
        rotateElements(position, oldCount, m_count);
}

void CSimpleArrayTemplateBase::remove(int32_t position, int32_t count)
{
    if (count < 0 || position < 0 || static_cast<int64_t>(position) + count > m_count)
        badArgument("TSimpleArray::remove", std::to_string(count) + " element(s) from position " +
                                                std::to_string(position) + " of " + std::to_string(m_count));
    if (count == 0)
        return;
    rotateElements(position, position + count, m_count);
    m_count -= count;
    resetElements(elementAddress(m_count), count);
}

void CSimpleArrayTemplateBase::clear()
{
    const int32_t n = m_count;
    m_count = 0;
    if (n > 0)
        resetElements(m_buffer, n);
}

void CSimpleArrayTemplateBase::checkIndex(int32_t index, const char* method) const
{
    if (index < 0 || index >= m_count)
        badArgument(method, "index " + std::to_string(index) + " outside 0.." + std::to_string(m_count - 1));
}

void CSimpleArrayTemplateBase::releaseBuffer() noexcept
{
    void* old = m_buffer;
    const int32_t oldCapacity = m_capacity;
    m_buffer = nullptr;
    m_capacity = 0;
    m_count = 0;
    if (old) {
        destroyElements(old, oldCapacity);
        deallocate(old);
    }
}

} // namespace kore
