// Charsets through iconv (glibc's, on Linux).
#include "Charset.h"

#include <cerrno>
#include <iconv.h>

namespace qorlang {

namespace {

// Native order, so that two bytes are one UTF-16 unit as they are.
const char* const kUtf16 = "UTF-16LE";

struct Conversion {
    iconv_t handle;
    explicit Conversion(const std::string& from) : handle(iconv_open(kUtf16, from.c_str())) {}
    ~Conversion()
    {
        if (handle != reinterpret_cast<iconv_t>(-1))
            iconv_close(handle);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    bool valid() const { return handle != reinterpret_cast<iconv_t>(-1); }
};

} // namespace

std::optional<CCharset> CCharset::open(std::string_view charset)
{
    std::string name(charset);
    if (!Conversion(name).valid())
        return std::nullopt;
    return CCharset(std::move(name), 0);
}

std::optional<std::u16string> CCharset::decode(std::string_view bytes) const
{
    Conversion conversion(m_name);
    if (!conversion.valid())
        return std::nullopt;
    std::string out(bytes.size() * 4 + 8, '\0'); // a byte gives at most two units (four bytes)
    char* in = const_cast<char*>(bytes.data());
    size_t inLeft = bytes.size();
    char* to = out.data();
    size_t toLeft = out.size();
    // One call converts everything; an invalid or truncated sequence stops it.
    if (iconv(conversion.handle, &in, &inLeft, &to, &toLeft) == static_cast<size_t>(-1) || inLeft != 0)
        return std::nullopt;
    if (iconv(conversion.handle, nullptr, nullptr, &to, &toLeft) == static_cast<size_t>(-1))
        return std::nullopt;
    const size_t produced = out.size() - toLeft;
    std::u16string text(produced / 2, u'\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(static_cast<unsigned char>(out[2 * i]) |
                                        static_cast<unsigned char>(out[2 * i + 1]) << 8);
    return text;
}

} // namespace qorlang
