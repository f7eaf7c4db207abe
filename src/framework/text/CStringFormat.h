#pragma once
// The framework's formatter: printf-like fields filled one typed argument at a time, each argument
// checked against the field it fills.
//
//     CStringFormat f("%s-%s.qorlang");
//     f.pushString(appId);
//     f.pushString(tag);
//     P<IString> name = f.getResult();
//
// Fields: "%" [flags "-+ 0#" in any order, at most five] [width: digits or "*"]
// ["." precision: digits (none means 0) or "*"] [length modifier l ll L h hh z j t I64, ignored]
// letter: c C (character), d i o x X u (integer), e E f g G (floating point), s S (string).
// "%%" is a literal "%". A "*" takes its value from an integer pushed before the field's own
// argument; a negative value counts as 0. Widths and precisions go up to kMaxCount.
//
// Where the output differs from C's printf, on purpose:
// - the sign is not counted against the width ("%5d" of -42 gives "   -42", "%05d" gives "-00042");
// - except for x, X and o, the argument's own signedness decides between d and u, so a "u" field
//   given a negative signed value prints a minus sign, and a "d" field given an unsigned value
//   prints it unsigned;
// - a precision does not switch off zero padding ("%08.3d" of 42 gives "00000042");
// - "#" always writes its prefix, even for zero ("%#x" of 0 gives "0x0"), and for "o" the "0"
//   comes on top of the digits ("%#.3o" of 8 gives "0010");
// - a string cut by its precision is not padded to the width, and the zero flag pads strings with
//   "0" on either side.
// Floating-point numbers and ASCII characters are written by the C runtime (snprintf) from a field
// text ("%08.3f") rebuilt from the parsed field; the rest is written without it.
//
// Errors are CInvalidArgError: "CStringFormat::<operation>" as the method, and as the argument a
// message followed by the whole format and a closing "'". A malformed field throws when it is
// reached and then stands as a string field, so the formatter stays consistent. Taking the result
// while a field still waits for its argument throws CInvalidObjectStateError.
//
// The result is UTF-16. A formatter belongs to one thread at a time; it may live on the stack.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace kore {

class CStringFormat : public CObject {
public:
    // What the current field expects.
    enum Kind : uint32_t { kNone = 0, kInteger = 1, kFloat = 2, kChar = 3, kString = 4 };

    static constexpr uint32_t kEnd = 0xFFFFFFFF;
    // Width or precision not given.
    static constexpr int32_t kNotGiven = -1;
    // The largest width or precision, written or from "*" (a million characters of padding);
    // a larger one is refused with "field width out of range in '" (or "field precision ...")
    // before anything is allocated.
    static constexpr int32_t kMaxCount = 1 << 20;

    // Copies the format; literal text before the first field is in the output at once.
    explicit CStringFormat(const CStringArg& format);
    ~CStringFormat() override;
    CStringFormat(const CStringFormat&) = delete;
    CStringFormat& operator=(const CStringFormat&) = delete;

    // Each push fills the current field (or a pending "*" width or precision) and moves on to the
    // next field.
    void pushInt(int64_t value);
    void pushUInt(uint64_t value);
    void pushDouble(double value);
    void pushChar(uint32_t codePoint);
    // A null string pushes as the empty string.
    void pushString(const CStringArg& value);

    // The output as a new UTF-16 string. Throws CInvalidObjectStateError while a field or a "*"
    // still waits for its argument.
    P<IString> getResult() const;

    // True when every field has had its argument.
    bool isComplete() const { return m_kind == kNone && !m_widthPending && !m_precisionPending; }
    Kind getFieldKind() const { return static_cast<Kind>(m_kind); }

private:
    void goToNextFormatField();
    void scanField(size_t& pos);
    void doInt(uint64_t bits, bool isSigned);
    void doDouble(double value);
    void doString(const IString& value);
    void doChar(uint32_t codePoint);
    void checkNotPending(const char* context) const;
    void writeInteger(uint64_t bits, bool isSigned);
    void writeString(const IString& value);
    // Rebuilds m_spec from the field for the C runtime.
    void rebuildSpec(char16_t letter);
    void growScratch(size_t size);
    // Runs the C runtime on m_spec and appends what it writes.
    template <class T>
    void formatWithRuntime(size_t scratchSize, T value);
    [[noreturn]] void fail(const char* context, const char* message) const;

    std::u16string m_format;
    uint32_t m_position = 0;
    std::u16string m_output;

    // The current field.
    uint32_t m_kind = kNone;
    char16_t m_letter = 0;
    bool m_zeroPad = false;
    bool m_leftJustify = false;
    bool m_alternate = false;
    bool m_plusSign = false;
    bool m_spaceSign = false;
    bool m_widthPending = false;
    bool m_precisionPending = false;
    int32_t m_width = kNotGiven;
    int32_t m_precision = kNotGiven;
    // "%", up to five flags, width, ".", precision, letter, NUL.
    char m_spec[32] = {'%', 0};
    uint32_t m_specLength = 1;

    // Output of the C runtime; allocated on first use, grown on demand.
    std::unique_ptr<char[]> m_scratch;
    size_t m_scratchSize = 0;
};

namespace detail {

template <class T>
inline constexpr bool kIsCharType =
    std::is_same_v<T, char> || std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t> || std::is_same_v<T, wchar_t>;

template <class T>
void pushArgument(CStringFormat& format, const T& value)
{
    if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, char8_t>) {
        // Neither is a number, and a single UTF-8 unit is not a character.
        static_assert(!std::is_same_v<T, T>, "push a bool or a char8_t explicitly");
    } else if constexpr (kIsCharType<T>) {
        // Character types are characters; plain char reads as Latin-1, like narrow text.
        using Unsigned = std::make_unsigned_t<T>;
        format.pushChar(static_cast<uint32_t>(static_cast<Unsigned>(value)));
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        format.pushInt(static_cast<int64_t>(value));
    } else if constexpr (std::is_integral_v<T>) {
        format.pushUInt(static_cast<uint64_t>(value));
    } else if constexpr (std::is_floating_point_v<T>) {
        format.pushDouble(static_cast<double>(value));
    } else {
        static_assert(std::is_constructible_v<CStringArg, const T&>,
                      "formatString takes integers, floating-point numbers, characters and text");
        format.pushString(value);
    }
}

} // namespace detail

// Formats `args` into `format`, each pushed by its C++ type: signed and unsigned integers,
// floating-point numbers, character types (char as Latin-1, char16_t, char32_t, wchar_t) as
// characters, and anything a CStringArg accepts as a string.
template <class... Args>
P<IString> formatString(const CStringArg& format, const Args&... args)
{
    CStringFormat formatter(format);
    (detail::pushArgument(formatter, args), ...);
    return formatter.getResult();
}

} // namespace kore
