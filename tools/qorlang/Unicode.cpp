#include "Unicode.h"

#include "framework/text/UTF8Decoding.h"

namespace qorlang {

std::optional<std::u16string> decodeUtf8(std::string_view in)
{
    std::u16string out;
    if (!kore::decodeUTF8(in, out))
        return std::nullopt;
    return out;
}

std::string encodeUtf8(std::u16string_view in)
{
    return kore::encodeUTF8(in);
}

} // namespace qorlang
