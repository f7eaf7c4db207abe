#pragma once
// Strong smart pointer to a framework object.
//
// Ownership: store a P<T> wherever an object must stay alive (members, containers, return values);
// pass a raw T* or const T& to a function that only uses the object for the duration of the call.
// A new object starts with a count of 1 that belongs to its creator: hand it over with
// P<T>::adopt() or make<T>(), never by plain construction (which would add a second reference).

#include "framework/objects/IBase.h"

#include <concepts>
#include <cstddef>
#include <utility>

namespace kore {

template <class T>
class P {
public:
    using element_type = T;

    P() noexcept = default;
    P(std::nullptr_t) noexcept {}
    P(T* p) noexcept : m_p(p)
    {
        if (m_p)
            base(m_p)->addRef();
    }
    P(const P& other) noexcept : P(other.m_p) {}
    P(P&& other) noexcept : m_p(other.detach()) {}
    template <class U>
    requires std::convertible_to<U*, T*> P(const P<U>& other)
    noexcept : P(other.get()) {}
    template <class U>
    requires std::convertible_to<U*, T*> P(P<U>&& other)
    noexcept : m_p(other.detach()) {}
    ~P()
    {
        if (m_p)
            base(m_p)->release();
    }

    // Takes over the reference the caller owns (a new object's first reference).
    static P adopt(T* p) noexcept
    {
        P result;
        result.m_p = p;
        return result;
    }

    // New pointee first gains a reference, then the old one loses its own, then the pointer
    // changes: self-assignment and an old pointee that alone keeps the new one alive are safe.
    P& operator=(const P& other) noexcept
    {
        assign(other.m_p);
        return *this;
    }
    P& operator=(P&& other) noexcept
    {
        if (this != &other) {
            T* old = m_p;
            m_p = other.detach();
            if (old)
                base(old)->release();
        }
        return *this;
    }
    template <class U>
    requires std::convertible_to<U*, T*> P& operator=(const P<U>& other) noexcept
    {
        assign(other.get());
        return *this;
    }
    P& operator=(T* p) noexcept
    {
        assign(p);
        return *this;
    }
    P& operator=(std::nullptr_t) noexcept
    {
        reset();
        return *this;
    }

    void reset() noexcept { assign(nullptr); }

    // Release for a holder that knows the pointer is set: skips the null test.
    void releaseNonNull() noexcept
    {
        T* old = m_p;
        m_p = nullptr;
        base(old)->release();
    }

    // Gives up the reference without releasing it; the caller now owns it.
    [[nodiscard]] T* detach() noexcept { return std::exchange(m_p, nullptr); }

    T* get() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }

    template <class U>
    bool operator==(const P<U>& other) const noexcept
    {
        return m_p == other.get();
    }
    bool operator==(std::nullptr_t) const noexcept { return m_p == nullptr; }
    bool operator==(const T* p) const noexcept { return m_p == p; }

private:
    static const IBase* base(const T* p) noexcept { return p; }

    void assign(T* p) noexcept
    {
        if (p)
            base(p)->addRef();
        T* old = m_p;
        if (old)
            base(old)->release();
        m_p = p;
    }

    T* m_p = nullptr;
};

// Creates an object and hands its first reference to the returned pointer.
template <class T, class... Args>
P<T> make(Args&&... args)
{
    return P<T>::adopt(new T(std::forward<Args>(args)...));
}

} // namespace kore
