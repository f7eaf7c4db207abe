#pragma once
// A CString whose constructors fix the encoding; the typed strings add no data and no behaviour.
// Included by CString.h, right after CString; include that header instead of this one.

namespace kore {

template <class Encoding, class Unit>
class TTypedString : public CString {
public:
    using UnitType = Unit;

    // Terminated exactly when the byte length is given as kUnknown (measured up to the NUL).
    TTypedString(const void* buffer, uint32_t byteLength, uint32_t charCount = kUnknown, StorageMode mode = kCopy)
        : CString(buffer, byteLength, charCount, byteLength == kUnknown, *Encoding::instance(), mode)
    {
    }
    // A copy of NUL-terminated text.
    TTypedString(const Unit* text)
        : CString(text ? static_cast<const void*>(text) : static_cast<const void*>(&kNul), kUnknown, kUnknown, true,
                  *Encoding::instance(), kCopy)
    {
    }
    // A copy of `units` code units of text (kUnknown: up to the NUL). Note that the length counts
    // units here but bytes in the (buffer, byte length, ...) form above.
    TTypedString(const Unit* text, uint32_t units)
        : CString(text, unitsToBytes(units, sizeof(Unit)), kUnknown, units == kUnknown, *Encoding::instance(), kCopy)
    {
    }
    TTypedString(std::basic_string_view<Unit> text) : TTypedString(text.data(), static_cast<uint32_t>(text.size())) {}
    // Conversion of any string into this encoding.
    explicit TTypedString(const IString& source) : CString(source, *Encoding::instance()) {}

    const Unit* c_str() const { return reinterpret_cast<const Unit*>(getBuffer()); }

private:
    static constexpr uint32_t kNul = 0;
};

} // namespace kore
