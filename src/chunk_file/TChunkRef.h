#pragma once
// Owns one reference to a container object (stream, iterator, file) and releases it at scope end.
// Releasing a stream that changed may write its size back and fail: call reset() where that
// failure must reach the caller; the destructor swallows it, since destructors must not throw.

#include <utility>

namespace chf {

template <class T>
class TChunkRef {
public:
    TChunkRef() noexcept = default;
    // Takes over a reference the caller owns (what open and append operations return).
    explicit TChunkRef(T* adopted) noexcept : m_p(adopted) {}
    TChunkRef(const TChunkRef&) = delete;
    TChunkRef& operator=(const TChunkRef&) = delete;
    TChunkRef(TChunkRef&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    TChunkRef& operator=(TChunkRef&& other) noexcept
    {
        if (this != &other) {
            T* old = std::exchange(m_p, std::exchange(other.m_p, nullptr));
            if (old) {
                try {
                    old->release();
                } catch (...) {
                }
            }
        }
        return *this;
    }
    ~TChunkRef()
    {
        try {
            reset();
        } catch (...) {
        }
    }

    void reset()
    {
        if (T* old = std::exchange(m_p, nullptr))
            old->release();
    }

    T* get() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }

private:
    T* m_p = nullptr;
};

} // namespace chf
