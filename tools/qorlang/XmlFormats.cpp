// XLIFF (1.2 and 2.0) and Qt TS through TinyXML-2. Keys follow what Qt's lconvert makes of a PO
// file, so that a catalogue compiles to the same entries in any of the three forms: a gettext
// context travels as XLIFF's "x-gettext-msgctxt" context or as the TS comment, a Qt context name
// N becomes the context "N|comment" (lconvert's own PO spelling) unless the reader drops it, plural
// groups (numerus forms in TS) give one entry with every form, and lconvert's obsolete
// (translate="no", "vanished") and fuzzy ("needs-review-...", "unfinished") marks mean what they
// meant in the PO.
#include "Formats.h"
#include "Unicode.h"

#include <tinyxml2.h>

#include <cstdio>
#include <cstring>
#include <map>

namespace qorlang {

namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;
using tinyxml2::XMLPrinter;

// TinyXML-2 drops text made only of white space when markup follows it ("<byte value="xd"/>\n"
// in a TS source, "<g>a</g> <g>b</g>" in XLIFF), even when told to preserve white space. Such runs
// inside the root element get a leading noncharacter, which no translation holds and collectText
// removes again; line breaks stay where they were, so line numbers stay true.
constexpr char kKeepWhiteSpace[] = "&#xFDD0;";
constexpr char kKeptWhiteSpaceUtf8[] = "\xEF\xB7\x90";

std::string protectWhiteSpace(const std::string& bytes)
{
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    size_t i = 0;
    // Up to the root element's start: the prolog may hold only markup and white space.
    for (; i < bytes.size(); ++i) {
        out.push_back(bytes[i]);
        if (bytes[i] == '<' && i + 1 < bytes.size() && bytes[i + 1] != '?' && bytes[i + 1] != '!') {
            ++i;
            break;
        }
    }
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    // XML turns every carriage return into a line feed. A file with CR LF line ends means that;
    // in a file with LF line ends (lconvert writes them) a CR in a text is the text's own.
    const size_t firstBreak = bytes.find('\n');
    const bool keepReturns = firstBreak != std::string::npos && (firstBreak == 0 || bytes[firstBreak - 1] != '\r');
    bool inTag = true;
    while (i < bytes.size()) {
        if (bytes[i] == '\r' && keepReturns && !inTag) {
            out += "&#13;";
            ++i;
            continue;
        }
        if (bytes[i] == '<')
            inTag = true;
        if (bytes.compare(i, 9, "<![CDATA[") == 0) {
            const size_t end = bytes.find("]]>", i);
            const size_t stop = end == std::string::npos ? bytes.size() : end + 3;
            out.append(bytes, i, stop - i);
            i = stop;
            continue;
        }
        if (bytes.compare(i, 4, "<!--") == 0) {
            const size_t end = bytes.find("-->", i);
            const size_t stop = end == std::string::npos ? bytes.size() : end + 3;
            out.append(bytes, i, stop - i);
            i = stop;
            continue;
        }
        out.push_back(bytes[i]);
        if (bytes[i++] != '>')
            continue;
        inTag = false;
        size_t run = i;
        while (run < bytes.size() && blank(bytes[run]))
            ++run;
        if (run > i && run < bytes.size() && bytes[run] == '<')
            out += kKeepWhiteSpace;
    }
    return out;
}

// What a translator can act on, instead of the parser's own error names.
std::string xmlProblem(tinyxml2::XMLError error)
{
    switch (error) {
    case tinyxml2::XML_ERROR_EMPTY_DOCUMENT: return "the file holds no XML element; it may be empty or cut short";
    case tinyxml2::XML_ERROR_MISMATCHED_ELEMENT: return "an end tag does not match the element it closes";
    case tinyxml2::XML_ERROR_PARSING_ELEMENT: return "a tag is not closed or not spelt right";
    case tinyxml2::XML_ERROR_PARSING_ATTRIBUTE:
        return "an attribute is broken (a value needs quotes; write \" as &quot;)";
    case tinyxml2::XML_ERROR_PARSING_TEXT: return "text or a tag is broken (write < as &lt; and & as &amp; in texts)";
    case tinyxml2::XML_ERROR_PARSING_CDATA: return "a CDATA section is not closed with ]]>";
    case tinyxml2::XML_ERROR_PARSING_COMMENT: return "a comment is not closed with -->";
    case tinyxml2::XML_ERROR_PARSING_DECLARATION: return "the <?xml ...?> declaration is broken";
    case tinyxml2::XML_ERROR_PARSING_UNKNOWN: return "a <! ...> construct is not closed";
    case tinyxml2::XML_ELEMENT_DEPTH_EXCEEDED: return "elements are nested too deeply";
    default: return "the file ends before the document does, or is not XML";
    }
}

void parseDocument(XMLDocument& doc, const std::string& path, const std::string& original)
{
    const std::string bytes = protectWhiteSpace(original);
    if (doc.Parse(bytes.data(), bytes.size()) != tinyxml2::XML_SUCCESS)
        fail(path, doc.ErrorLineNum(),
             "not well-formed XML: " + xmlProblem(doc.ErrorID()) +
                 "; fix it in an XML editor or the tool that wrote it");
}

bool named(const XMLElement* e, const char* name)
{
    return std::strcmp(e->Name(), name) == 0;
}

// The local part of a name ("trolltech:po-header-language" -> "po-header-language").
const char* localName(const XMLElement* e)
{
    const char* colon = std::strrchr(e->Name(), ':');
    return colon ? colon + 1 : e->Name();
}

// lconvert writes characters XML cannot hold as <ph ctype="x-ch-bel">\a</ph>: a C escape.
std::string controlCharacter(const char* escape)
{
    const std::string_view e = escape ? escape : "";
    if (e.size() < 2 || e[0] != '\\')
        return std::string(e);
    static const std::string_view letters = "abfnrtv0";
    static const char codes[] = {'\a', '\b', '\f', '\n', '\r', '\t', '\v', '\0'};
    if (e.size() == 2 && letters.find(e[1]) != std::string_view::npos)
        return std::string(1, codes[letters.find(e[1])]);
    if (e[1] == 'x')
        return std::string(1, static_cast<char>(std::strtoul(std::string(e.substr(2)).c_str(), nullptr, 16)));
    return std::string(1, static_cast<char>(std::strtoul(std::string(e.substr(1)).c_str(), nullptr, 8)));
}

// All character data inside `e`, inline markup dropped; TS writes characters XML cannot hold as
// <byte value="x1B"/>.
void collectText(const XMLNode* node, std::string& out)
{
    for (const XMLNode* child = node->FirstChild(); child; child = child->NextSibling()) {
        if (const auto* text = child->ToText()) {
            std::string_view value = text->Value();
            if (value.rfind(kKeptWhiteSpaceUtf8, 0) == 0)
                value.remove_prefix(sizeof kKeptWhiteSpaceUtf8 - 1);
            out += value;
        } else if (const auto* e = child->ToElement()) {
            if (named(e, "byte")) {
                const char* value = e->Attribute("value");
                if (value) {
                    const unsigned long code =
                        value[0] == 'x' ? std::strtoul(value + 1, nullptr, 16) : std::strtoul(value, nullptr, 10);
                    out += encodeUtf8(std::u16string(1, static_cast<char16_t>(code)));
                }
            } else if (const char* ctype = e->Attribute("ctype"); ctype && std::strncmp(ctype, "x-ch-", 5) == 0) {
                out += controlCharacter(e->GetText());
            } else {
                collectText(e, out);
            }
        }
    }
}

std::u16string textOf(const std::string& path, const XMLElement* e)
{
    if (!e)
        return {};
    std::string out;
    collectText(e, out);
    return decodedOrFail(path, e->GetLineNum(), out);
}

std::optional<std::u16string> attribute(const std::string& path, const XMLElement* e, const char* name)
{
    const char* value = e->Attribute(name);
    if (!value)
        return std::nullopt;
    return decodedOrFail(path, e->GetLineNum(), value);
}

// The tool's own descriptive data, and the PO header fields lconvert carries along.
void readProperty(Catalogue& c, std::string_view name, std::u16string value, int line)
{
    if (name == "language" || name == "po-header-language") {
        if (!c.language && !value.empty()) {
            c.language = std::move(value);
            c.languageLine = line;
        }
    } else if (name == "author" || name == "po-header-last_translator") {
        if (!c.author && !value.empty())
            c.author = std::move(value);
    } else if (name == "comment") {
        c.comment = std::move(value);
    } else if (name == "application") {
        c.appId = std::move(value);
    } else if (name == "native-name") {
        c.nativeName = std::move(value);
    } else if (name == "native-sub-name") {
        c.nativeSubName = std::move(value);
    } else if (name == "plural-forms" || name == "po-header-plural_forms") {
        if (!c.pluralForms && !value.empty()) {
            c.pluralForms = std::move(value);
            c.pluralFormsLine = line;
        }
    } else if (name == "version") {
        c.version = versionOf(encodeUtf8(value));
        if (!c.version)
            fail(c.path, line, "the version takes a decimal number");
    }
}

// lconvert carries the PO flags along; a c-format entry may hold system-dependent segments.
void cFormatFlags(Entry& entry, const XMLElement* flags)
{
    const char* text = flags->GetText();
    const std::string_view list = text ? text : "";
    for (size_t at = list.find("c-format"); at != std::string_view::npos; at = list.find("c-format", at + 1)) {
        if (at == 0 || list[at - 1] == ',' || list[at - 1] == ' ') {
            entry.cFormat = true;
            entry.key = expandSystemDependent(entry.key);
            entry.text = expandSystemDependent(entry.text);
            entry.pluralSource = expandSystemDependent(entry.pluralSource);
            for (std::u16string& form : entry.forms)
                form = expandSystemDependent(form);
            return;
        }
    }
}

std::u16string qtContext(const std::u16string& name, const std::optional<std::u16string>& comment)
{
    return name + u'|' + comment.value_or(u"");
}

bool attributeIs(const XMLElement* e, const char* name, const char* value)
{
    const char* given = e->Attribute(name);
    return given && std::strcmp(given, value) == 0;
}

// What lupdate names the context of qor_lang2::tr calls.
constexpr std::u16string_view kTrContext = u"qor_lang2";

// Auto keeps a Qt context name only where the sources read as texts: a context whose every source
// looks like a key ("app.title") is a grouping, not part of the key tr is called with.
QtContext qtContextFor(const std::string& path, const XMLElement* context, const std::u16string& name, QtContext mode)
{
    if (mode != QtContext::Auto || name.empty() || name == kTrContext)
        return mode == QtContext::Auto ? QtContext::Drop : mode;
    bool any = false;
    for (const XMLElement* m = context->FirstChildElement("message"); m; m = m->NextSiblingElement("message")) {
        if (!looksLikeKey(textOf(path, m->FirstChildElement("source"))))
            return QtContext::Keep;
        any = true;
    }
    return any ? QtContext::Drop : QtContext::Keep;
}

class CXliffReader {
public:
    CXliffReader(Catalogue& c) : m_c(c) {}

    void read(const XMLElement* root)
    {
        const char* version = root->Attribute("version");
        m_version2 = version && version[0] == '2';
        if (m_version2) {
            if (auto trg = attribute(m_c.path, root, "trgLang"); trg && !trg->empty())
                readProperty(m_c, "language", *trg, root->GetLineNum());
        }
        for (const XMLElement* e = root->FirstChildElement(); e; e = e->NextSiblingElement()) {
            if (named(e, "file"))
                readFile(e);
            else if (std::strncmp(localName(e), "po-header-", 10) == 0)
                readProperty(m_c, localName(e), textOf(m_c.path, e), e->GetLineNum());
        }
    }

private:
    void readFile(const XMLElement* file)
    {
        if (!m_version2) {
            // The file's own target language rather than lconvert's copy of a PO header.
            if (auto trg = attribute(m_c.path, file, "target-language"); trg && !trg->empty() && !m_targetLanguage) {
                m_c.language = *trg;
                m_c.languageLine = file->GetLineNum();
                m_targetLanguage = true;
            }
            if (const XMLElement* header = file->FirstChildElement("header")) {
                for (const XMLElement* g = header->FirstChildElement("prop-group"); g;
                     g = g->NextSiblingElement("prop-group")) {
                    const char* name = g->Attribute("name");
                    if (!name || std::strcmp(name, "qorlang") != 0)
                        continue;
                    for (const XMLElement* p = g->FirstChildElement("prop"); p; p = p->NextSiblingElement("prop")) {
                        if (const char* type = p->Attribute("prop-type"))
                            readProperty(m_c, type, textOf(m_c.path, p), p->GetLineNum());
                    }
                }
            }
            if (const XMLElement* body = file->FirstChildElement("body"))
                readUnits(body, u"");
        } else {
            readUnits(file, u"");
        }
    }

    // lconvert's plural group: one unit per form, the first with the singular source, the others
    // with the plural source. They become one entry.
    void joinPluralUnits(size_t first)
    {
        Entry& entry = m_c.entries[first];
        entry.plural = true;
        for (size_t i = first; i < m_c.entries.size(); ++i)
            entry.forms.push_back(m_c.entries[i].text);
        entry.pluralSource = splitKey(m_c.entries[first + (m_c.entries.size() > first + 1 ? 1 : 0)].key).second;
        m_c.entries.resize(first + 1);
    }

    // `pluralGroup`: the plural group whose units are read; lconvert puts the entry's flags and
    // context on the group.
    void readUnits(const XMLElement* parent, const std::u16string& qtName, const XMLElement* pluralGroup = nullptr)
    {
        for (const XMLElement* e = parent->FirstChildElement(); e; e = e->NextSiblingElement()) {
            if (named(e, "group")) {
                const char* restype = e->Attribute("restype");
                std::u16string name = qtName;
                if (restype && std::strcmp(restype, "x-trolltech-linguist-context") == 0)
                    name = attribute(m_c.path, e, "resname").value_or(u"");
                // XLIFF 2.0 has no plural groups of its own: the same group, typed "x-gettext:plurals".
                const bool plurals = (restype && std::strcmp(restype, "x-gettext-plurals") == 0) ||
                                     (m_version2 && attributeIs(e, "type", "x-gettext:plurals"));
                const size_t before = m_c.entries.size();
                readUnits(e, name, plurals ? e : nullptr);
                if (plurals && m_c.entries.size() > before)
                    joinPluralUnits(before);
            } else if (named(e, m_version2 ? "unit" : "trans-unit")) {
                if (m_version2)
                    readUnit2(e);
                else
                    readTransUnit(e, qtName, pluralGroup);
            }
        }
    }

    void readTransUnit(const XMLElement* unit, const std::u16string& qtName, const XMLElement* group)
    {
        Entry entry;
        entry.line = unit->GetLineNum();
        const char* translate = unit->Attribute("translate");
        entry.obsolete = translate && std::strcmp(translate, "no") == 0;
        const XMLElement* target = unit->FirstChildElement("target");
        entry.text = textOf(m_c.path, target);
        if (target) {
            const char* state = target->Attribute("state");
            entry.fuzzy = state && (std::strncmp(state, "needs-", 6) == 0 || std::strcmp(state, "new") == 0);
        }
        if (auto resname = attribute(m_c.path, unit, "resname")) {
            entry.key = *resname;
        } else {
            std::optional<std::u16string> context;
            for (const XMLElement* holder : {group, unit}) {
                for (const XMLElement* g = holder ? holder->FirstChildElement("context-group") : nullptr; g;
                     g = g->NextSiblingElement("context-group")) {
                    for (const XMLElement* x = g->FirstChildElement("context"); x;
                         x = x->NextSiblingElement("context")) {
                        const char* type = x->Attribute("context-type");
                        if (type && std::strcmp(type, "x-gettext-msgctxt") == 0)
                            context = textOf(m_c.path, x);
                    }
                }
            }
            if (!qtName.empty())
                context = qtContext(qtName, context);
            entry.key = joinKey(context, textOf(m_c.path, unit->FirstChildElement("source")));
        }
        for (const XMLElement* holder : {group, unit}) {
            for (const XMLElement* x = holder ? holder->FirstChildElement() : nullptr; x; x = x->NextSiblingElement()) {
                if (std::strcmp(localName(x), "po-flags") == 0)
                    cFormatFlags(entry, x);
            }
        }
        m_c.entries.push_back(std::move(entry));
    }

    void readUnit2(const XMLElement* unit)
    {
        Entry entry;
        entry.line = unit->GetLineNum();
        const char* translate = unit->Attribute("translate");
        entry.obsolete = translate && std::strcmp(translate, "no") == 0;
        std::u16string source;
        for (const XMLElement* s = unit->FirstChildElement(); s; s = s->NextSiblingElement()) {
            if (!named(s, "segment") && !named(s, "ignorable"))
                continue;
            source += textOf(m_c.path, s->FirstChildElement("source"));
            entry.text += textOf(m_c.path, s->FirstChildElement("target"));
            const char* state = s->Attribute("state");
            if (state && std::strcmp(state, "initial") == 0 && s->FirstChildElement("target"))
                entry.fuzzy = true;
        }
        entry.key = attribute(m_c.path, unit, "name").value_or(source);
        m_c.entries.push_back(std::move(entry));
    }

    Catalogue& m_c;
    bool m_version2 = false;
    bool m_targetLanguage = false;
};

// Characters XML 1.0 cannot carry at all.
void requireXmlText(const std::string& path, std::u16string_view text)
{
    for (char16_t c : text) {
        if ((c < 0x20 && c != u'\t' && c != u'\n') || c == 0xFFFE || c == 0xFFFF)
            fail(path, 0, "the text \"" + encodeUtf8(text) + "\" holds a control character XML cannot carry");
    }
}

// Text with the characters XML cannot carry (and CR, which XML would turn into LF) written as
// their readers expect them: TS as <byte value="x7"/>, XLIFF as lconvert's
// <ph ctype="x-ch-...">\x07</ph>.
void pushText(XMLPrinter& p, std::u16string_view text, bool ts)
{
    static int placeholder = 0;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        const bool control = i < text.size() && (text[i] < 0x20 && text[i] != u'\t' && text[i] != u'\n');
        if (i < text.size() && !control)
            continue;
        if (i > start)
            p.PushText(encodeUtf8(text.substr(start, i - start)).c_str());
        start = i + 1;
        if (!control)
            break;
        char hex[8];
        std::snprintf(hex, sizeof hex, "%x", unsigned(text[i]));
        if (ts) {
            p.OpenElement("byte", true); // compact: no line break inside the text
            p.PushAttribute("value", (std::string("x") + hex).c_str());
        } else {
            p.OpenElement("ph", true);
            p.PushAttribute("id", (std::string("ctl") + std::to_string(++placeholder)).c_str());
            p.PushAttribute("ctype", (std::string("x-ch-0x") + hex).c_str());
            p.PushText((std::string("\\x") + hex).c_str());
        }
        p.CloseElement(true);
    }
}

void pushElement(XMLPrinter& p, const char* name, std::u16string_view text, bool ts, bool preserve = false)
{
    p.OpenElement(name);
    if (preserve)
        p.PushAttribute("xml:space", "preserve");
    pushText(p, text, ts);
    p.CloseElement(true);
}

std::u16string tagWith(const std::optional<std::u16string>& language, char16_t separator)
{
    std::u16string tag = language.value_or(u"");
    for (char16_t& c : tag)
        if (c == u'-' || c == u'_')
            c = separator;
    return tag;
}

} // namespace

Catalogue readXliff(const std::string& path, const std::string& bytes)
{
    Catalogue c;
    c.path = path;
    XMLDocument doc(true, tinyxml2::PRESERVE_WHITESPACE);
    parseDocument(doc, path, bytes);
    const XMLElement* root = doc.RootElement();
    if (!root || std::strcmp(localName(root), "xliff") != 0)
        fail(path, root ? root->GetLineNum() : 0, "not an XLIFF document (no <xliff> root)");
    CXliffReader(c).read(root);
    return c;
}

std::string writeXliff(const Catalogue& c)
{
    XMLPrinter p;
    p.PushDeclaration("xml version=\"1.0\" encoding=\"utf-8\"");
    p.OpenElement("xliff");
    p.PushAttribute("version", "1.2");
    p.PushAttribute("xmlns", "urn:oasis:names:tc:xliff:document:1.2");
    p.OpenElement("file");
    p.PushAttribute("original", encodeUtf8(c.appId.value_or(u"")).c_str());
    p.PushAttribute("datatype", "plaintext");
    p.PushAttribute("source-language", "en");
    p.PushAttribute("target-language", encodeUtf8(tagWith(c.language, u'-')).c_str());
    p.OpenElement("header");
    p.OpenElement("prop-group");
    p.PushAttribute("name", "qorlang");
    auto prop = [&](const char* type, const std::optional<std::u16string>& value) {
        if (!value)
            return;
        requireXmlText(c.path, *value);
        p.OpenElement("prop");
        p.PushAttribute("prop-type", type);
        p.PushText(encodeUtf8(*value).c_str());
        p.CloseElement();
    };
    prop("application", c.appId);
    prop("author", c.author);
    prop("comment", c.comment);
    prop("native-name", c.nativeName);
    prop("native-sub-name", c.nativeSubName);
    prop("version", versionText(c.version));
    prop("plural-forms", c.pluralForms);
    p.CloseElement();
    p.CloseElement();
    p.OpenElement("body");
    int id = 0;
    auto contextGroup = [&](const std::optional<std::u16string_view>& context) {
        if (!context)
            return;
        requireXmlText(c.path, *context);
        p.OpenElement("context-group");
        p.OpenElement("context");
        p.PushAttribute("context-type", "x-gettext-msgctxt");
        p.PushText(encodeUtf8(*context).c_str());
        p.CloseElement();
        p.CloseElement();
    };
    auto unit = [&](const std::string& unitId, std::u16string_view source, std::u16string_view text, const Entry& e) {
        p.OpenElement("trans-unit");
        p.PushAttribute("id", unitId.c_str());
        if (e.obsolete)
            p.PushAttribute("translate", "no");
        pushElement(p, "source", source, false, true);
        p.OpenElement("target");
        p.PushAttribute("xml:space", "preserve");
        if (e.fuzzy)
            p.PushAttribute("state", "needs-review-translation");
        pushText(p, text, false);
        p.CloseElement(true);
    };
    for (const Entry& e : c.entries) {
        const auto [context, source] = splitKey(e.key);
        const std::string unitId = std::to_string(++id);
        if (e.forms.empty()) {
            unit(unitId, source, e.text, e);
            contextGroup(context);
            p.CloseElement();
            continue;
        }
        // lconvert's plural group: a unit per form, the context on the group.
        p.OpenElement("group");
        p.PushAttribute("restype", "x-gettext-plurals");
        contextGroup(context);
        for (size_t i = 0; i < e.forms.size(); ++i) {
            unit(unitId + "[" + std::to_string(i) + "]", i == 0 ? source : std::u16string_view(e.pluralSource),
                 e.forms[i], e);
            p.CloseElement();
        }
        p.CloseElement();
    }
    p.CloseElement();
    p.CloseElement();
    p.CloseElement();
    return p.CStr();
}

Catalogue readTs(const std::string& path, const std::string& bytes, QtContext contextMode)
{
    Catalogue c;
    c.path = path;
    XMLDocument doc(true, tinyxml2::PRESERVE_WHITESPACE);
    parseDocument(doc, path, bytes);
    const XMLElement* root = doc.RootElement();
    if (!root || !named(root, "TS"))
        fail(path, root ? root->GetLineNum() : 0, "not a Qt TS document (no <TS> root)");
    if (auto language = attribute(path, root, "language"); language && !language->empty()) {
        c.language = *language;
        c.languageLine = root->GetLineNum();
    }
    // A TS file decompiled by this tool spells its keys out: a name it wrote is part of a key.
    if (contextMode == QtContext::Auto && root->FirstChildElement("extra-qorlang-application"))
        contextMode = QtContext::Keep;
    for (const XMLElement* e = root->FirstChildElement(); e; e = e->NextSiblingElement()) {
        const std::string_view name = e->Name();
        if (name.rfind("extra-qorlang-", 0) == 0)
            readProperty(c, name.substr(14), textOf(path, e), e->GetLineNum());
        else if (name.rfind("extra-po-header-", 0) == 0)
            readProperty(c, std::string("po-header-") + std::string(name.substr(16)), textOf(path, e), e->GetLineNum());
        if (!named(e, "context"))
            continue;
        const std::u16string qtName = textOf(path, e->FirstChildElement("name"));
        const QtContext mode = qtContextFor(path, e, qtName, contextMode);
        for (const XMLElement* m = e->FirstChildElement("message"); m; m = m->NextSiblingElement("message")) {
            Entry entry;
            entry.line = m->GetLineNum();
            std::optional<std::u16string> comment;
            if (const XMLElement* ce = m->FirstChildElement("comment"))
                comment = textOf(path, ce);
            std::optional<std::u16string> context = comment;
            if (qtName == kTrContext && mode != QtContext::Keep)
                context.reset(); // lupdate takes qor_lang2::tr's default text for a comment
            else if (!qtName.empty() && mode == QtContext::Keep)
                context = qtContext(qtName, comment);
            const std::u16string source = textOf(path, m->FirstChildElement("source"));
            entry.key = joinKey(context, source);
            if (const XMLElement* t = m->FirstChildElement("translation")) {
                // A length-variant translation answers with its first variant.
                const XMLElement* form = t->FirstChildElement("numerusform");
                entry.plural = form != nullptr || attributeIs(m, "numerus", "yes");
                if (entry.plural) {
                    for (; form; form = form->NextSiblingElement("numerusform"))
                        entry.forms.push_back(textOf(path, form));
                    if (entry.forms.empty())
                        entry.forms.emplace_back();
                    const XMLElement* plural = m->FirstChildElement("extra-po-msgid_plural");
                    entry.pluralSource = plural ? textOf(path, plural) : source;
                }
                if (!form)
                    form = t->FirstChildElement("lengthvariant");
                entry.text = entry.plural ? entry.forms.front() : textOf(path, form ? form : t);
                const char* type = t->Attribute("type");
                // Qt marks untranslated messages "unfinished" too; only a text can be unreviewed.
                entry.fuzzy = type && std::strcmp(type, "unfinished") == 0 && !entry.text.empty();
                entry.obsolete = type && (std::strcmp(type, "vanished") == 0 || std::strcmp(type, "obsolete") == 0);
            }
            if (const XMLElement* flags = m->FirstChildElement("extra-po-flags"))
                cFormatFlags(entry, flags);
            c.entries.push_back(std::move(entry));
        }
    }
    return c;
}

std::string writeTs(const Catalogue& c)
{
    XMLPrinter p;
    p.PushDeclaration("xml version=\"1.0\" encoding=\"utf-8\"");
    p.PushUnknown("DOCTYPE TS");
    p.OpenElement("TS");
    p.PushAttribute("version", "2.1");
    p.PushAttribute("language", encodeUtf8(tagWith(c.language, u'_')).c_str());
    auto extra = [&](const char* name, const std::optional<std::u16string>& value) {
        if (value) {
            pushElement(p, (std::string("extra-qorlang-") + name).c_str(), *value, true);
        }
    };
    extra("application", c.appId);
    extra("author", c.author);
    extra("comment", c.comment);
    extra("native-name", c.nativeName);
    extra("native-sub-name", c.nativeSubName);
    extra("version", versionText(c.version));
    extra("plural-forms", c.pluralForms);
    // Messages grouped by Qt context name, names in order of first appearance.
    std::vector<std::u16string> names;
    std::map<std::u16string, std::vector<const Entry*>> byName;
    for (const Entry& e : c.entries) {
        const auto [context, source] = splitKey(e.key);
        std::u16string name;
        if (context) {
            const size_t bar = context->find(u'|');
            if (bar != std::u16string_view::npos && bar > 0)
                name = std::u16string(context->substr(0, bar));
        }
        if (!byName.count(name))
            names.push_back(name);
        byName[name].push_back(&e);
    }
    for (const std::u16string& name : names) {
        p.OpenElement("context");
        pushElement(p, "name", name, true);
        for (const Entry* e : byName[name]) {
            const auto [context, source] = splitKey(e->key);
            p.OpenElement("message");
            if (!e->forms.empty())
                p.PushAttribute("numerus", "yes");
            pushElement(p, "source", source, true);
            if (context) {
                const std::u16string_view comment = name.empty() ? *context : context->substr(name.size() + 1);
                pushElement(p, "comment", comment, true);
            }
            p.OpenElement("translation");
            if (e->obsolete)
                p.PushAttribute("type", "vanished");
            else if (e->fuzzy || e->text.empty())
                p.PushAttribute("type", "unfinished"); // Linguist shows an empty one as done otherwise
            if (e->forms.empty())
                pushText(p, e->text, true);
            for (const std::u16string& form : e->forms)
                pushElement(p, "numerusform", form, true);
            p.CloseElement(e->forms.empty());
            if (!e->forms.empty())
                pushElement(p, "extra-po-msgid_plural", e->pluralSource, true);
            p.CloseElement();
        }
        p.CloseElement();
    }
    p.CloseElement();
    return p.CStr();
}

} // namespace qorlang
