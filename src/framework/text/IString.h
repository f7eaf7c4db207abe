#pragma once
// The framework's text. Every operation that takes other text is implemented once, against
// IString; the argument variants (see CStringArg) wrap raw text without copying. Strings in
// different encodings compare, search and convert by code point; bytes that the encoding
// rejects are skipped silently.

#include "framework/objects/IComparable.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"

#include <cstdint>
#include <string>

namespace kore {

class ICharEncoding;

class IString : public virtual IComparable {
public:
    // Passed in: "not known". Returned: "not found" / "failed".
    static constexpr uint32_t kUnknown = 0xFFFFFFFF;
    static constexpr uint32_t kNotFound = 0xFFFFFFFF;

    // --- Storage
    virtual const uint8_t* getBuffer() const = 0;
    virtual uint32_t getByteLength() const = 0;
    // Number of (valid) characters.
    virtual uint32_t getLength() const = 0;
    virtual bool isTerminated() const = 0;
    virtual bool isOwned() const = 0;
    virtual ICharEncoding* getEncoding() const = 0;

    // --- The operations, each written once
    // Negative, 0 or positive. `limit` caps the number of characters compared; with `prefix`,
    // this string equals `other` when `other` runs out first.
    virtual int32_t compareString(const IString& other, bool ignoreCase, uint32_t limit, bool prefix) const = 0;
    // Character index of the first match at or after `from`, or kNotFound.
    virtual uint32_t findString(const IString& what, uint32_t from, bool ignoreCase) const = 0;
    // Character index of the last match that starts at or before `from` (kUnknown: anywhere),
    // or kNotFound. Reads backwards, so a code-page string throws CMethodNotImplementedError.
    virtual uint32_t findLastString(const IString& what, uint32_t from, bool ignoreCase) const = 0;
    // Non-overlapping occurrences, counted from the start.
    virtual uint32_t countString(const IString& what, bool ignoreCase) const = 0;
    virtual bool startsWithString(const IString& what, bool ignoreCase) const = 0;
    virtual bool endsWithString(const IString& what, bool ignoreCase) const = 0;
    // A view of `count` characters from `start` (both clamped to the string), sharing this
    // string's buffer and keeping it alive.
    virtual P<IString> slice(uint32_t start, uint32_t count = kUnknown) const = 0;
    // A new string with every occurrence of `what` replaced by `with` (case-sensitive).
    virtual P<IString> replaceAllString(const IString& what, const IString& with) const = 0;
    virtual P<IString> concatString(const IString& other) const = 0;
    // The code point at a character index, or kNotFound.
    virtual uint32_t getCharAt(uint32_t index) const = 0;
    // Hash over the code points: equal texts hash equal whatever their encodings.
    virtual uint32_t hash() const = 0;
    // The text converted into `encoding` (unencodable characters are dropped).
    virtual P<IString> convertTo(ICharEncoding& encoding) const = 0;

    // --- Argument variants
    int32_t compare(const CStringArg& other, uint32_t limit = kUnknown, bool prefix = false) const
    {
        return compareString(other.get(), false, limit, prefix);
    }
    int32_t compareIgnoreCase(const CStringArg& other, uint32_t limit = kUnknown, bool prefix = false) const
    {
        return compareString(other.get(), true, limit, prefix);
    }
    bool equals(const CStringArg& other) const
    {
        return other->getLength() == getLength() && compareString(other.get(), false, kUnknown, false) == 0;
    }
    bool equalsIgnoreCase(const CStringArg& other) const
    {
        return compareString(other.get(), true, kUnknown, false) == 0;
    }

    uint32_t find(const CStringArg& what, uint32_t from = 0) const { return findString(what.get(), from, false); }
    uint32_t findIgnoreCase(const CStringArg& what, uint32_t from = 0) const
    {
        return findString(what.get(), from, true);
    }
    uint32_t findLast(const CStringArg& what, uint32_t from = kUnknown) const
    {
        return findLastString(what.get(), from, false);
    }
    uint32_t findLastIgnoreCase(const CStringArg& what, uint32_t from = kUnknown) const
    {
        return findLastString(what.get(), from, true);
    }
    uint32_t count(const CStringArg& what) const { return countString(what.get(), false); }
    uint32_t countIgnoreCase(const CStringArg& what) const { return countString(what.get(), true); }
    bool startsWith(const CStringArg& what) const { return startsWithString(what.get(), false); }
    bool startsWithIgnoreCase(const CStringArg& what) const { return startsWithString(what.get(), true); }
    bool endsWith(const CStringArg& what) const { return endsWithString(what.get(), false); }
    bool endsWithIgnoreCase(const CStringArg& what) const { return endsWithString(what.get(), true); }
    P<IString> replaceAll(const CStringArg& what, const CStringArg& with) const
    {
        return replaceAllString(what.get(), with.get());
    }
    P<IString> concat(const CStringArg& other) const { return concatString(other.get()); }

    // Single characters: narrow (Latin-1), UTF-16 unit, code point, the platform's wchar_t.
    uint32_t find(char c, uint32_t from = 0) const { return find(CStringArg(c), from); }
    uint32_t find(char16_t c, uint32_t from = 0) const { return find(CStringArg(c), from); }
    uint32_t find(char32_t c, uint32_t from = 0) const { return find(CStringArg(c), from); }
    uint32_t find(wchar_t c, uint32_t from = 0) const { return find(CStringArg(c), from); }
    uint32_t findLast(char c, uint32_t from = kUnknown) const { return findLast(CStringArg(c), from); }
    uint32_t findLast(char16_t c, uint32_t from = kUnknown) const { return findLast(CStringArg(c), from); }
    uint32_t findLast(char32_t c, uint32_t from = kUnknown) const { return findLast(CStringArg(c), from); }
    uint32_t findLast(wchar_t c, uint32_t from = kUnknown) const { return findLast(CStringArg(c), from); }
    uint32_t count(char c) const { return count(CStringArg(c)); }
    uint32_t count(char16_t c) const { return count(CStringArg(c)); }
    uint32_t count(char32_t c) const { return count(CStringArg(c)); }
    uint32_t count(wchar_t c) const { return count(CStringArg(c)); }
    bool startsWith(char c) const { return startsWith(CStringArg(c)); }
    bool startsWith(char16_t c) const { return startsWith(CStringArg(c)); }
    bool startsWith(char32_t c) const { return startsWith(CStringArg(c)); }
    bool startsWith(wchar_t c) const { return startsWith(CStringArg(c)); }
    bool endsWith(char c) const { return endsWith(CStringArg(c)); }
    bool endsWith(char16_t c) const { return endsWith(CStringArg(c)); }
    bool endsWith(char32_t c) const { return endsWith(CStringArg(c)); }
    bool endsWith(wchar_t c) const { return endsWith(CStringArg(c)); }

    // --- Conveniences for code at the edges (exports, tests, the C runtime)
    std::u16string toU16() const;
    // The UTF-8 of every character (a surrogate code point, which UTF-8 and UTF-32 strings may
    // hold, as its three bytes).
    std::string toUTF8() const;
};

} // namespace kore
