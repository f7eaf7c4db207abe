#include "framework/text/CString.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/objects/Cast.h"
#include "framework/text/CCaseTable.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CStringSlice.h"
#include "framework/text/UTF8Decoding.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace kore {

namespace {

const uint8_t kEmptyBuffer[4] = {0, 0, 0, 0};

bool sameChar(uint32_t a, uint32_t b, bool ignoreCase)
{
    return a == b || (ignoreCase && CCaseTable::map(a) == CCaseTable::map(b));
}

std::vector<uint32_t> decodeAll(const IString& s)
{
    std::vector<uint32_t> cps;
    cps.reserve(s.getLength());
    CCharCursor cursor(s);
    for (uint32_t cp = 0; cursor.next(cp);)
        cps.push_back(cp);
    return cps;
}

bool matchesAt(const std::vector<uint32_t>& hay, size_t at, const std::vector<uint32_t>& needle, bool ignoreCase)
{
    for (size_t i = 0; i < needle.size(); ++i) {
        if (!sameChar(hay[at + i], needle[i], ignoreCase))
            return false;
    }
    return true;
}

// Compares what is left of two cursors: the order of the first differing pair, else the shorter
// runs out first. With `prefix`, running out of `b` first counts as equal.
int32_t compareCursors(CCharCursor& a, CCharCursor& b, bool ignoreCase, uint32_t limit, bool prefix)
{
    for (uint32_t n = 0;; ++n) {
        if (limit != IString::kUnknown && n >= limit)
            return 0;
        uint32_t ca = 0;
        uint32_t cb = 0;
        const bool hasA = a.next(ca);
        const bool hasB = b.next(cb);
        if (!hasB)
            return !hasA || prefix ? 0 : 1;
        if (!hasA)
            return -1;
        if (ca != cb) {
            if (!ignoreCase)
                return ca < cb ? -1 : 1;
            ca = CCaseTable::map(ca);
            cb = CCaseTable::map(cb);
            if (ca != cb)
                return ca < cb ? -1 : 1;
        }
    }
}

// Encodes a code point source into a new buffer (from CString::allocateBuffer) in `encoding`, in
// two passes: measure, then encode. `forEach(f)` calls f(cp) for every code point. Unencodable
// code points are dropped. The buffer is terminated; `length` excludes the terminator.
struct EncodedText {
    uint8_t* buffer;
    uint32_t length;
};

template <class ForEach>
EncodedText encodeAll(ICharEncoding& encoding, const ForEach& forEach)
{
    uint64_t total = 0;
    forEach([&](uint32_t cp) { total += encoding.getEncodedSize(cp); });
    uint32_t terminator = encoding.getEncodedSize(0);
    if (terminator == 0)
        terminator = 1;
    if (total + terminator > 0xFFFFFFF0u)
        throw COutOfmemoryException();
    const uint32_t size = static_cast<uint32_t>(total) + terminator;
    uint8_t* buffer = CString::allocateBuffer(size);
    uint32_t off = 0;
    forEach([&](uint32_t cp) {
        const uint32_t end = encoding.encodeChar(cp, buffer, size - terminator, off);
        if (end != off && end != 0)
            off = end;
    });
    std::memset(buffer + off, 0, size - off);
    return {buffer, off};
}

// A new string over encodeAll's result. Its count is what reading the result yields, not the
// number of code points written: UTF-8 cannot read back what it writes for U+0800-U+0FFF and
// U+10000-U+3FFFF, a multibyte code page reads one character per byte, and every other operation
// relies on the two agreeing.
template <class ForEach>
P<IString> buildString(ICharEncoding& encoding, const ForEach& forEach)
{
    const EncodedText text = encodeAll(encoding, forEach);
    try {
        return make<CString>(text.buffer, text.length, IString::kUnknown, true, encoding, CString::kAdopt);
    } catch (...) {
        CString::freeBuffer(text.buffer);
        throw;
    }
}

// Whether a string in the encoding `id` reads `cp` back after writing it. The UTF-8 class cannot
// read U+0800-U+0FFF and U+10000-U+3FFFF (it refuses leads 0xE0 and 0xF0); a code page is
// trusted only with its own strings.
bool holds(uint32_t id, uint32_t cp)
{
    switch (id) {
    case CUTF32CharEncoding::kId: return true;
    case CUTF16CharEncoding::kId: return cp < 0x110000 && (cp < 0xD800 || cp > 0xDFFF);
    case CUTF8CharEncoding::kId:
        return cp < 0x110000 && (cp < 0x800 || cp >= 0x1000) && (cp < 0x10000 || cp >= 0x40000);
    case CLatin1CharEncoding::kId: return cp < 0x100;
    default: return false;
    }
}

// Concatenation and replacement keep the left operand's encoding when it holds every character
// of `added` too (both share it, or each added character reads back), so no character is ever
// lost; else UTF-32 when either operand is UTF-32 (it may carry code points nothing else
// stores), else UTF-16.
ICharEncoding& resultEncoding(const IString& a, const IString& added)
{
    ICharEncoding* enc = a.getEncoding();
    const uint32_t id = enc->getId();
    const uint32_t addedId = added.getEncoding()->getId();
    if (id == addedId)
        return *enc;
    bool all = true;
    CCharCursor cursor(added);
    for (uint32_t cp = 0; all && cursor.next(cp);)
        all = holds(id, cp);
    if (all)
        return *enc;
    if (addedId == CUTF32CharEncoding::kId)
        return *added.getEncoding();
    return id == CUTF32CharEncoding::kId ? *enc : *CUTF16CharEncoding::instance();
}

uint32_t fixedUnit(const ICharEncoding& enc, uint32_t byteLength, uint32_t charCount);

} // namespace

CString::CString()
{
    m_encoding = CUTF16CharEncoding::instance();
    initFrom(kEmptyBuffer, 0, 0, true, kBorrow);
}

CString::CString(const void* buffer, uint32_t byteLength, uint32_t charCount, bool terminated, ICharEncoding& encoding,
                 StorageMode mode)
{
    m_encoding = &encoding;
    initFrom(buffer, byteLength, charCount, terminated, mode);
}

CString::CString(SliceTag, const uint8_t* buffer, uint32_t byteLength, uint32_t charCount, ICharEncoding& encoding)
{
    m_encoding = &encoding;
    initFrom(buffer, byteLength, charCount, false, kBorrow);
}

CString::CString(const CString& other) : CObject(other), IString(other)
{
    m_encoding = other.m_encoding;
    initFrom(other.m_buffer, other.m_byteLength, other.m_charCount, other.m_terminated, kCopy);
}

CString::CString(const IString& source, ICharEncoding& encoding)
{
    const EncodedText text = encodeAll(encoding, [&](auto&& sink) {
        CCharCursor cursor(source);
        for (uint32_t cp = 0; cursor.next(cp);)
            sink(cp);
    });
    m_encoding = &encoding;
    initFrom(text.buffer, text.length, kUnknown, true, kAdopt); // counts what it reads back
}

CString::~CString()
{
    if (m_owned)
        freeBuffer(const_cast<uint8_t*>(m_buffer));
}

void CString::initFrom(const void* buffer, uint32_t byteLength, uint32_t charCount, bool terminated, StorageMode mode)
{
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    if (!bytes) {
        bytes = kEmptyBuffer;
        byteLength = 0;
        charCount = 0;
        terminated = true;
        if (mode == kAdopt)
            mode = kBorrow;
    }
    if (byteLength == kUnknown)
        byteLength = m_encoding->getTerminatedLength(bytes);
    switch (mode) {
    case kAdopt:
        m_buffer = bytes;
        m_owned = true;
        m_terminated = terminated;
        break;
    case kBorrow:
        m_buffer = bytes;
        m_owned = false;
        m_terminated = terminated;
        break;
    case kCopy:
    default: {
        uint32_t terminator = m_encoding->getEncodedSize(0);
        if (terminator == 0)
            terminator = 1;
        if (byteLength > 0xFFFFFFF0u - terminator)
            throw COutOfmemoryException();
        uint8_t* copy = allocateBuffer(byteLength + terminator);
        if (byteLength)
            std::memcpy(copy, bytes, byteLength);
        std::memset(copy + byteLength, 0, terminator);
        m_buffer = copy;
        m_owned = true;
        m_terminated = true;
        break;
    }
    }
    m_byteLength = byteLength;
    m_charCount = charCount == kUnknown ? m_encoding->countChars(m_buffer, m_byteLength, 0) : charCount;
    m_fixedUnit = static_cast<uint8_t>(fixedUnit(*m_encoding, m_byteLength, m_charCount));
    // A code page's byte still has to be decoded to become a character.
    const uint32_t id = m_encoding->getId();
    m_directUnit = m_fixedUnit == 1 && id != CLatin1CharEncoding::kId && id != CUTF8CharEncoding::kId ? 0 : m_fixedUnit;
}

uint8_t* CString::allocateBuffer(uint32_t bytes)
{
    try {
        return static_cast<uint8_t*>(::operator new(bytes == 0 ? 1 : bytes));
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
}

void CString::freeBuffer(uint8_t* buffer) noexcept
{
    ::operator delete(buffer);
}

uint32_t CString::unitsToBytes(uint32_t units, uint32_t unitSize)
{
    if (units == kUnknown)
        return units;
    // Refused rather than wrapped into a short length.
    if (units > 0xFFFFFFFEu / unitSize)
        throw CInvalidArgError(nullptr, "CString::unitsToBytes", "units", "text length");
    return units * unitSize;
}

P<IString> CString::empty()
{
    return make<CString>();
}

namespace {

// Text without bytes 0xE0 and 0xF0 reads the same through the UTF-8 class (which refuses them as
// leads) as through the complete decoder, and stays UTF-8; other text becomes UTF-16, so that no
// character is lost.
bool utf8ClassReadsAll(std::string_view text)
{
    return text.find_first_of("\xE0\xF0") == std::string_view::npos;
}

} // namespace

P<IString> CString::fromUTF8(std::string_view text)
{
    if (utf8ClassReadsAll(text))
        return make<CUTF8String>(text);
    std::u16string units;
    decodeUTF8Lenient(text, units);
    return make<CUTF16String>(units);
}

P<IString> CString::tryFromUTF8(std::string_view text)
{
    return isValidUTF8(text) ? fromUTF8(text) : nullptr;
}

P<IString> CString::fromUTF16(std::u16string_view text)
{
    return make<CUTF16String>(text);
}

int32_t CString::compareTo(const IComparable& other) const
{
    return compareString(*cast<const IString>(&other), false, kUnknown, false);
}

int32_t CString::compareString(const IString& other, bool ignoreCase, uint32_t limit, bool prefix) const
{
    CCharCursor a(*this);
    CCharCursor b(other);
    return compareCursors(a, b, ignoreCase, limit, prefix);
}

namespace {

// The code units of a string whose every unit is one character (no multi-unit sequence, no
// invalid byte: the byte length is the count times the unit), else 0. Such text is searched and
// indexed directly.
uint32_t fixedUnit(const ICharEncoding& enc, uint32_t byteLength, uint32_t charCount)
{
    uint32_t unit = 0;
    switch (enc.getId()) {
    case CUTF16CharEncoding::kId: unit = 2; break;
    case CUTF32CharEncoding::kId: unit = 4; break;
    default:
        unit = 1; // UTF-8 (then ASCII), Latin-1, code page: one byte per character
        break;
    }
    return uint64_t(charCount) * unit == byteLength ? unit : 0;
}

// Searches units of type T for `needle` from unit `from`. `limit` is the largest value a unit
// holds as a character by itself; a needle character beyond it cannot occur.
template <class T>
uint32_t findUnits(const uint8_t* buffer, uint32_t units, const std::vector<uint32_t>& needle, uint32_t from,
                   uint32_t limit)
{
    std::basic_string<T> want;
    want.reserve(needle.size());
    for (uint32_t cp : needle) {
        if (cp > limit || (sizeof(T) == 2 && cp >= 0xD800 && cp <= 0xDFFF))
            return IString::kNotFound;
        want.push_back(static_cast<T>(cp));
    }
    const std::basic_string_view<T> hay(reinterpret_cast<const T*>(buffer), units);
    const size_t at = hay.find(want, from);
    return at == std::basic_string_view<T>::npos ? IString::kNotFound : static_cast<uint32_t>(at);
}

} // namespace

uint32_t CString::findString(const IString& what, uint32_t from, bool ignoreCase) const
{
    if (from > m_charCount)
        return kNotFound;
    const std::vector<uint32_t> needle = decodeAll(what);
    if (needle.size() > m_charCount - from)
        return kNotFound;
    const uint32_t unit = fixedUnit(*m_encoding, m_byteLength, m_charCount);
    const uint32_t id = m_encoding->getId();
    if (unit != 0 && !ignoreCase) {
        if (unit == 2)
            return findUnits<char16_t>(m_buffer, m_charCount, needle, from, 0xFFFF);
        if (unit == 4)
            return findUnits<char32_t>(m_buffer, m_charCount, needle, from, 0xFFFFFFFF);
        if (id == CLatin1CharEncoding::kId)
            return findUnits<char>(m_buffer, m_charCount, needle, from, 0xFF);
        if (id == CUTF8CharEncoding::kId)
            return findUnits<char>(m_buffer, m_charCount, needle, from, 0x7F);
    }
    // Decodes only as far as the match: a loop over every match reads the string once.
    const uint32_t start = charOffset(from);
    if (start == ICharEncoding::kFail)
        return kNotFound;
    CCharCursor cursor(*this, start);
    std::vector<uint32_t> hay;
    for (size_t at = 0;; ++at) {
        for (uint32_t cp = 0; hay.size() < at + needle.size(); hay.push_back(cp)) {
            if (!cursor.next(cp))
                return kNotFound;
        }
        if (matchesAt(hay, at, needle, ignoreCase))
            return from + static_cast<uint32_t>(at);
    }
}

uint32_t CString::findLastString(const IString& what, uint32_t from, bool ignoreCase) const
{
    const std::vector<uint32_t> needle = decodeAll(what);
    // Read backwards: the last characters come first. The stored count is not trusted to size
    // the result, since a caller may have given it.
    std::vector<uint32_t> hay;
    hay.reserve(m_charCount);
    CCharCursor cursor(*this);
    for (uint32_t cp = 0; cursor.prev(cp);)
        hay.push_back(cp);
    std::reverse(hay.begin(), hay.end());
    if (needle.size() > hay.size())
        return kNotFound;
    size_t at = hay.size() - needle.size();
    if (from != kUnknown && from < at)
        at = from;
    for (;; --at) {
        if (matchesAt(hay, at, needle, ignoreCase))
            return static_cast<uint32_t>(at);
        if (at == 0)
            return kNotFound;
    }
}

uint32_t CString::countString(const IString& what, bool ignoreCase) const
{
    const std::vector<uint32_t> needle = decodeAll(what);
    if (needle.empty() || needle.size() > m_charCount)
        return 0;
    const std::vector<uint32_t> hay = decodeAll(*this);
    uint32_t n = 0;
    for (size_t at = 0; at + needle.size() <= hay.size();) {
        if (matchesAt(hay, at, needle, ignoreCase)) {
            ++n;
            at += needle.size();
        } else {
            ++at;
        }
    }
    return n;
}

bool CString::startsWithString(const IString& what, bool ignoreCase) const
{
    return compareString(what, ignoreCase, kUnknown, true) == 0;
}

bool CString::endsWithString(const IString& what, bool ignoreCase) const
{
    const uint32_t n = what.getLength();
    if (n > m_charCount)
        return false;
    const uint32_t start = charOffset(m_charCount - n);
    if (start == ICharEncoding::kFail)
        return false;
    CCharCursor a(*this, start);
    CCharCursor b(what);
    return compareCursors(a, b, ignoreCase, kUnknown, false) == 0;
}

P<IString> CString::slice(uint32_t start, uint32_t count) const
{
    if (start > m_charCount)
        start = m_charCount;
    if (count > m_charCount - start)
        count = m_charCount - start;
    const uint32_t begin = charOffset(start);
    // To the end: the whole rest, invalid trailing bytes and all (reading skips them anyway).
    const uint32_t end = start + count == m_charCount ? m_byteLength : charOffset(start + count);
    if (begin == ICharEncoding::kFail || end == ICharEncoding::kFail)
        return make<CStringSlice>(*this, 0, 0, 0); // a count given by the creator was too high
    return make<CStringSlice>(*this, begin, end, count);
}

P<IString> CString::replaceAllString(const IString& what, const IString& with) const
{
    const std::vector<uint32_t> needle = decodeAll(what);
    const std::vector<uint32_t> hay = decodeAll(*this);
    const std::vector<uint32_t> replacement = decodeAll(with);
    return buildString(resultEncoding(*this, with), [&](auto&& sink) {
        for (size_t at = 0; at < hay.size();) {
            if (!needle.empty() && at + needle.size() <= hay.size() && matchesAt(hay, at, needle, false)) {
                for (uint32_t cp : replacement)
                    sink(cp);
                at += needle.size();
            } else {
                sink(hay[at++]);
            }
        }
    });
}

P<IString> CString::concatString(const IString& other) const
{
    return buildString(resultEncoding(*this, other), [&](auto&& sink) {
        CCharCursor a(*this);
        for (uint32_t cp = 0; a.next(cp);)
            sink(cp);
        CCharCursor b(other);
        for (uint32_t cp = 0; b.next(cp);)
            sink(cp);
    });
}

uint32_t CString::getCharAt(uint32_t index) const
{
    if (index >= m_charCount)
        return kNotFound;
    // Where every unit is a character, the unit is the answer.
    switch (m_directUnit) {
    case 1: return m_buffer[index];
    case 2: {
        char16_t unit;
        std::memcpy(&unit, m_buffer + 2 * size_t(index), 2);
        return unit;
    }
    case 4: {
        uint32_t unit;
        std::memcpy(&unit, m_buffer + 4 * size_t(index), 4);
        return unit;
    }
    default: break;
    }
    const uint32_t off = charOffset(index);
    if (off == ICharEncoding::kFail)
        return kNotFound;
    uint32_t cp = 0;
    return m_encoding->decodeChar(cp, m_buffer, m_byteLength, off) == ICharEncoding::kFail ? kNotFound : cp;
}

uint32_t CString::charOffset(uint32_t index) const
{
    const uint32_t unit = m_fixedUnit;
    if (unit != 0)
        return index <= m_charCount ? index * unit : ICharEncoding::kFail;
    // Walk on from the last place asked for when it lies before `index`, so that reading a string
    // front to back by index costs one pass in all. Any pair another thread stored is as good.
    const uint64_t last = m_lastPlace.load(std::memory_order_relaxed);
    uint32_t known = static_cast<uint32_t>(last >> 32);
    uint32_t knownOffset = static_cast<uint32_t>(last);
    if (known > index || knownOffset > m_byteLength)
        known = knownOffset = 0;
    const uint32_t rest = m_encoding->getCharOffset(m_buffer + knownOffset, m_byteLength - knownOffset, index - known);
    if (rest == ICharEncoding::kFail)
        return rest;
    const uint32_t offset = knownOffset + rest;
    m_lastPlace.store(uint64_t(index) << 32 | offset, std::memory_order_relaxed);
    return offset;
}

uint32_t CString::hash() const
{
    // FNV-1a with the code point as the unit, so that equal text hashes equal in every encoding;
    // one multiplication per character, then a final mix so that the low bits (the bucket)
    // depend on every character.
    uint32_t h = 2166136261u;
    CCharCursor cursor(*this);
    for (uint32_t cp = 0; cursor.next(cp);)
        h = (h ^ cp) * 16777619u;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    return h;
}

P<IString> CString::convertTo(ICharEncoding& encoding) const
{
    return make<CString>(*this, encoding);
}

P<IString> CString::toString() const
{
    return P<IString>(const_cast<CString*>(this));
}

// --- IString conveniences

std::u16string IString::toU16() const
{
    std::u16string out;
    out.reserve(getLength());
    CCharCursor cursor(*this);
    for (uint32_t cp = 0; cursor.next(cp);) {
        if (cp >= 0x10000 && cp < 0x110000) {
            out.push_back(static_cast<char16_t>(0xD800 | ((cp - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 | ((cp - 0x10000) & 0x3FF)));
        } else if (cp < 0x10000 && (cp < 0xD800 || cp > 0xDFFF)) {
            out.push_back(static_cast<char16_t>(cp));
        }
    }
    return out;
}

std::string IString::toUTF8() const
{
    // The UTF-8 class writes every character right (only its reading is partial).
    CUTF8String utf8(*this);
    return std::string(reinterpret_cast<const char*>(utf8.getBuffer()), utf8.getByteLength());
}

// --- CStringArg

static_assert(sizeof(CString) <= 160, "CStringArg's in-place storage is too small for CString");

namespace {
enum EncodingKind { kLatin1Kind, kUTF16Kind, kUTF32Kind };
}

void CStringArg::borrow(const void* buffer, uint32_t byteLength, int encodingKind)
{
    ICharEncoding* enc = nullptr;
    switch (encodingKind) {
    case kLatin1Kind: enc = CLatin1CharEncoding::instance().get(); break;
    case kUTF16Kind: enc = CUTF16CharEncoding::instance().get(); break;
    default: enc = CUTF32CharEncoding::instance().get(); break;
    }
    const bool terminated = byteLength == kUnknownLength;
    m_str = new (m_storage) CString(buffer, byteLength, IString::kUnknown, terminated, *enc, CString::kBorrow);
    m_wrapped = true;
}

CStringArg::CStringArg(const char* latin1, uint32_t length)
{
    borrow(latin1, length, kLatin1Kind);
}

CStringArg::CStringArg(const char16_t* utf16, uint32_t length)
{
    borrow(utf16, CString::unitsToBytes(length, 2), kUTF16Kind);
}

CStringArg::CStringArg(const char32_t* utf32, uint32_t length)
{
    borrow(utf32, CString::unitsToBytes(length, 4), kUTF32Kind);
}

CStringArg::CStringArg(const wchar_t* wide, uint32_t length)
{
    constexpr uint32_t unit = sizeof(wchar_t);
    borrow(wide, CString::unitsToBytes(length, unit), unit == 2 ? kUTF16Kind : kUTF32Kind);
}

CStringArg::CStringArg(char latin1) : m_char(static_cast<uint8_t>(latin1))
{
    borrow(&m_char, 1, kLatin1Kind);
}

void CStringArg::borrowUnit(char16_t unit)
{
    m_char = unit;
    const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    // m_char holds the unit in its low bytes: machine order is little-endian.
    borrow(&m_char, surrogate ? 4 : 2, surrogate ? kUTF32Kind : kUTF16Kind);
}

CStringArg::CStringArg(char16_t utf16)
{
    borrowUnit(utf16);
}

CStringArg::CStringArg(wchar_t wide)
{
    if constexpr (sizeof(wchar_t) == 2) {
        borrowUnit(static_cast<char16_t>(wide));
    } else {
        m_char = static_cast<uint32_t>(wide);
        borrow(&m_char, 4, kUTF32Kind);
    }
}

CStringArg::CStringArg(char32_t codePoint) : m_char(codePoint)
{
    borrow(&m_char, 4, kUTF32Kind);
}

CStringArg::~CStringArg()
{
    if (m_wrapped)
        static_cast<const CString*>(m_str)->~CString();
}

} // namespace kore
