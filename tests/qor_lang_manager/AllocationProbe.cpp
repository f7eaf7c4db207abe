// Replaces the plain and nothrow forms of operator new and delete for the whole test program, so
// that a test can see how large a request code under test makes before it fails, or make the
// n-th allocation fail. Outside a probe they only forward to malloc and free. The array forms are
// replaced too (a sanitizer's runtime would otherwise serve them past the probe); the aligned
// forms stay the runtime's, paired with their own deletes.

#include "LanguageTestSupport.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool t_probing = false;
thread_local std::size_t t_limit = 0;
thread_local std::size_t t_largest = 0;
thread_local bool t_counting = false;
thread_local std::size_t t_failAt = 0;
thread_local std::size_t t_allocations = 0;
thread_local bool t_failed = false;

void* allocate(std::size_t size) noexcept
{
    if (t_probing) {
        if (size > t_largest)
            t_largest = size;
        if (size > t_limit)
            return nullptr;
    }
    if (t_counting && ++t_allocations == t_failAt) {
        t_failed = true;
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

namespace lang_test {

CAllocationProbe::CAllocationProbe(std::size_t limit)
{
    t_limit = limit;
    t_largest = 0;
    t_probing = true;
}

CAllocationProbe::~CAllocationProbe()
{
    t_probing = false;
}
std::size_t CAllocationProbe::largest() const
{
    return t_largest;
}

CAllocationFailure::CAllocationFailure(std::size_t failAt)
{
    t_failAt = failAt;
    t_allocations = 0;
    t_failed = false;
    t_counting = true;
}

CAllocationFailure::~CAllocationFailure()
{
    t_counting = false;
}
std::size_t CAllocationFailure::allocations() const
{
    return t_allocations;
}
bool CAllocationFailure::failed() const
{
    return t_failed;
}

} // namespace lang_test

void* operator new(std::size_t size)
{
    if (void* p = allocate(size))
        return p;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept
{
    std::free(p);
}

void* operator new[](std::size_t size)
{
    if (void* p = allocate(size))
        return p;
    throw std::bad_alloc();
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}
void operator delete[](void* p) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept
{
    std::free(p);
}
