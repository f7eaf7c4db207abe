#include "framework/io/CURI.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CURIFormatError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/FileSystemSupport.h"
#include "framework/text/CString.h"
#include "framework/text/UTF8Decoding.h"

#include <string_view>
#include <vector>

namespace kore {

namespace {

const char kHexDigits[] = "0123456789ABCDEF";

bool isAlpha(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHex(char c)
{
    return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    return (c | 0x20) - 'a' + 10;
}

bool isUnreserved(char c)
{
    return isAlpha(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool isSubDelim(char c)
{
    return std::string_view("!$&'()*+,;=").find(c) != std::string_view::npos;
}

// A character that stands for itself inside one path segment.
bool isPChar(char c)
{
    return isUnreserved(c) || isSubDelim(c) || c == ':' || c == '@';
}

bool isSeparator(char c)
{
    return c == '/' || c == '\\';
}

char toLower(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c;
}

void appendEscaped(std::string& out, unsigned char c)
{
    out += '%';
    out += kHexDigits[c >> 4];
    out += kHexDigits[c & 15];
}

// Escapes everything that may not stand literally in a path segment: spaces, "%", "#", "?",
// "/", "\", non-ASCII bytes (the UTF-8 form of the character) and the rest.
std::string escapeSegment(std::string_view raw)
{
    std::string out;
    out.reserve(raw.size());
    for (char c : raw) {
        if (isPChar(c))
            out += c;
        else
            appendEscaped(out, static_cast<unsigned char>(c));
    }
    return out;
}

bool isLocalhost(std::string_view host)
{
    std::string lower;
    for (char c : host)
        lower += toLower(c);
    return lower == "localhost";
}

std::string escapeHost(std::string_view raw)
{
    std::string out;
    for (char c : raw) {
        if (isUnreserved(c) || isSubDelim(c))
            out += c;
        else
            appendEscaped(out, static_cast<unsigned char>(c));
    }
    // "file://localhost/x" is read as the local file "/x", but the UNC path "\\localhost\x"
    // names a share: its last letter stays escaped so that the text reads back as the same place.
    if (isLocalhost(out)) {
        const unsigned char last = static_cast<unsigned char>(out.back());
        out.pop_back();
        appendEscaped(out, last);
    }
    return out;
}

// Decodes "%XX" escapes; the text is already validated, so every "%" has two hex digits.
std::string unescape(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && isHex(text[i + 1]) && isHex(text[i + 2])) {
            out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

[[noreturn]] void throwFormat(const CStringArg& text)
{
    throw CURIFormatError(text);
}

enum class Component { kAuthority, kPath, kQueryOrFragment };

bool allowedIn(Component component, char c)
{
    if (isUnreserved(c) || isSubDelim(c) || c == ':' || c == '@')
        return true;
    switch (component) {
    case Component::kAuthority: return c == '[' || c == ']';
    case Component::kPath: return c == '/';
    case Component::kQueryOrFragment: return c == '/' || c == '?';
    }
    return false;
}

// Validates one component of URI text and brings it into normal form: escapes in upper case,
// spaces and non-ASCII bytes escaped. Anything else that a URI may not hold is a format error.
std::string normaliseComponent(std::string_view raw, Component component, const CStringArg& text)
{
    std::string out;
    out.reserve(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        const auto u = static_cast<unsigned char>(c);
        if (c == '%') {
            if (i + 2 >= raw.size() || !isHex(raw[i + 1]) || !isHex(raw[i + 2]))
                throwFormat(text);
            out += '%';
            out += kHexDigits[hexValue(raw[i + 1])];
            out += kHexDigits[hexValue(raw[i + 2])];
            i += 2;
        } else if (c == ' ' || u >= 0x80) {
            appendEscaped(out, u);
        } else if (allowedIn(component, c)) {
            out += c;
        } else {
            throwFormat(text);
        }
    }
    return out;
}

// Length of a leading scheme followed by ":" (two characters at least: one letter is a drive),
// or 0 when the text does not start with one.
size_t schemeLength(std::string_view s)
{
    if (s.empty() || !isAlpha(s[0]))
        return 0;
    size_t i = 1;
    while (i < s.size() && (isAlpha(s[i]) || isDigit(s[i]) || s[i] == '+' || s[i] == '-' || s[i] == '.'))
        ++i;
    if (i < 2 || i >= s.size() || s[i] != ':')
        return 0;
    return i;
}

// "X:" at the start of `s`, followed by a separator or the end.
bool startsWithDrive(std::string_view s)
{
    return s.size() >= 2 && isAlpha(s[0]) && s[1] == ':' && (s.size() == 2 || isSeparator(s[2]));
}

// Splits at the separators; empty segments (doubled separators) are dropped.
std::vector<std::string_view> splitSegments(std::string_view s, bool backslashSeparates)
{
    std::vector<std::string_view> segments;
    size_t start = 0;
    for (size_t i = 0; i <= s.size(); ++i) {
        if (i == s.size() || s[i] == '/' || (backslashSeparates && s[i] == '\\')) {
            if (i > start)
                segments.push_back(s.substr(start, i - start));
            start = i + 1;
        }
    }
    return segments;
}

std::string joinEscaped(const std::vector<std::string_view>& segments, size_t first, bool trailing)
{
    std::string path;
    for (size_t i = first; i < segments.size(); ++i) {
        path += '/';
        path += escapeSegment(segments[i]);
    }
    if (path.empty() || trailing)
        path += '/';
    return path;
}

} // namespace

CURI::CURI(Parts parts) : m_parts(std::move(parts))
{
    std::string text = m_parts.scheme + ':';
    if (m_parts.hasAuthority)
        text += "//" + m_parts.authority;
    text += m_parts.path;
    if (m_parts.hasQuery)
        text += '?' + m_parts.query;
    if (m_parts.hasFragment)
        text += '#' + m_parts.fragment;
    m_text = CString::fromUTF8(text);
}

P<CURI> CURI::fromURIText(const CStringArg& text)
{
    const std::string s = text->toUTF8();
    const size_t schemeEnd = schemeLength(s);
    if (schemeEnd == 0)
        throwFormat(text);

    Parts parts;
    for (size_t i = 0; i < schemeEnd; ++i)
        parts.scheme += toLower(s[i]);

    std::string_view rest = std::string_view(s).substr(schemeEnd + 1);
    if (const size_t hash = rest.find('#'); hash != std::string_view::npos) {
        parts.hasFragment = true;
        parts.fragment = normaliseComponent(rest.substr(hash + 1), Component::kQueryOrFragment, text);
        rest = rest.substr(0, hash);
    }
    if (const size_t question = rest.find('?'); question != std::string_view::npos) {
        parts.hasQuery = true;
        parts.query = normaliseComponent(rest.substr(question + 1), Component::kQueryOrFragment, text);
        rest = rest.substr(0, question);
    }
    if (rest.substr(0, 2) == "//") {
        rest = rest.substr(2);
        const size_t slash = rest.find('/');
        parts.hasAuthority = true;
        parts.authority = normaliseComponent(rest.substr(0, slash), Component::kAuthority, text);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash);
    }
    parts.path = normaliseComponent(rest, Component::kPath, text);

    if (parts.scheme == "file") {
        if (parts.hasAuthority) {
            if (isLocalhost(parts.authority)) {
                parts.authority.clear();
            } else if (startsWithDrive(parts.authority) && parts.authority.size() == 2) {
                // "file://C:/x": a drive written where the host belongs.
                parts.path = '/' + parts.authority + parts.path;
                parts.authority.clear();
            }
        } else if (!parts.path.empty() && parts.path[0] == '/') {
            parts.hasAuthority = true;
        } else if (startsWithDrive(parts.path)) {
            parts.hasAuthority = true;
            parts.path = '/' + parts.path;
        } else {
            // A file URI names an absolute location.
            throwFormat(text);
        }
        if (parts.path.empty())
            parts.path = "/";
    }
    return P<CURI>::adopt(new CURI(std::move(parts)));
}

P<CURI> CURI::fromLocalPath(const CStringArg& path)
{
    std::string s = path->toUTF8();
    if (s.find('\0') != std::string::npos)
        throwFormat(path);
    // The "\\?\" and "\\?\UNC\" prefixes of long Windows paths.
    if (s.size() >= 4 && isSeparator(s[0]) && isSeparator(s[1]) && s[2] == '?' && isSeparator(s[3])) {
        s.erase(0, 4);
        if (s.size() >= 4 && (s[0] | 0x20) == 'u' && (s[1] | 0x20) == 'n' && (s[2] | 0x20) == 'c' && isSeparator(s[3]))
            s = "\\\\" + s.substr(4);
        else if (!startsWithDrive(s))
            throwFormat(path);
    }

    Parts parts;
    parts.scheme = "file";
    parts.hasAuthority = true;
    const bool trailing = !s.empty() && isSeparator(s.back());
    if (s.size() >= 2 && isSeparator(s[0]) && isSeparator(s[1])) {
        const std::vector<std::string_view> segments = splitSegments(std::string_view(s).substr(2), true);
        // The host must follow the two separators directly; "\\.\" and "\\?\" are device paths.
        if (segments.empty() || s.size() < 3 || isSeparator(s[2]) || segments[0] == "." || segments[0] == "?")
            throwFormat(path);
        parts.authority = escapeHost(segments[0]);
        parts.path = joinEscaped(segments, 1, trailing);
    } else if (startsWithDrive(s)) {
        const std::vector<std::string_view> segments = splitSegments(std::string_view(s).substr(2), true);
        parts.path = '/' + s.substr(0, 2) + joinEscaped(segments, 0, trailing);
    } else if (!s.empty() && s[0] == '/') {
        // POSIX: only "/" separates; a backslash is part of a name.
        parts.path = joinEscaped(splitSegments(s, false), 0, trailing);
    } else {
        throwFormat(path);
    }
    return P<CURI>::adopt(new CURI(std::move(parts)));
}

P<CURI> CURI::fromLocation(const CStringArg& location)
{
    if (schemeLength(location->toUTF8()) != 0)
        return fromURIText(location);
    return fromLocalPath(location);
}

P<IString> CURI::toString() const
{
    return m_text;
}

P<IString> CURI::getScheme() const
{
    return CString::fromUTF8(m_parts.scheme);
}

bool CURI::isFile() const
{
    return m_parts.scheme == "file";
}

P<IString> CURI::getHost() const
{
    std::string_view host = m_parts.authority;
    if (const size_t at = host.rfind('@'); at != std::string_view::npos)
        host = host.substr(at + 1);
    if (!host.empty() && host[0] == '[') {
        host = host.substr(0, host.find(']') + 1);
    } else if (const size_t colon = host.rfind(':'); colon != std::string_view::npos) {
        host = host.substr(0, colon);
    }
    return CString::fromUTF8(unescape(host));
}

P<IString> CURI::getPath() const
{
    return CString::fromUTF8(m_parts.path);
}

P<IString> CURI::getName() const
{
    std::string_view path = m_parts.path;
    if (!path.empty() && path.back() == '/')
        path.remove_suffix(1);
    const size_t slash = path.rfind('/');
    if (slash != std::string_view::npos)
        path = path.substr(slash + 1);
    return CString::fromUTF8(unescape(path));
}

bool CURI::isFolder() const
{
    return !m_parts.path.empty() && m_parts.path.back() == '/';
}

P<IString> CURI::getLocalPath() const
{
    return getLocalPath(kNativePath);
}

P<IString> CURI::getLocalPath(PathStyle style) const
{
    if (!isFile())
        throw CURITypeNotSupportedError(this);
    const bool windows = style == kWindowsPath || (style == kNativePath && platform::usesWindowsPaths());
    const char separator = windows ? '\\' : '/';

    // Decode segment by segment, so that an escaped separator cannot split a name in two.
    std::string decoded;
    for (std::string_view segment : splitSegments(m_parts.path, false)) {
        const std::string name = unescape(segment);
        if (name.find('\0') != std::string::npos || name.find('/') != std::string::npos ||
            (windows && name.find('\\') != std::string::npos))
            throw CURIFormatError(this);
        decoded += separator;
        decoded += name;
    }
    if (decoded.empty() || isFolder())
        decoded += separator;
    if (!isValidUTF8(decoded))
        throw CURIFormatError(this);

    const std::string host = unescape(m_parts.authority);
    if (!host.empty()) {
        if (!windows)
            throw CURITypeNotSupportedError(this);
        if (host.find_first_of(std::string_view("\\/\0", 3)) != std::string::npos || !isValidUTF8(host))
            throw CURIFormatError(this);
        return CString::fromUTF8("\\\\" + host + decoded);
    }
    if (windows && startsWithDrive(std::string_view(decoded).substr(1))) {
        decoded.erase(0, 1);
        if (decoded.size() == 2)
            decoded += '\\';
    }
    return CString::fromUTF8(decoded);
}

P<IURI> CURI::resolve(const CStringArg& name, bool asFolder) const
{
    const std::string raw = name->toUTF8();
    if (raw.empty() || raw == "." || raw == ".." || raw.find_first_of(std::string_view("/\0", 2)) != std::string::npos)
        throw CInvalidArgError(this, "CURI::resolve", "name");
    // An opaque URI ("mailto:x") has no folders to resolve in.
    if (!m_parts.hasAuthority && (m_parts.path.empty() || m_parts.path[0] != '/'))
        throw CURITypeNotSupportedError(this);

    Parts parts;
    parts.scheme = m_parts.scheme;
    parts.hasAuthority = m_parts.hasAuthority;
    parts.authority = m_parts.authority;
    parts.path = m_parts.path;
    if (parts.path.empty() || parts.path.back() != '/')
        parts.path += '/';
    parts.path += escapeSegment(raw);
    if (asFolder)
        parts.path += '/';
    return P<IURI>::adopt(new CURI(std::move(parts)));
}

} // namespace kore
