// Charsets through the Win32 code-page functions: gettext's charset names mapped to Windows code
// pages, converted by MultiByteToWideChar, which refuses invalid bytes.
#include "Charset.h"

#include <windows.h>

#include <algorithm>
#include <map>

namespace qorlang {

namespace {

unsigned codePageOf(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
    static const std::map<std::string, unsigned> pages = {
        {"UTF-8", 65001},       {"ISO-8859-1", 28591},  {"ISO-8859-2", 28592},  {"ISO-8859-3", 28593},
        {"ISO-8859-4", 28594},  {"ISO-8859-5", 28595},  {"ISO-8859-6", 28596},  {"ISO-8859-7", 28597},
        {"ISO-8859-8", 28598},  {"ISO-8859-9", 28599},  {"ISO-8859-13", 28603}, {"ISO-8859-15", 28605},
        {"KOI8-R", 20866},      {"KOI8-U", 21866},      {"EUC-JP", 20932},      {"SHIFT_JIS", 932},
        {"CP932", 932},         {"EUC-KR", 949},        {"CP949", 949},         {"GB2312", 936},
        {"GBK", 936},           {"CP936", 936},         {"GB18030", 54936},     {"BIG5", 950},
        {"CP950", 950},         {"TIS-620", 874},       {"CP874", 874},         {"CP850", 850},
        {"CP866", 866},         {"CP1250", 1250},       {"CP1251", 1251},       {"CP1252", 1252},
        {"CP1253", 1253},       {"CP1254", 1254},       {"CP1255", 1255},       {"CP1256", 1256},
        {"CP1257", 1257},       {"CP1258", 1258},       {"WINDOWS-1250", 1250}, {"WINDOWS-1251", 1251},
        {"WINDOWS-1252", 1252}, {"WINDOWS-1253", 1253}, {"WINDOWS-1254", 1254}, {"WINDOWS-1255", 1255},
        {"WINDOWS-1256", 1256}, {"WINDOWS-1257", 1257}, {"WINDOWS-1258", 1258}, {"US-ASCII", 20127},
        {"ASCII", 20127},       {"LATIN1", 28591},      {"LATIN2", 28592},
    };
    auto it = pages.find(name);
    return it == pages.end() ? 0 : it->second;
}

} // namespace

std::optional<CCharset> CCharset::open(std::string_view charset)
{
    const unsigned page = codePageOf(std::string(charset));
    if (page == 0 || !IsValidCodePage(page))
        return std::nullopt;
    return CCharset(std::string(charset), page);
}

std::optional<std::u16string> CCharset::decode(std::string_view bytes) const
{
    if (bytes.empty())
        return std::u16string();
    const int size = static_cast<int>(bytes.size());
    const int units = MultiByteToWideChar(m_codePage, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    if (units <= 0)
        return std::nullopt;
    std::u16string text(static_cast<size_t>(units), u'\0');
    if (MultiByteToWideChar(m_codePage, MB_ERR_INVALID_CHARS, bytes.data(), size,
                            reinterpret_cast<wchar_t*>(text.data()), units) != units)
        return std::nullopt;
    return text;
}

} // namespace qorlang
