// Replaces the plain and nothrow forms of operator new and delete for the whole test program, so
// that a test can see how large a request code under test makes before it fails, or make the
// n-th allocation fail (LanguageTestSupport.h). Outside a probe they only forward to malloc and
// free. The array forms are replaced too (a sanitizer's runtime would otherwise serve them past
// the probe); the aligned forms stay the runtime's, paired with their own deletes.

#include "LanguageTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

void* allocate(std::size_t size) noexcept
{
    auto& s = lang_test::t_allocation;
    if (s.watching) {
        s.largest = std::max(s.largest, size);
        if (size > s.limit)
            return nullptr;
        if (++s.allocations == s.failAt) {
            s.failed = true;
            return nullptr;
        }
    }
    return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size)
{
    if (void* p = allocate(size))
        return p;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
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
