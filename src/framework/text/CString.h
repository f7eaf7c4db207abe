#pragma once
// The framework's one string class: a byte buffer in one of the five encodings, with its byte
// length and character count. Not changed after construction, so it may be read from several
// threads at once.
//
// Storage modes: copy (the string owns a private copy, always terminated), adopt (the string
// takes over a buffer from CString::allocateBuffer and frees it), borrow (the string refers to the
// caller's memory, which must outlive it unchanged).

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/ICharEncoding.h"
#include "framework/text/IString.h"

#include <atomic>
#include <string_view>

namespace kore {

class CString : public CObject, public IString {
public:
    enum StorageMode : uint32_t { kCopy = 0, kAdopt = 1, kBorrow = 2 };

    // The empty string (UTF-16).
    CString();
    // `byteLength` kUnknown: measure up to the encoded NUL. `charCount` kUnknown: count them.
    CString(const void* buffer, uint32_t byteLength, uint32_t charCount, bool terminated, ICharEncoding& encoding,
            StorageMode mode);
    // Conversion of any string into `encoding`.
    CString(const IString& source, ICharEncoding& encoding);
    // Copies the bytes (a borrowed source becomes an owned copy).
    CString(const CString& other);
    CString& operator=(const CString&) = delete;
    ~CString() override;

    // Buffers handed over in adopt mode come from here.
    static uint8_t* allocateBuffer(uint32_t bytes);
    static void freeBuffer(uint8_t* buffer) noexcept;

    // Byte length of `units` code units of `unitSize` bytes; kUnknown stays kUnknown. Throws
    // CInvalidArgError when the bytes do not fit 32 bits.
    static uint32_t unitsToBytes(uint32_t units, uint32_t unitSize);

    // A new empty string.
    static P<IString> empty();
    // New strings (copy mode) from raw text. UTF-8 is read completely (U+0800-U+0FFF and
    // U+10000-U+3FFFF too, which the UTF-8 encoding class refuses) and bytes that do not form a
    // character are skipped; the result is in UTF-8 or, where that class could not read the
    // text back, in UTF-16.
    static P<IString> fromUTF8(std::string_view text);
    // The same for text that must arrive whole (names from the file system): null when `text`
    // is not well-formed UTF-8.
    static P<IString> tryFromUTF8(std::string_view text);
    static P<IString> fromUTF16(std::u16string_view text);

    const uint8_t* getBuffer() const override { return m_buffer; }
    uint32_t getByteLength() const override { return m_byteLength; }
    uint32_t getLength() const override { return m_charCount; }
    bool isTerminated() const override { return m_terminated; }
    bool isOwned() const override { return m_owned; }
    ICharEncoding* getEncoding() const override { return m_encoding.get(); }

    int32_t compareTo(const IComparable& other) const override;
    int32_t compareString(const IString& other, bool ignoreCase, uint32_t limit, bool prefix) const override;
    uint32_t findString(const IString& what, uint32_t from, bool ignoreCase) const override;
    uint32_t findLastString(const IString& what, uint32_t from, bool ignoreCase) const override;
    uint32_t countString(const IString& what, bool ignoreCase) const override;
    bool startsWithString(const IString& what, bool ignoreCase) const override;
    bool endsWithString(const IString& what, bool ignoreCase) const override;
    P<IString> slice(uint32_t start, uint32_t count = kUnknown) const override;
    P<IString> replaceAllString(const IString& what, const IString& with) const override;
    P<IString> concatString(const IString& other) const override;
    uint32_t getCharAt(uint32_t index) const override;
    uint32_t hash() const override;
    P<IString> convertTo(ICharEncoding& encoding) const override;

    // A string describes itself by its text.
    P<IString> toString() const override;

protected:
    // For subclasses that keep the buffer's owner alive themselves (slices).
    struct SliceTag {};
    CString(SliceTag, const uint8_t* buffer, uint32_t byteLength, uint32_t charCount, ICharEncoding& encoding);

private:
    // The byte offset at which character `index` (up to the count: the end) begins, or kFail.
    uint32_t charOffset(uint32_t index) const;
    void initFrom(const void* buffer, uint32_t byteLength, uint32_t charCount, bool terminated, StorageMode mode);

    const uint8_t* m_buffer = nullptr;
    uint32_t m_byteLength = 0;
    bool m_terminated = false;
    bool m_owned = false;
    P<ICharEncoding> m_encoding;
    uint32_t m_charCount = 0;
    // Bytes per character when every character has the same width (0 otherwise), and the same
    // where that unit is also the code point (not for a code page).
    uint8_t m_fixedUnit = 0;
    uint8_t m_directUnit = 0;
    // The last (character index << 32 | byte offset) charOffset found; (0, 0) to begin with.
    mutable std::atomic<uint64_t> m_lastPlace{0};
};

} // namespace kore

#include "framework/text/TTypedString.h"

// The typed strings, so that including the string class gives the usual ways to make text.
#include "framework/text/CCPString.h"
#include "framework/text/CLatin1String.h"
#include "framework/text/CUTF16String.h"
#include "framework/text/CUTF32String.h"
#include "framework/text/CUTF8String.h"
#include "framework/text/CWCharString.h"
