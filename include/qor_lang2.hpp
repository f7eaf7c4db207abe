/*
 * qor_lang2.hpp: a header-only C++ layer over qor_lang2.h (C++17 or later).
 *
 * - qor_lang2::String owns a string the library returned and gives it back to
 *   QOR_LANG2_freeWideString exactly once; qor_lang2::File owns a language-file handle and gives
 *   it back to QOR_LANG2_freeQorLangFile. Both are move-only.
 * - Every function that takes text has two overloads: UTF-16 (std::u16string_view) and UTF-8
 *   (std::string_view). tr() answers in the kind of text it was given; the others return a
 *   String, which converts to either kind.
 * - Nothing here throws except std::bad_alloc (for the library's answer "out of memory") and what
 *   the standard containers throw.
 *
 *     qor_lang2::add("/usr/share/myapp/lang", "myapp");
 *     qor_lang2::setCurrentLanguage("de-DE");
 *     std::string title = qor_lang2::tr("app.title", "My application");
 *     std::string files = qor_lang2::format(qor_lang2::trn("{0} file", "{0} files", n), n);
 *     std::string open  = qor_lang2::trc("menu", "Open", "Open");
 */
#ifndef QOR_LANG2_HPP
#define QOR_LANG2_HPP

#include "qor_lang2.h"

#include <cstddef>
#include <cstdint>
#include <locale>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace qor_lang2 {

using Char = QOR_LANG2_CHAR;
static_assert(sizeof(Char) == sizeof(char16_t), "the library's strings are UTF-16");

/* ---- UTF-8 <-> UTF-16. Invalid input never fails: each bad sequence or unpaired surrogate
 * becomes U+FFFD, as a user interface would show it anyway. ---- */

inline std::u16string toUtf16(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    const std::size_t size = utf8.size();
    for (std::size_t i = 0; i < size;) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if (lead < 0x80) {
            out.push_back(lead);
            ++i;
            continue;
        }
        std::size_t length = 0;
        char32_t cp = 0, min = 0;
        if (lead >= 0xC2 && lead <= 0xDF)
            length = 2, cp = lead & 0x1Fu, min = 0x80;
        else if (lead >= 0xE0 && lead <= 0xEF)
            length = 3, cp = lead & 0x0Fu, min = 0x800;
        else if (lead >= 0xF0 && lead <= 0xF4)
            length = 4, cp = lead & 0x07u, min = 0x10000;
        // A bad sequence counts as one replacement up to its first byte that cannot continue it.
        std::size_t used = 1;
        for (; length && used < length && i + used < size; ++used) {
            const auto next = static_cast<unsigned char>(utf8[i + used]);
            if ((next & 0xC0u) != 0x80u)
                break;
            cp = (cp << 6) | (next & 0x3Fu);
        }
        if (length == 0 || used != length || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(u'\xFFFD');
        } else if (cp >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
        i += used;
    }
    return out;
}

inline std::string toUtf8(std::u16string_view utf16)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t cp = utf16[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 && utf16[i + 1] <= 0xDFFF)
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[++i] - 0xDC00);
        else if (cp >= 0xD800 && cp <= 0xDFFF)
            cp = 0xFFFD;
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

namespace detail {

// A zero-terminated copy of the caller's text in the library's character type (string views
// need not end in a zero, and on Windows the type is wchar_t).
class Arg {
public:
    explicit Arg(std::u16string_view text) : m_text(text.begin(), text.end()) {}
    explicit Arg(std::string_view utf8) : m_text(native(toUtf16(utf8))) {}
    const Char* get() const noexcept { return m_text.c_str(); }

private:
    // A template, so that the branch not taken is never compiled.
    template <typename C = Char>
    static std::basic_string<C> native(std::u16string&& text)
    {
        if constexpr (std::is_same_v<C, char16_t>)
            return std::move(text);
        else
            return std::basic_string<C>(text.begin(), text.end());
    }

    std::basic_string<Char> m_text;
};

// Move-only owner of one thing the library handed out; Free gives it back exactly once.
template <typename T, typename Free>
class Owner {
public:
    Owner() noexcept = default;
    explicit Owner(T owned) noexcept : m_owned(owned) {}
    Owner(Owner&& other) noexcept : m_owned(other.release()) {}
    Owner& operator=(Owner&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { reset(); }

    explicit operator bool() const noexcept { return m_owned != nullptr; }
    T get() const noexcept { return m_owned; }
    // Hands it over: the caller must give it back to the library.
    T release() noexcept { return std::exchange(m_owned, nullptr); }
    void reset(T owned = nullptr) noexcept
    {
        if (T old = std::exchange(m_owned, owned))
            Free()(old);
    }

private:
    T m_owned = nullptr;
};

struct FreeString {
    void operator()(Char* text) const noexcept { QOR_LANG2_freeWideString(text); }
};
struct FreeFile {
    void operator()(QOR_LANG2_FILE_HANDLE file) const noexcept { QOR_LANG2_freeQorLangFile(file); }
};

} // namespace detail

/* Owns one string returned by the library (QOR_LANG2_freeWideString); may be null where the C
 * function may answer null. */
class String : public detail::Owner<Char*, detail::FreeString> {
public:
    using Owner::Owner;

    // The text; empty for null.
    std::basic_string_view<Char> view() const noexcept
    {
        return get() ? std::basic_string_view<Char>(get()) : std::basic_string_view<Char>();
    }
    std::u16string u16() const
    {
        const auto text = view();
        return std::u16string(text.begin(), text.end());
    }
    std::string utf8() const { return toUtf8(u16()); }
};

namespace detail {

// For the answers that are null only when the library ran out of memory.
inline String required(Char* owned)
{
    if (!owned)
        throw std::bad_alloc();
    return String(owned);
}

} // namespace detail

/* Owns one language-file handle (QOR_LANG2_freeQorLangFile); null when there was no such file. */
class File : public detail::Owner<QOR_LANG2_FILE_HANDLE, detail::FreeFile> {
public:
    using Owner::Owner;

    // The descriptive data; a null String for a null File, an empty one for an item the file
    // lacks.
    String appId() const { return ask(QOR_LANG2_FILE_getAppID); }
    String author() const { return ask(QOR_LANG2_FILE_getAuthor); }
    String comment() const { return ask(QOR_LANG2_FILE_getComment); }
    String englishName() const { return ask(QOR_LANG2_FILE_getEnglishName); }
    String englishSubName() const { return ask(QOR_LANG2_FILE_getEnglishSubName); }
    String nativeName() const { return ask(QOR_LANG2_FILE_getNativeName); }
    String nativeSubName() const { return ask(QOR_LANG2_FILE_getNativeSubName); }
    String languageId() const { return ask(QOR_LANG2_FILE_getLanguageID); }

private:
    String ask(Char* (*accessor)(QOR_LANG2_FILE_HANDLE)) const { return get() ? String(accessor(get())) : String(); }
};

/* ---- The functions ---- */

// Registers a folder of language files (an absolute local path) under an application id.
// 0, or -1 when the path cannot be used.
inline int32_t add(std::u16string_view folderPath, std::u16string_view appId)
{
    return QOR_LANG2_add(detail::Arg(folderPath).get(), nullptr, detail::Arg(appId).get());
}
inline int32_t add(std::string_view folderPath, std::string_view appId)
{
    return QOR_LANG2_add(detail::Arg(folderPath).get(), nullptr, detail::Arg(appId).get());
}

// The same with a "file:" URI text.
inline int32_t addEx(std::u16string_view folderUri, std::u16string_view appId)
{
    return QOR_LANG2_addEx(detail::Arg(folderUri).get(), detail::Arg(appId).get());
}
inline int32_t addEx(std::string_view folderUri, std::string_view appId)
{
    return QOR_LANG2_addEx(detail::Arg(folderUri).get(), detail::Arg(appId).get());
}

inline int32_t reload() { return QOR_LANG2_reload(); }

// 0, or 20 for a tag that is not language-COUNTRY.
inline int32_t setCurrentLanguage(std::u16string_view tag) { return QOR_LANG2_setCurrentLanguage(detail::Arg(tag).get()); }
inline int32_t setCurrentLanguage(std::string_view tag) { return QOR_LANG2_setCurrentLanguage(detail::Arg(tag).get()); }

// Empty before a language was set.
inline String currentLanguage() { return detail::required(QOR_LANG2_getCurrentLanguage()); }

inline int32_t languageCount(std::u16string_view appId) { return QOR_LANG2_getLanguageCount(detail::Arg(appId).get()); }
inline int32_t languageCount(std::string_view appId) { return QOR_LANG2_getLanguageCount(detail::Arg(appId).get()); }

// The tag of the index-th file; null for an unknown id or an index out of range.
inline String language(std::u16string_view appId, int32_t index)
{
    return String(QOR_LANG2_getLanguage(detail::Arg(appId).get(), index));
}
inline String language(std::string_view appId, int32_t index)
{
    return String(QOR_LANG2_getLanguage(detail::Arg(appId).get(), index));
}

// The index-th file; null for an unknown id or an index out of range.
inline File languageFile(std::u16string_view appId, int32_t index)
{
    return File(QOR_LANG2_getLanguageFile(detail::Arg(appId).get(), index));
}
inline File languageFile(std::string_view appId, int32_t index)
{
    return File(QOR_LANG2_getLanguageFile(detail::Arg(appId).get(), index));
}

// The local path of prefix + tag + infix + suffix in the folder, current tag first, "en-US"
// second; null when neither exists.
inline String findLocalizedFile(std::u16string_view folderUri, std::u16string_view prefix,
                                std::u16string_view infix, std::u16string_view suffix)
{
    return String(QOR_LANG2_findLocalizedFile(detail::Arg(folderUri).get(), detail::Arg(prefix).get(),
                                              detail::Arg(infix).get(), detail::Arg(suffix).get()));
}
inline String findLocalizedFile(std::string_view folderUri, std::string_view prefix, std::string_view infix,
                                std::string_view suffix)
{
    return String(QOR_LANG2_findLocalizedFile(detail::Arg(folderUri).get(), detail::Arg(prefix).get(),
                                              detail::Arg(infix).get(), detail::Arg(suffix).get()));
}

// The text of `key` in the current language, else `defaultText`.
inline std::u16string tr(std::u16string_view key, std::u16string_view defaultText)
{
    return detail::required(QOR_LANG2_getLocalString(detail::Arg(key).get(), detail::Arg(defaultText).get())).u16();
}
inline std::string tr(std::string_view key, std::string_view defaultText)
{
    return detail::required(QOR_LANG2_getLocalString(detail::Arg(key).get(), detail::Arg(defaultText).get())).utf8();
}

/* ---- Plural forms and context. A plural entry of msgid `key` answers the form the current
 * language's plural rule gives `n`; without one (or without that form), `key` answers for n == 1
 * and `pluralKey` otherwise, as gettext's ngettext does. A context is spelt as gettext's pgettext
 * spells it: context + U+0004 + key. ---- */

namespace detail {

// key + U+0005 + decimal(n): the library reads this as "the form of entry key + U+0005 for n".
template <typename S>
S countedKey(S key, unsigned long n)
{
    key.push_back(typename S::value_type(5));
    const std::string digits = std::to_string(n);
    key.append(digits.begin(), digits.end());
    return key;
}

template <typename S, typename V>
S contextKey(V context, V key)
{
    S out(context.begin(), context.end());
    out.push_back(typename S::value_type(4));
    out.append(key.begin(), key.end());
    return out;
}

template <typename S, typename V>
S plural(S key, V singular, V pluralKey, unsigned long n)
{
    const V fallback = n == 1 ? singular : pluralKey;
    return tr(V(countedKey(std::move(key), n)), fallback);
}

} // namespace detail

inline std::u16string trn(std::u16string_view key, std::u16string_view pluralKey, unsigned long n)
{
    return detail::plural(std::u16string(key), key, pluralKey, n);
}
inline std::string trn(std::string_view key, std::string_view pluralKey, unsigned long n)
{
    return detail::plural(std::string(key), key, pluralKey, n);
}

inline std::u16string trc(std::u16string_view context, std::u16string_view key, std::u16string_view defaultText)
{
    return tr(detail::contextKey<std::u16string>(context, key), defaultText);
}
inline std::string trc(std::string_view context, std::string_view key, std::string_view defaultText)
{
    return tr(detail::contextKey<std::string>(context, key), defaultText);
}

inline std::u16string trnc(std::u16string_view context, std::u16string_view key, std::u16string_view pluralKey,
                           unsigned long n)
{
    return detail::plural(detail::contextKey<std::u16string>(context, key), key, pluralKey, n);
}
inline std::string trnc(std::string_view context, std::string_view key, std::string_view pluralKey, unsigned long n)
{
    return detail::plural(detail::contextKey<std::string>(context, key), key, pluralKey, n);
}

/* ---- Arguments. format(text, args...) puts argument i where text has {i}, so a translation may
 * reorder them ("{1} von {0}"). "{{" and "}}" stand for a brace. Anything else - "{x}", "{5}"
 * with fewer arguments, a lone brace - is left as written, so a faulty translation shows its
 * mistake instead of losing text. Arguments are text (in either kind, converted to the kind of
 * `text`) or anything an std::ostream prints, printed in the classic "C" locale. ---- */

namespace detail {

template <typename S>
S asText(std::u16string_view arg)
{
    if constexpr (std::is_same_v<S, std::u16string>)
        return S(arg);
    else
        return toUtf8(arg);
}
template <typename S>
S asText(std::string_view arg)
{
    if constexpr (std::is_same_v<S, std::string>)
        return S(arg);
    else
        return toUtf16(arg);
}
template <typename S, typename T>
S asText(const T& arg)
{
    if constexpr (std::is_convertible_v<const T&, std::string_view>)
        return asText<S>(std::string_view(arg));
    else if constexpr (std::is_convertible_v<const T&, std::u16string_view>)
        return asText<S>(std::u16string_view(arg));
    else {
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out << arg;
        return asText<S>(std::string_view(out.str()));
    }
}

template <typename C>
std::basic_string<C> substitute(std::basic_string_view<C> text, const std::basic_string<C>* args, std::size_t count)
{
    std::basic_string<C> out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const C c = text[i];
        if ((c == C('{') || c == C('}')) && i + 1 < text.size() && text[i + 1] == c) {
            out.push_back(c); // "{{" or "}}"
            ++i;
            continue;
        }
        if (c == C('{')) {
            // {digits}: at most nine of them, so that the number always fits
            std::size_t end = i + 1, index = 0;
            while (end < text.size() && end - i <= 9 && text[end] >= C('0') && text[end] <= C('9'))
                index = index * 10 + static_cast<std::size_t>(text[end++] - C('0'));
            if (end > i + 1 && end < text.size() && text[end] == C('}') && index < count) {
                out += args[index];
                i = end;
                continue;
            }
        }
        out.push_back(c);
    }
    return out;
}

template <typename C, typename... Args>
std::basic_string<C> format(std::basic_string_view<C> text, const Args&... args)
{
    const std::basic_string<C> texts[sizeof...(Args) + 1] = {asText<std::basic_string<C>>(args)...};
    return substitute(text, texts, sizeof...(Args));
}

} // namespace detail

template <typename... Args>
std::u16string format(std::u16string_view text, const Args&... args)
{
    return detail::format(text, args...);
}
template <typename... Args>
std::string format(std::string_view text, const Args&... args)
{
    return detail::format(text, args...);
}

} // namespace qor_lang2

#endif /* QOR_LANG2_HPP */
