// Replaces the plain and nothrow forms of operator new and delete for the whole test program, so
// that a test can see how large a request code under test makes before it fails. Outside a probe
// they only forward to malloc and free. The aligned and array forms stay the runtime's: they pair
// with their own deletes.

#include "LanguageTestSupport.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool t_probing = false;
thread_local std::size_t t_limit = 0;
thread_local std::size_t t_largest = 0;

void* allocate(std::size_t size) noexcept
{
    if (t_probing) {
        if (size > t_largest)
            t_largest = size;
        if (size > t_limit)
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

CAllocationProbe::~CAllocationProbe() { t_probing = false; }
std::size_t CAllocationProbe::largest() const { return t_largest; }

} // namespace lang_test

void* operator new(std::size_t size)
{
    if (void* p = allocate(size))
        return p;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
