#pragma once
// UTF-8 <-> UTF-16 for the translation tool. The framework's UTF-8 strings refuse a few
// well-formed lead bytes on purpose (a compatibility rule of theirs); translations must keep
// every character, so the tool converts with the complete decoder and this encoder instead.

#include <optional>
#include <string>
#include <string_view>

namespace qorlang {

// Strict: overlong forms, surrogates and truncated sequences give nullopt.
std::optional<std::u16string> decodeUtf8(std::string_view in);
// Unpaired surrogates are written as U+FFFD.
std::string encodeUtf8(std::u16string_view in);

} // namespace qorlang
