#pragma once
// Text argument of a string operation: either a framework string or raw text that is wrapped,
// without copying, in a string that borrows the caller's buffer. Every operation that takes text
// is written once against IString; this class supplies the argument variants (narrow Latin-1,
// wide UTF-16, the platform's wchar_t, with or without a length, single characters).
// Only ever a temporary: the borrowed buffer must outlive the call it is passed to.

#include <cstdint>

namespace kore {

class IString;
template <class T>
class P;

// Narrow text at a call site is Latin-1, one byte per character (U+0000-U+00FF), never UTF-8:
// "caf\xC3\xA9" is five characters. latin1("caf\xE9") says so where it matters; UTF-8 text goes
// through CString::fromUTF8 instead.
struct CLatin1Text {
    const char* text;
    uint32_t length;
};
constexpr CLatin1Text latin1(const char* text, uint32_t length = 0xFFFFFFFF) noexcept
{
    return {text, length};
}

class CStringArg {
public:
    static constexpr uint32_t kUnknownLength = 0xFFFFFFFF;

    CStringArg(const IString& s) noexcept : m_str(&s) {}
    // A null pointer reads as the empty string.
    template <class T>
    CStringArg(const P<T>& s) : m_str(s.get())
    {
        if (!m_str)
            borrow(nullptr, 0, 0); // the empty Latin-1 string
    }
    // Latin-1, not UTF-8 (see CLatin1Text).
    CStringArg(const char* latin1, uint32_t length = kUnknownLength);
    CStringArg(CLatin1Text text) : CStringArg(text.text, text.length) {}
    CStringArg(const char16_t* utf16, uint32_t length = kUnknownLength);
    CStringArg(const char32_t* utf32, uint32_t length = kUnknownLength);
    CStringArg(const wchar_t* wide, uint32_t length = kUnknownLength);

    // Single characters, held inside the argument itself. Explicit, so that numbers never turn
    // into text by accident.
    explicit CStringArg(char latin1);
    // A lone surrogate unit is no UTF-16 text: it stands for its code point, so that it is searched
    // for rather than read as the empty string (which matches everywhere).
    explicit CStringArg(char16_t utf16);
    explicit CStringArg(char32_t codePoint);
    // The platform's wide character: a UTF-16 unit on Windows, a code point elsewhere.
    explicit CStringArg(wchar_t wide);

    ~CStringArg();
    CStringArg(const CStringArg&) = delete;
    CStringArg& operator=(const CStringArg&) = delete;

    // Never null: a null text pointer reads as the empty string.
    const IString& get() const noexcept { return *m_str; }
    const IString* operator->() const noexcept { return m_str; }

private:
    void borrow(const void* buffer, uint32_t byteLength, int encodingKind);
    void borrowUnit(char16_t unit);

    const IString* m_str = nullptr;
    bool m_wrapped = false;
    uint32_t m_char = 0;
    alignas(16) unsigned char m_storage[160];
};

} // namespace kore
