#include "framework/text/UTF8Decoding.h"

#include <cstdint>

namespace kore {

namespace {

// The length of the well-formed sequence at `i` with its code point in `cp`, or 0.
size_t decodeOne(std::string_view in, size_t i, uint32_t& cp)
{
    const auto lead = static_cast<unsigned char>(in[i]);
    if (lead < 0x80) {
        cp = lead;
        return 1;
    }
    size_t n = 0;
    uint32_t min = 0;
    if ((lead & 0xE0) == 0xC0) {
        cp = lead & 0x1F, n = 2, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        cp = lead & 0x0F, n = 3, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        cp = lead & 0x07, n = 4, min = 0x10000;
    }
    if (n == 0 || in.size() - i < n)
        return 0;
    for (size_t k = 1; k < n; ++k) {
        const auto b = static_cast<unsigned char>(in[i + k]);
        if ((b & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return n;
}

} // namespace

bool decodeUTF8(std::string_view in, std::u16string& out, size_t* errorOffset)
{
    out.reserve(out.size() + in.size());
    for (size_t i = 0; i < in.size();) {
        uint32_t cp = 0;
        const size_t n = decodeOne(in, i, cp);
        if (n == 0) {
            if (errorOffset)
                *errorOffset = i;
            return false;
        }
        appendUTF16(cp, out);
        i += n;
    }
    return true;
}

bool isValidUTF8(std::string_view in)
{
    uint32_t cp = 0;
    for (size_t i = 0, n = 0; i < in.size(); i += n) {
        n = decodeOne(in, i, cp);
        if (n == 0)
            return false;
    }
    return true;
}

void decodeUTF8Lenient(std::string_view in, std::u16string& out)
{
    out.reserve(out.size() + in.size());
    for (size_t i = 0; i < in.size();) {
        uint32_t cp = 0;
        const size_t n = decodeOne(in, i, cp);
        if (n != 0)
            appendUTF16(cp, out);
        i += n == 0 ? 1 : n;
    }
}

void appendUTF8(char32_t cp, std::string& out)
{
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

std::string encodeUTF8(std::u16string_view in)
{
    std::string out;
    out.reserve(in.size());
    for (size_t i = 0; i < in.size(); ++i) {
        uint32_t cp = in[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 && in[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
        }
        appendUTF8(cp, out);
    }
    return out;
}

} // namespace kore
