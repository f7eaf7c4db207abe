// gettext PO: read as msgfmt reads it (contexts, plural forms, fuzzy and obsolete entries, the
// header entry), written so that msgfmt --check accepts it.
#include "Charset.h"
#include "Formats.h"
#include "Unicode.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <ctime>
#include <map>

namespace qorlang {

namespace {

enum class Field { None, Context, Id, IdPlural, Str };

struct PoEntry {
    int line = 0;
    bool fuzzy = false;
    bool obsolete = false;
    bool cFormat = false;
    std::optional<std::string> context;
    std::optional<std::string> id;
    std::optional<std::string> idPlural;
    std::map<int, std::string> strs; // msgstr (index 0) or msgstr[N]
    std::string translatorComment; // "# " lines, kept for the header
};

class CPoParser {
public:
    CPoParser(const std::string& path, const std::string& bytes) : m_path(path), m_bytes(bytes) {}

    Catalogue parse()
    {
        m_catalogue.path = m_path;
        size_t pos = 0;
        if (m_bytes.rfind("\xEF\xBB\xBF", 0) == 0)
            pos = 3;
        for (int number = 1; pos <= m_bytes.size(); ++number) {
            size_t end = m_bytes.find('\n', pos);
            if (end == std::string::npos)
                end = m_bytes.size();
            std::string_view line(m_bytes.data() + pos, end - pos);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            m_line = number;
            parseLine(line);
            pos = end + 1;
        }
        finishEntry();
        return std::move(m_catalogue);
    }

private:
    [[noreturn]] void error(std::string_view message) const { fail(m_path, m_line, message); }

    static std::string_view trimLeft(std::string_view s)
    {
        while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
            s.remove_prefix(1);
        return s;
    }

    bool complete() const { return !m_entry.strs.empty(); }

    void parseLine(std::string_view line)
    {
        line = trimLeft(line);
        if (line.empty())
            return;
        if (line[0] == '#') {
            if (line.size() >= 2 && line[1] == '~') {
                line.remove_prefix(2);
                if (!line.empty() && line[0] == '|')
                    return; // the previous text of an obsolete entry
                if (line.find_first_not_of(" \t") == std::string_view::npos)
                    return;
                // Keyword lines of an obsolete entry: read, and marked so that nothing uses them.
                line = trimLeft(line);
                // A new entry starts here unless the line continues this one's strings (a
                // string, or msgstr[N] after msgstr[0]).
                if (line[0] != '"' && line.rfind("msgstr", 0) != 0 && complete())
                    finishEntry();
                m_entry.obsolete = true;
                parseKeywordLine(line);
                return;
            }
            if (complete())
                finishEntry();
            if (line.size() >= 2 && line[1] == ',') {
                for (size_t at = line.find("fuzzy", 2); at != std::string_view::npos; at = line.find("fuzzy", at + 1)) {
                    const bool startOk = line[at - 1] == ',' || line[at - 1] == ' ' || line[at - 1] == '\t';
                    const size_t after = at + 5;
                    const bool endOk =
                        after == line.size() || line[after] == ',' || line[after] == ' ' || line[after] == '\t';
                    if (startOk && endOk)
                        m_entry.fuzzy = true;
                }
                for (size_t at = line.find("c-format", 2); at != std::string_view::npos;
                     at = line.find("c-format", at + 1)) {
                    if (line[at - 1] == ',' || line[at - 1] == ' ' || line[at - 1] == '\t')
                        m_entry.cFormat = true;
                }
            } else if (line.size() == 1 || line[1] == ' ' || line[1] == '\t') {
                std::string_view text = line.substr(1);
                if (!text.empty())
                    text.remove_prefix(1);
                if (!m_entry.translatorComment.empty() || m_commentLines > 0)
                    m_entry.translatorComment += '\n';
                m_entry.translatorComment += text;
                ++m_commentLines;
            }
            return;
        }
        parseKeywordLine(line);
    }

    void parseKeywordLine(std::string_view line)
    {
        if (line[0] == '"') {
            if (!m_current)
                error("a string continues nothing");
            *m_current += parseString(line);
            return;
        }
        size_t end = 0;
        while (end < line.size() && line[end] != ' ' && line[end] != '\t' && line[end] != '"')
            ++end;
        const std::string_view keyword = line.substr(0, end);
        const std::string_view rest = trimLeft(line.substr(end));
        if (keyword == "msgctxt" || keyword == "msgid") {
            if (complete() || (keyword == "msgctxt" && (m_entry.context || m_entry.id)) ||
                (keyword == "msgid" && m_entry.id)) {
                if (!complete())
                    error("msgid without msgstr before this line");
                finishEntry();
            }
            if (m_entry.line == 0)
                m_entry.line = m_line;
            auto& field = keyword == "msgctxt" ? m_entry.context : m_entry.id;
            field = parseString(rest);
            m_current = &*field;
        } else if (keyword == "msgid_plural") {
            if (!m_entry.id || complete() || m_entry.idPlural)
                error("msgid_plural must follow a msgid");
            m_entry.idPlural = parseString(rest);
            m_current = &*m_entry.idPlural;
        } else if (keyword.rfind("msgstr", 0) == 0) {
            if (!m_entry.id)
                error("msgstr without msgid");
            int index = 0;
            if (keyword.size() > 6) {
                if (keyword[6] != '[' || keyword.back() != ']' || keyword.size() < 9)
                    error("unknown keyword " + std::string(keyword));
                for (char c : keyword.substr(7, keyword.size() - 8)) {
                    if (!std::isdigit(static_cast<unsigned char>(c)) || index > 9999)
                        error("bad plural form index in " + std::string(keyword));
                    index = index * 10 + (c - '0');
                }
                if (!m_entry.idPlural)
                    error("msgstr[" + std::to_string(index) + "] in an entry without msgid_plural");
            } else if (m_entry.idPlural) {
                error("an entry with msgid_plural needs msgstr[0], msgstr[1], ...");
            }
            if (m_entry.strs.count(index))
                error(std::string(keyword) + " given twice");
            m_current = &(m_entry.strs[index] = parseString(rest));
        } else {
            error("unknown keyword '" + std::string(keyword) + "'");
        }
    }

    // A C string literal and nothing but blanks or a comment behind it.
    std::string parseString(std::string_view s)
    {
        if (s.empty() || s[0] != '"')
            error("expected a string in double quotes");
        std::string out;
        size_t i = 1;
        for (;; ++i) {
            if (i >= s.size())
                error("string not terminated on its line");
            const char c = s[i];
            if (c == '"')
                break;
            if (c != '\\') {
                out.push_back(c);
                continue;
            }
            if (++i >= s.size())
                error("string not terminated on its line");
            switch (s[i]) {
            case 'n': out.push_back('\n'); break;
            case 't': out.push_back('\t'); break;
            case 'r': out.push_back('\r'); break;
            case 'a': out.push_back('\a'); break;
            case 'b': out.push_back('\b'); break;
            case 'f': out.push_back('\f'); break;
            case 'v': out.push_back('\v'); break;
            case '\\':
            case '"':
            case '\'':
            case '?': out.push_back(s[i]); break;
            case 'x': {
                int value = 0, digits = 0;
                while (i + 1 < s.size() && std::isxdigit(static_cast<unsigned char>(s[i + 1]))) {
                    const char h = s[++i];
                    value =
                        (value * 16 + (std::isdigit(static_cast<unsigned char>(h)) ? h - '0' : (h | 0x20) - 'a' + 10)) &
                        0xFF;
                    ++digits;
                }
                if (digits == 0)
                    error("\\x without hexadecimal digits");
                out.push_back(static_cast<char>(value));
                break;
            }
            default:
                if (s[i] >= '0' && s[i] <= '7') {
                    int value = 0;
                    for (int k = 0; k < 3 && i < s.size() && s[i] >= '0' && s[i] <= '7'; ++k, ++i)
                        value = value * 8 + (s[i] - '0');
                    --i;
                    out.push_back(static_cast<char>(value & 0xFF));
                } else {
                    error(std::string("unknown escape \\") + s[i]);
                }
            }
        }
        const std::string_view rest = trimLeft(s.substr(i + 1));
        if (!rest.empty() && rest[0] != '#')
            error("unexpected text after the string");
        return out;
    }

    std::u16string decode(const std::string& text) const
    {
        if (m_charset) {
            if (auto decoded = m_charset->decode(text))
                return std::move(*decoded);
            fail(m_path, m_entryLine,
                 "not valid " + m_charset->name() + "; the header's Content-Type must name the file's real charset");
        }
        if (auto decoded = decodeUtf8(text))
            return std::move(*decoded);
        fail(m_path, firstLineNotUtf8(),
             "not valid UTF-8; convert the file to UTF-8 (iconv, msgconv) or name its real charset in the header's "
             "Content-Type");
    }

    // An entry spans lines; the message names the one holding the bad bytes.
    int firstLineNotUtf8() const
    {
        size_t pos = 0;
        for (int number = 1; pos < m_bytes.size(); ++number) {
            const size_t end = std::min(m_bytes.find('\n', pos), m_bytes.size());
            if (number >= m_entryLine && !decodeUtf8(std::string_view(m_bytes).substr(pos, end - pos)))
                return number;
            pos = end + 1;
        }
        return m_entryLine;
    }

    void readHeader(const std::string& header)
    {
        std::u16string author;
        for (size_t pos = 0; pos < header.size();) {
            size_t end = header.find('\n', pos);
            if (end == std::string::npos)
                end = header.size();
            const std::string line = header.substr(pos, end - pos);
            pos = end + 1;
            const size_t colon = line.find(':');
            if (colon == std::string::npos)
                continue;
            const std::string name = line.substr(0, colon);
            std::string value(trimLeft(std::string_view(line).substr(colon + 1)));
            while (!value.empty() && (value.back() == ' ' || value.back() == '\t'))
                value.pop_back();
            if (name == "Content-Type") {
                const size_t at = value.find("charset=");
                std::string charset = at == std::string::npos ? "" : value.substr(at + 8);
                for (char& c : charset)
                    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
                // UTF-8 and its subset ASCII are read directly, "CHARSET" is a template's placeholder.
                if (!charset.empty() && charset != "UTF-8" && charset != "CHARSET" && charset != "ASCII" &&
                    charset != "US-ASCII") {
                    m_charset = CCharset::open(charset);
                    if (!m_charset)
                        fail(m_path, m_entryLine,
                             "charset " + charset +
                                 " is not known to this system's converter; convert the file with msgconv "
                                 "--to-code=UTF-8");
                }
            }
            m_headerFields.emplace_back(name, value);
        }
    }

    void finishEntry()
    {
        PoEntry entry = std::move(m_entry);
        m_entry = PoEntry();
        m_current = nullptr;
        m_commentLines = 0;
        if (!entry.id) {
            if (entry.context)
                fail(m_path, entry.line, "msgctxt without msgid");
            return; // comments only
        }
        m_entryLine = entry.line;
        if (entry.strs.empty())
            fail(m_path, entry.line, "msgid without msgstr");
        if (entry.id->empty() && !entry.context && !entry.obsolete && !m_sawHeader) {
            m_sawHeader = true;
            readHeader(entry.strs[0]);
            applyHeader(entry);
            return;
        }
        Entry out;
        out.line = entry.line;
        out.fuzzy = entry.fuzzy;
        out.obsolete = entry.obsolete;
        out.plural = entry.idPlural.has_value();
        out.cFormat = entry.cFormat;
        std::optional<std::u16string> context;
        if (entry.context)
            context = decode(*entry.context);
        out.key = joinKey(context, decode(*entry.id));
        out.text = decode(entry.strs.begin()->first == 0 ? entry.strs.begin()->second : std::string());
        if (entry.idPlural) {
            out.pluralSource = decode(*entry.idPlural);
            // msgstr[N] for every N up to the last one given; a gap is a missing form.
            out.forms.resize(size_t(entry.strs.rbegin()->first) + 1);
            for (const auto& [index, text] : entry.strs)
                out.forms[size_t(index)] = decode(text);
        }
        if (entry.cFormat) {
            out.key = expandSystemDependent(out.key);
            out.text = expandSystemDependent(out.text);
            out.pluralSource = expandSystemDependent(out.pluralSource);
            for (std::u16string& form : out.forms)
                form = expandSystemDependent(form);
        }
        m_catalogue.entries.push_back(std::move(out));
    }

    void applyHeader(const PoEntry& header)
    {
        for (const auto& [name, value] : m_headerFields) {
            const std::u16string text = decode(value);
            if (name == "Language" && !text.empty()) {
                m_catalogue.language = text;
                m_catalogue.languageLine = header.line;
            } else if (name == "Last-Translator" && !text.empty() && value.find("FULL NAME") == std::string::npos &&
                       value != "Automatically generated") { // msginit --no-translator
                m_catalogue.author = text;
            } else if (name == "Plural-Forms" && !text.empty()) {
                m_catalogue.pluralForms = text;
                m_catalogue.pluralFormsLine = header.line;
            } else if (name == "X-Qorlang-Application") {
                m_catalogue.appId = text;
            } else if (name == "X-Qorlang-Native-Name") {
                m_catalogue.nativeName = text;
            } else if (name == "X-Qorlang-Native-Sub-Name") {
                m_catalogue.nativeSubName = text;
            } else if (name == "X-Qorlang-Version") {
                m_catalogue.version = versionOf(value);
                if (!m_catalogue.version)
                    fail(m_path, header.line, "X-Qorlang-Version takes a decimal number");
            }
        }
        if (!header.translatorComment.empty())
            m_catalogue.comment = decode(header.translatorComment);
    }

    const std::string& m_path;
    const std::string& m_bytes;
    Catalogue m_catalogue;
    PoEntry m_entry;
    std::string* m_current = nullptr;
    int m_line = 0;
    int m_entryLine = 0;
    int m_commentLines = 0;
    bool m_sawHeader = false;
    std::optional<CCharset> m_charset;
    std::vector<std::pair<std::string, std::string>> m_headerFields;
};

void appendString(std::string& out, const char* keyword, std::u16string_view text)
{
    std::string utf8 = encodeUtf8(text);
    std::vector<std::string> pieces(1);
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        std::string& piece = pieces.back();
        switch (c) {
        case '\n': piece += "\\n"; break;
        case '\t': piece += "\\t"; break;
        case '\r': piece += "\\r"; break;
        case '\\': piece += "\\\\"; break;
        case '"': piece += "\\\""; break;
        default:
            if (c < 0x20 || c == 0x7F) {
                const char octal[] = {'\\', char('0' + (c >> 6)), char('0' + ((c >> 3) & 7)), char('0' + (c & 7)), 0};
                piece += octal;
            } else {
                piece.push_back(static_cast<char>(c));
            }
        }
        // Line breaks inside a text start a new line of the file, as gettext's tools write them.
        if (c == '\n' && i + 1 < utf8.size())
            pieces.emplace_back();
    }
    out += keyword;
    if (pieces.size() > 1)
        out += " \"\"\n";
    for (size_t i = 0; i < pieces.size(); ++i)
        out += (pieces.size() > 1 ? "\"" : " \"") + pieces[i] + "\"\n";
}

} // namespace

Catalogue readPo(const std::string& path, const std::string& bytes)
{
    return CPoParser(path, bytes).parse();
}

std::string writePo(const Catalogue& c)
{
    std::string out;
    if (c.comment && !c.comment->empty()) {
        std::string comment = encodeUtf8(*c.comment);
        for (size_t pos = 0; pos <= comment.size();) {
            size_t end = comment.find('\n', pos);
            if (end == std::string::npos)
                end = comment.size();
            out += "# " + comment.substr(pos, end - pos) + "\n";
            pos = end + 1;
        }
    }
    std::u16string header;
    auto field = [&](std::u16string_view name, std::u16string_view value) {
        header += std::u16string(name) + u": " + std::u16string(value) + u"\n";
    };
    field(u"Project-Id-Version", c.appId.value_or(u""));
    char revised[32] = "";
    const std::time_t now = std::time(nullptr);
    std::strftime(revised, sizeof revised, "%Y-%m-%d %H:%M+0000", std::gmtime(&now));
    field(u"PO-Revision-Date", std::u16string(revised, revised + std::strlen(revised)));
    field(u"Last-Translator", c.author.value_or(u""));
    field(u"Language-Team", u"");
    std::u16string language = c.language.value_or(u"");
    for (char16_t& ch : language)
        if (ch == u'-')
            ch = u'_'; // gettext's own spelling; compile reads both
    field(u"Language", language);
    field(u"MIME-Version", u"1.0");
    field(u"Content-Type", u"text/plain; charset=UTF-8");
    field(u"Content-Transfer-Encoding", u"8bit");
    if (c.pluralForms)
        field(u"Plural-Forms", *c.pluralForms);
    if (c.appId)
        field(u"X-Qorlang-Application", *c.appId);
    if (c.nativeName)
        field(u"X-Qorlang-Native-Name", *c.nativeName);
    if (c.nativeSubName)
        field(u"X-Qorlang-Native-Sub-Name", *c.nativeSubName);
    if (c.version)
        field(u"X-Qorlang-Version", *versionText(c.version));
    appendString(out, "msgid", u"");
    appendString(out, "msgstr", header);
    for (const Entry& e : c.entries) {
        const auto [context, source] = splitKey(e.key);
        if (!context && source.empty())
            continue; // it would read as a second header
        std::string entry;
        if (e.fuzzy)
            entry += "#, fuzzy\n";
        if (context)
            appendString(entry, "msgctxt", *context);
        appendString(entry, "msgid", source);
        if (e.forms.empty()) {
            appendString(entry, "msgstr", e.text);
        } else {
            appendString(entry, "msgid_plural", e.pluralSource);
            for (size_t i = 0; i < e.forms.size(); ++i)
                appendString(entry, ("msgstr[" + std::to_string(i) + "]").c_str(), e.forms[i]);
        }
        out += "\n";
        if (!e.obsolete) {
            out += entry;
            continue;
        }
        for (size_t pos = 0; pos < entry.size();) { // "#~ " before every line of an obsolete entry
            const size_t end = entry.find('\n', pos) + 1;
            out += (entry.compare(pos, 2, "#,") == 0 ? "" : "#~ ") + entry.substr(pos, end - pos);
            pos = end;
        }
    }
    return out;
}

} // namespace qorlang
