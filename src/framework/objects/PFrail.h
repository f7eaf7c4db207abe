#pragma once
// A pointer that may or may not own its pointee. With the strong flag set (the default) it behaves
// like P; made frail, it never touches the count and so never keeps the pointee alive. Frail
// pointers serve back-references and listener lists, where a strong one would make a cycle; the
// owner of a frail pointer must drop it before the pointee dies.

#include "framework/objects/IBase.h"

#include <cstddef>
#include <utility>

namespace kore {

struct FrailTag {};
inline constexpr FrailTag kFrail{};

template <class T>
class PFrail {
public:
    PFrail() noexcept = default;
    PFrail(std::nullptr_t) noexcept {}
    PFrail(T* p) noexcept : m_p(p)
    {
        if (m_p)
            base(m_p)->addRef();
    }
    PFrail(T* p, FrailTag) noexcept : m_p(p), m_strong(false) {}
    PFrail(const PFrail& other) noexcept : m_p(other.m_p), m_strong(other.m_strong)
    {
        if (m_strong && m_p)
            base(m_p)->addRef();
    }
    PFrail(PFrail&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)), m_strong(other.m_strong)
    {
        other.m_strong = true;
    }
    ~PFrail() { reset(); }

    // Takes over both the pointer and the flag of the source. The source is read and its
    // pointee counted before the old pointee is released: the source may live only through the
    // old pointee (`cur = cur->next`).
    PFrail& operator=(const PFrail& other) noexcept
    {
        T* const p = other.m_p;
        const bool strong = other.m_strong;
        if (strong && p)
            base(p)->addRef();
        store(p, strong);
        return *this;
    }
    PFrail& operator=(PFrail&& other) noexcept
    {
        if (this != &other) {
            T* const p = std::exchange(other.m_p, nullptr);
            const bool strong = std::exchange(other.m_strong, true);
            store(p, strong);
        }
        return *this;
    }

    // Releases the pointee if the pointer owns it; the flag stays as it was.
    void reset() noexcept
    {
        T* old = std::exchange(m_p, nullptr);
        if (m_strong && old)
            base(old)->release();
    }

    bool isStrong() const noexcept { return m_strong; }
    T* get() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }

private:
    static const IBase* base(const T* p) noexcept { return p; }

    // Puts an already counted pointer in place, then drops the old one. The release comes last
    // because it may destroy the object that holds this pointer's source.
    void store(T* p, bool strong) noexcept
    {
        T* const old = std::exchange(m_p, p);
        const bool oldStrong = std::exchange(m_strong, strong);
        if (oldStrong && old)
            base(old)->release();
    }

    T* m_p = nullptr;
    bool m_strong = true;
};

} // namespace kore
