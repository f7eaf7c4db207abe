#include "framework/UTF8Decoding.h"

#include <cstdint>

namespace kore {

bool decodeUTF8(std::string_view in, std::u16string& out, size_t* errorOffset)
{
    out.reserve(out.size() + in.size());
    for (size_t i = 0; i < in.size();) {
        const auto lead = static_cast<unsigned char>(in[i]);
        if (lead < 0x80) {
            out.push_back(lead);
            ++i;
            continue;
        }
        uint32_t cp = 0;
        size_t n = 0;
        uint32_t min = 0;
        if ((lead & 0xE0) == 0xC0) {
            cp = lead & 0x1F, n = 2, min = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            cp = lead & 0x0F, n = 3, min = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            cp = lead & 0x07, n = 4, min = 0x10000;
        }
        bool ok = n != 0 && in.size() - i >= n;
        for (size_t k = 1; ok && k < n; ++k) {
            const auto b = static_cast<unsigned char>(in[i + k]);
            ok = (b & 0xC0) == 0x80;
            cp = (cp << 6) | (b & 0x3F);
        }
        if (!ok || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            if (errorOffset)
                *errorOffset = i;
            return false;
        }
        appendUTF16(cp, out);
        i += n;
    }
    return true;
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
    return out;
}

} // namespace kore
