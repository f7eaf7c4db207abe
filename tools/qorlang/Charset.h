#pragma once
// Texts in a catalogue's declared charset (PO "Content-Type: ...; charset=KOI8-R"), converted by
// the system's own converter: iconv on Linux, the Win32 code-page functions on Windows.

#include <optional>
#include <string>
#include <string_view>

namespace qorlang {

// A converter for `charset` (any letter case), or the reason there is none.
class CCharset {
public:
    // nullopt when this system cannot convert from `charset`.
    static std::optional<CCharset> open(std::string_view charset);
    // The text of `bytes`; nullopt when they are not valid in the charset.
    std::optional<std::u16string> decode(std::string_view bytes) const;
    const std::string& name() const { return m_name; }

private:
    explicit CCharset(std::string name, unsigned codePage) : m_name(std::move(name)), m_codePage(codePage) {}
    std::string m_name;
    [[maybe_unused]] unsigned m_codePage; // read on Windows only; 0 elsewhere
};

} // namespace qorlang
