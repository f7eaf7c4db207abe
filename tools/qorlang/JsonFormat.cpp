// i18next JSON (v4): nested objects give dotted keys ("menu": {"open": "Open"} is "menu.open"),
// array elements their index ("steps.0"), context suffixes ("friend_male") stay part of the key.
// Plural keys ("item_one", "item_other") become one plural entry "item" once the language is known
// (joinI18nextPlurals). A top-level "@qorlang" object carries the descriptive data of a decompiled
// file. Read through the framework's JSON parser.
#include "Formats.h"
#include "PluralCategories.h"
#include "Unicode.h"

#include "framework/errors/CJsonParserError.h"
#include "framework/objects/Cast.h"
#include "framework/values/CBool.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CNull.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace qorlang {

namespace {

constexpr char16_t kMetadataKey[] = u"@qorlang";

std::u16string textOf(const kore::IString& s)
{
    return decodeUtf8(s.toUTF8()).value_or(u"");
}

// The line of the character at `position` (counted as the parser counts: code points).
int lineAt(std::u16string_view text, uint32_t position)
{
    int line = 1;
    uint32_t characters = 0;
    for (size_t i = 0; i < text.size() && characters < position; ++i) {
        if (text[i] >= 0xDC00 && text[i] <= 0xDFFF && i > 0 && text[i - 1] >= 0xD800 && text[i - 1] <= 0xDBFF)
            continue;
        ++characters;
        if (text[i] == u'\n')
            ++line;
    }
    return line;
}

class CJsonReader {
public:
    explicit CJsonReader(Catalogue& c) : m_c(c) {}

    void read(const kore::IBase& value, const std::u16string& path)
    {
        if (const auto* map = kore::tryCast<kore::CVariantMap>(&value)) {
            map->forEach([&](const kore::IString& key, const kore::IBase& member) {
                const std::u16string name = textOf(key);
                if (path.empty() && name == kMetadataKey)
                    readMetadata(member);
                else
                    read(member, path.empty() ? name : path + u'.' + name);
            });
        } else if (const auto* array = kore::tryCast<kore::CVariantArray>(&value)) {
            for (uint32_t i = 0; i < array->getCount(); ++i) {
                const std::string index = std::to_string(i);
                read(*array->get(i), path + u'.' + std::u16string(index.begin(), index.end()));
            }
        } else {
            m_c.entries.push_back(Entry{path, scalar(value, path)});
        }
    }

private:
    std::u16string scalar(const kore::IBase& value, const std::u16string& path) const
    {
        if (const auto* text = kore::tryCast<kore::IString>(&value))
            return textOf(*text);
        if (kore::tryCast<kore::CNull>(&value))
            return {}; // i18next reads null as missing
        std::string number;
        if (const auto* i = kore::tryCast<kore::CInt>(&value))
            number = std::to_string(i->getValue());
        else if (const auto* l = kore::tryCast<kore::CInt64>(&value))
            number = std::to_string(l->getValue());
        else if (const auto* b = kore::tryCast<kore::CBool>(&value))
            number = b->getValue() ? "true" : "false";
        else
            fail(m_c.path, 0, "the value of \"" + encodeUtf8(path) + "\" is not a text");
        return std::u16string(number.begin(), number.end());
    }

    void readMetadata(const kore::IBase& value)
    {
        const auto* map = kore::tryCast<kore::CVariantMap>(&value);
        if (!map)
            fail(m_c.path, 0, "\"@qorlang\" must be an object");
        map->forEach([&](const kore::IString& key, const kore::IBase& member) {
            const std::u16string name = textOf(key);
            const std::u16string text = scalar(member, std::u16string(kMetadataKey) + u'.' + name);
            if (name == u"language")
                m_c.language = text;
            else if (name == u"author")
                m_c.author = text;
            else if (name == u"comment")
                m_c.comment = text;
            else if (name == u"application")
                m_c.appId = text;
            else if (name == u"native-name")
                m_c.nativeName = text;
            else if (name == u"native-sub-name")
                m_c.nativeSubName = text;
            else if (name == u"plural-forms")
                m_c.pluralForms = text;
            else if (name == u"version") {
                m_c.version = versionOf(encodeUtf8(text));
                if (!m_c.version)
                    fail(m_c.path, 0, "the version takes a decimal number");
            }
        });
    }

    Catalogue& m_c;
};

// The framework's printer writes control characters as they are; a key with a context holds
// U+0004, so the writer escapes every control character itself.
void appendString(std::string& out, std::u16string_view text)
{
    out += '"';
    size_t plain = 0; // start of the characters not escaped yet
    for (size_t i = 0; i <= text.size(); ++i) {
        const char16_t c = i < text.size() ? text[i] : 0;
        const bool escaped = i < text.size() && (c < 0x20 || c == u'"' || c == u'\\');
        if (i < text.size() && !escaped)
            continue;
        out += encodeUtf8(text.substr(plain, i - plain));
        plain = i + 1;
        if (!escaped)
            break;
        switch (c) {
        case u'"': out += "\\\""; break;
        case u'\\': out += "\\\\"; break;
        case u'\n': out += "\\n"; break;
        case u'\r': out += "\\r"; break;
        case u'\t': out += "\\t"; break;
        default: {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", unsigned(c));
            out += escape;
        }
        }
    }
    out += '"';
}

} // namespace

Catalogue readJson(const std::string& path, const std::string& bytes)
{
    Catalogue c;
    c.path = path;
    const std::u16string text = decodedOrFail(path, 0, bytes.rfind("\xEF\xBB\xBF", 0) == 0 ? bytes.substr(3) : bytes);
    kore::P<kore::CJsonParser> parser = kore::make<kore::CJsonParser>();
    kore::P<kore::IBase> tree;
    try {
        tree = parser->parse(kore::CStringArg(text.c_str(), static_cast<uint32_t>(text.size())));
    } catch (const kore::CJsonParserError& e) {
        fail(path, lineAt(text, parser->getPosition()), "not valid JSON: " + e.getDescription()->toUTF8());
    }
    if (!kore::tryCast<kore::CVariantMap>(tree))
        fail(path, 0, "an i18next file is one JSON object of texts");
    CJsonReader(c).read(*tree, u"");
    return c;
}

std::string writeJson(const Catalogue& c)
{
    std::string out = "{\n";
    bool first = true;
    auto member = [&](std::u16string_view key, std::u16string_view value, const char* indent) {
        out += first ? "" : ",\n";
        first = false;
        out += indent;
        appendString(out, key);
        out += ": ";
        appendString(out, value);
    };
    out += "\t\"@qorlang\": {\n";
    auto meta = [&](std::u16string_view name, const std::optional<std::u16string>& value) {
        if (value)
            member(name, *value, "\t\t");
    };
    meta(u"language", c.language);
    meta(u"application", c.appId);
    meta(u"author", c.author);
    meta(u"comment", c.comment);
    meta(u"native-name", c.nativeName);
    meta(u"native-sub-name", c.nativeSubName);
    meta(u"version", versionText(c.version));
    meta(u"plural-forms", c.pluralForms);
    out += "\n\t}";
    // Flat dotted keys: they read back as the same keys (as i18next finds them too), where
    // nesting would clash for "a" next to "a.b".
    const std::vector<std::string> categories = pluralCategories(c.language.value_or(u""));
    for (const Entry& e : c.entries) {
        if (e.obsolete)
            continue; // i18next has no mark for them
        out += ",\n";
        first = true;
        if (e.forms.empty()) {
            member(e.key, e.text, "\t");
            continue;
        }
        for (size_t i = 0; i < e.forms.size() && i < categories.size(); ++i)
            member(e.key + u'_' + std::u16string(categories[i].begin(), categories[i].end()), e.forms[i], "\t");
    }
    out += "\n}\n";
    return out;
}

void joinI18nextPlurals(Catalogue& c, std::u16string_view tag)
{
    static const std::u16string_view kSuffixes[] = {u"_zero", u"_one", u"_two", u"_few", u"_many", u"_other"};
    const std::vector<std::string> categories = pluralCategories(tag);
    // Base key -> category -> entry index.
    std::map<std::u16string, std::map<std::string, size_t>> groups;
    for (size_t i = 0; i < c.entries.size(); ++i) {
        const std::u16string& key = c.entries[i].key;
        for (std::u16string_view suffix : kSuffixes) {
            if (key.size() > suffix.size() && std::u16string_view(key).substr(key.size() - suffix.size()) == suffix)
                groups[key.substr(0, key.size() - suffix.size())][encodeUtf8(suffix.substr(1))] = i;
        }
    }
    std::vector<bool> joined(c.entries.size());
    std::map<size_t, Entry> plurals; // by the position of the group's first entry
    for (const auto& group : groups) {
        // Named, not a structured binding: clang 14 cannot capture those in the lambda below.
        const std::u16string& base = group.first;
        const std::map<std::string, size_t>& members = group.second;
        // A group holds the language's last form (i18next's fallback for every count), and a
        // second one of the language unless it has only that one: "show_other" alone stays a key.
        const auto own = std::count_if(categories.begin(), categories.end(),
                                       [&](const std::string& category) { return members.count(category) != 0; });
        if (!members.count(categories.back()) || (own < 2 && categories.size() > 1))
            continue;
        Entry entry;
        entry.key = base;
        entry.plural = true;
        entry.pluralSource = base;
        size_t firstAt = c.entries.size();
        for (const std::string& category : categories) {
            auto it = members.find(category);
            entry.forms.push_back(it == members.end() ? std::u16string() : c.entries[it->second].text);
            if (it != members.end()) {
                joined[it->second] = true;
                firstAt = std::min(firstAt, it->second);
            }
        }
        if (firstAt == c.entries.size())
            continue;
        entry.text = entry.forms.front();
        entry.line = c.entries[firstAt].line;
        plurals.emplace(firstAt, std::move(entry));
    }
    std::vector<Entry> out;
    for (size_t i = 0; i < c.entries.size(); ++i) {
        if (auto it = plurals.find(i); it != plurals.end())
            out.push_back(std::move(it->second));
        if (!joined[i])
            out.push_back(std::move(c.entries[i]));
    }
    c.entries = std::move(out);
}

} // namespace qorlang
