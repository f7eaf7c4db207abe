#include "Checks.h"
#include "Formats.h"
#include "Language.h"
#include "Unicode.h"

#include "qor_lang_manager/PluralLookup.h"
#include "qor_lang_manager/PluralRule.h"

#include <algorithm>
#include <map>
#include <set>

namespace qorlang {

namespace {

bool isIdentifierStart(char16_t c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
}
bool isIdentifierChar(char16_t c)
{
    return isIdentifierStart(c) || (c >= u'0' && c <= u'9');
}
bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// A word that is itself a printf field ("%d%" is "%d" followed by a percent sign).
bool looksLikePrintf(std::u16string_view word)
{
    static const std::u16string_view lengths[] = {u"hh", u"ll", u"h", u"l", u"j", u"z", u"t", u"L", u"q", u""};
    for (std::u16string_view length : lengths) {
        if (word.size() == length.size() + 1 && word.substr(0, length.size()) == length &&
            std::u16string_view(u"diouxXeEfFgGaAcspn").find(word.back()) != std::u16string_view::npos)
            return true;
    }
    return false;
}

// Reads a printf field starting at text[i] == '%'; returns its length (0: not a field) and the
// field's identity: position, length modifier and conversion (flags, width and precision may
// differ between languages).
size_t readPrintf(std::u16string_view text, size_t i, std::string& conversion, int& position)
{
    size_t j = i + 1;
    position = 0;
    size_t digits = j;
    while (digits < text.size() && isDigit(text[digits]))
        ++digits;
    if (digits > j && digits - j < 6 && digits < text.size() && text[digits] == u'$') {
        position = std::stoi(encodeUtf8(text.substr(j, digits - j)));
        j = digits + 1;
    }
    while (j < text.size() && std::u16string_view(u"-+ #0'I").find(text[j]) != std::u16string_view::npos)
        ++j;
    // A "*" width or precision takes an argument of its own; it is counted as an "int" field.
    int stars = 0;
    auto skipCount = [&] {
        if (j < text.size() && text[j] == u'*') {
            ++j, ++stars;
            while (j < text.size() && isDigit(text[j]))
                ++j;
            if (j < text.size() && text[j] == u'$')
                ++j;
        } else {
            while (j < text.size() && isDigit(text[j]))
                ++j;
        }
    };
    skipCount();
    if (j < text.size() && text[j] == u'.') {
        ++j;
        skipCount();
    }
    const size_t lengthStart = j;
    while (j < text.size() && std::u16string_view(u"hljztLq").find(text[j]) != std::u16string_view::npos)
        ++j;
    if (j >= text.size() || std::u16string_view(u"diouxXeEfFgGaAcspnCS").find(text[j]) == std::u16string_view::npos)
        return 0;
    conversion = std::string(stars, '*') + encodeUtf8(text.substr(lengthStart, j + 1 - lengthStart));
    return j + 1 - i;
}

// i18next's "{{name}}", "{{- name}}" (unescaped) and "{{name, format}}" all pass the value
// `name`; they count as the field "{name}" so that a translation may choose another format.
bool i18nextField(std::u16string_view text, size_t& i, std::vector<std::string>& named)
{
    const size_t close = text.find(u"}}", i + 2);
    if (close == std::u16string_view::npos)
        return false;
    std::u16string_view inner = text.substr(i + 2, close - i - 2);
    auto trim = [](std::u16string_view s) {
        while (!s.empty() && s.front() == u' ')
            s.remove_prefix(1);
        while (!s.empty() && s.back() == u' ')
            s.remove_suffix(1);
        return s;
    };
    inner = trim(inner);
    if (!inner.empty() && inner.front() == u'-')
        inner = trim(inner.substr(1));
    inner = trim(inner.substr(0, inner.find(u',')));
    if (inner.empty() || !std::all_of(inner.begin(), inner.end(),
                                      [](char16_t c) { return isIdentifierChar(c) || c == u'.' || c == u'$'; }))
        return false;
    named.push_back("{" + encodeUtf8(inner) + "}");
    i = close + 2;
    return true;
}

bool endsInLonePercent(std::u16string_view text)
{
    size_t percents = 0;
    while (percents < text.size() && text[text.size() - 1 - percents] == u'%')
        ++percents;
    return percents % 2 == 1;
}

} // namespace

Placeholders placeholdersOf(std::u16string_view text)
{
    Placeholders out;
    int unnumbered = 0;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == u'%') {
            if (i + 1 < text.size() && text[i + 1] == u'%') {
                i += 2;
                continue;
            }
            size_t end = i + 1;
            if (end < text.size() && isIdentifierStart(text[end])) {
                while (end < text.size() && isIdentifierChar(text[end]))
                    ++end;
                const std::u16string_view word = text.substr(i + 1, end - i - 1);
                if (end < text.size() && text[end] == u'%' && !looksLikePrintf(word)) {
                    out.named.push_back(encodeUtf8(text.substr(i, end + 1 - i)));
                    i = end + 1;
                    continue;
                }
            }
            std::string conversion;
            int position = 0;
            if (const size_t length = readPrintf(text, i, conversion, position)) {
                out.printf.push_back("%" + std::to_string(position ? position : ++unnumbered) + "$" + conversion);
                i += length;
                continue;
            }
            ++i;
        } else if (text.substr(i, 2) == u"{{" && i18nextField(text, i, out.named)) {
            continue;
        } else if (text[i] == u'{') {
            size_t end = i + 1;
            while (end < text.size() &&
                   (isIdentifierChar(text[end]) || text[end] == u'.' || text[end] == u'-' || text[end] == u'$'))
                ++end;
            if (end > i + 1 && end < text.size() && text[end] == u'}') {
                out.named.push_back(encodeUtf8(text.substr(i, end + 1 - i)));
                i = end + 1;
            } else {
                ++i;
            }
        } else {
            ++i;
        }
    }
    std::sort(out.named.begin(), out.named.end());
    std::sort(out.printf.begin(), out.printf.end());
    return out;
}

std::string describeDifference(const Placeholders& expected, const Placeholders& actual)
{
    std::multiset<std::string> want(expected.named.begin(), expected.named.end());
    std::multiset<std::string> have(actual.named.begin(), actual.named.end());
    want.insert(expected.printf.begin(), expected.printf.end());
    have.insert(actual.printf.begin(), actual.printf.end());
    std::vector<std::string> missing, extra;
    std::set_difference(want.begin(), want.end(), have.begin(), have.end(), std::back_inserter(missing));
    std::set_difference(have.begin(), have.end(), want.begin(), want.end(), std::back_inserter(extra));
    auto list = [](const std::vector<std::string>& items) {
        std::string s;
        for (const auto& item : items)
            s += (s.empty() ? "" : " ") + item;
        return s;
    };
    std::string out;
    if (!missing.empty())
        out += "missing " + list(missing);
    if (!extra.empty())
        out += std::string(out.empty() ? "" : ", ") + "extra " + list(extra);
    return out;
}

std::string quoted(std::u16string_view text)
{
    std::u16string shown;
    for (char16_t c : text) {
        if (c == kContextSeparator)
            shown += u"|";
        else if (c == u'\n')
            shown += u"\\n";
        else if (c < 0x20)
            shown += u' ';
        else
            shown.push_back(c);
        if (shown.size() >= 60) {
            shown += u"...";
            break;
        }
    }
    return "\"" + encodeUtf8(shown) + "\"";
}

std::vector<Finding> checkCatalogue(const Catalogue& c, const Catalogue* reference,
                                    const std::vector<uint8_t>* languageFile)
{
    std::vector<Finding> out;
    const bool compiled = languageFile != nullptr;
    const std::string name = fileNameOf(c.path);

    // The language tag, and for a language file the name the library looks for.
    std::optional<std::u16string> tag;
    if (!c.language || c.language->empty()) {
        out.push_back(
            {0, compiled,
             compiled ? "the file names no language" : "the file names no language; compile needs --language"});
    } else if (compiled && !(tag = normalisedTag(*c.language))) {
        out.push_back(
            {c.languageLine, true,
             "the language " + quoted(*c.language) +
                 " is not a tag QOR_LANG2_setCurrentLanguage accepts (it needs language-COUNTRY, such as de-DE)"});
    } else if (!compiled) {
        // The tag the catalogue would compile to also picks its plural rule below: "ar_EG" must be
        // checked against Arabic's six forms, not looked up as written.
        TagChoice choice = tagFor(*c.language);
        if (!choice.tag)
            out.push_back({c.languageLine, false, choice.problem});
        tag = std::move(choice.tag);
    }
    if (compiled && tag) {
        const std::u16string expected = languageFileName(c.appId.value_or(u""), *tag);
        if (c.appId.value_or(u"").empty())
            out.push_back({0, true, "the file has no application id"});
        else if (encodeUtf8(expected) != name)
            out.push_back(
                {0, true,
                 "the library looks for this file under the name " + quoted(expected) + ", never under this one"});
    }

    // Keys defined more than once.
    std::map<std::u16string_view, std::vector<const Entry*>> byKey;
    for (const Entry& e : c.entries) {
        if (!e.obsolete)
            byKey[e.key].push_back(&e);
    }
    std::function<std::u16string(std::u16string_view)> libraryAnswer; // read when first needed
    for (const auto& [key, defs] : byKey) {
        if (defs.size() < 2)
            continue;
        std::u16string answer;
        if (compiled) {
            if (!libraryAnswer)
                libraryAnswer = answersOf(*languageFile);
            answer = libraryAnswer(key);
        } else {
            for (const Entry* e : defs)
                if (e->usable(false))
                    answer = e->text;
        }
        std::string lines;
        for (const Entry* e : defs)
            if (e->line)
                lines += (lines.empty() ? "lines " : ", ") + std::to_string(e->line);
        out.push_back({defs.back()->line, true,
                       "key " + quoted(key) + " is defined " + std::to_string(defs.size()) + " times" +
                           (lines.empty() ? "" : " (" + lines + ")") + "; the library will answer " +
                           (answer.empty() ? std::string("the caller's default") : quoted(answer))});
    }

    // Empty texts: one line each where they are unusual, a count where translators expect them.
    size_t untranslated = 0, fuzzy = 0;
    for (const Entry& e : c.entries) {
        if (e.obsolete)
            continue;
        if (e.text.empty()) {
            if (compiled || formatOf(c.path) == Format::Text)
                out.push_back(
                    {e.line, false, "key " + quoted(e.key) + " has an empty text; the library treats it as missing"});
            else
                ++untranslated;
        } else if (e.fuzzy) {
            ++fuzzy;
        }
    }
    if (untranslated || fuzzy)
        out.push_back({0, false,
                       std::to_string(untranslated) + " untranslated and " + std::to_string(fuzzy) +
                           " fuzzy entries; compile leaves them out (fuzzy ones stay with --use-fuzzy)"});

    // Placeholders against the reference's text of the same key, or without a reference, as
    // msgfmt --check-format does, against the entry's own source text where the format has one:
    // every printf field of a c-format entry, the positional and named fields ({0}, {name}) of the
    // others. Each plural form may follow the singular or the plural source.
    std::map<std::u16string_view, const Entry*> referenceTexts;
    if (reference) {
        for (const Entry& e : reference->entries)
            if (!e.obsolete)
                referenceTexts[e.key] = &e;
    }
    const Format format = formatOf(c.path);
    const bool sourceKeyed = !compiled && (format == Format::Po || format == Format::Ts || format == Format::Xliff);
    for (const Entry& e : c.entries) {
        if (!e.usable(true))
            continue;
        std::vector<std::u16string_view> expectedTexts;
        std::string against;
        bool bracesOnly = false;
        if (reference) {
            auto it = referenceTexts.find(e.key);
            if (it == referenceTexts.end())
                continue;
            const Entry& r = *it->second;
            against = "the reference's text";
            if (!r.text.empty()) {
                expectedTexts.push_back(r.text);
                for (const std::u16string& form : r.forms)
                    expectedTexts.push_back(form);
            } else if (formatOf(reference->path) == Format::Po) {
                expectedTexts.push_back(splitKey(e.key).second); // a template: its source texts
                if (!r.forms.empty())
                    expectedTexts.push_back(r.pluralSource);
                against = r.forms.empty() ? "the reference's source text" : "the reference's source texts";
            }
            if (expectedTexts.empty())
                continue;
            against += r.line ? " (line " + std::to_string(r.line) + ")" : std::string();
        } else if (sourceKeyed && (e.cFormat || !looksLikeKey(splitKey(e.key).second))) {
            expectedTexts.push_back(splitKey(e.key).second);
            if (!e.forms.empty())
                expectedTexts.push_back(e.pluralSource);
            against = e.forms.empty() ? "the source text" : "the source texts";
            bracesOnly = !e.cFormat;
        } else {
            continue;
        }
        auto fields = [&](std::u16string_view text) {
            Placeholders p = placeholdersOf(text);
            if (bracesOnly) {
                p.printf.clear();
                std::erase_if(p.named, [](const std::string& name) { return name[0] != '{'; });
            }
            return p;
        };
        const std::vector<std::u16string_view> texts = e.texts();
        for (size_t i = 0; i < texts.size(); ++i) {
            if (texts[i].empty())
                continue;
            const Placeholders have = fields(texts[i]);
            bool matches = false;
            for (std::u16string_view expected : expectedTexts)
                matches = matches || fields(expected) == have;
            if (!matches)
                out.push_back({e.line, true,
                               "key " + quoted(e.key) + (e.forms.empty() ? "" : " form " + std::to_string(i)) +
                                   ": placeholders differ from " + against + ": " +
                                   describeDifference(fields(expectedTexts.back()), have)});
        }
    }

    // Plural entries against the rule that picks their forms: the catalogue's own, else the
    // language's, as the library chooses.
    const bool anyPlural =
        std::any_of(c.entries.begin(), c.entries.end(), [](const Entry& e) { return !e.forms.empty(); });
    std::optional<qor_lang::PluralRule> rule;
    std::string ruleText;
    if (c.pluralForms) {
        ruleText = encodeUtf8(*c.pluralForms);
        rule = qor_lang::PluralRule::parse(ruleText);
        if (!rule)
            out.push_back({c.pluralFormsLine, true,
                           "the plural rule " + quoted(*c.pluralForms) +
                               " is not one the library reads (nplurals=N; plural=EXPRESSION; with N from 1 to 6)"});
    } else if (anyPlural) {
        ruleText = encodeUtf8(qor_lang::pluralRuleText(std::nullopt, tag.value_or(c.language.value_or(u""))));
        rule = qor_lang::PluralRule::parse(ruleText);
    }
    for (const Entry& e : c.entries) {
        if (!rule || e.forms.empty() || !e.usable(true))
            continue;
        if (e.forms.size() != rule->count())
            out.push_back({e.line, true,
                           "key " + quoted(e.key) + " has " + std::to_string(e.forms.size()) +
                               " plural forms, the rule \"" + ruleText + "\" counts " + std::to_string(rule->count())});
        for (size_t i = 0; i < e.forms.size(); ++i) {
            if (e.forms[i].empty())
                out.push_back({e.line, false,
                               "key " + quoted(e.key) + " form " + std::to_string(i) +
                                   " is empty; the numbers that take it get the caller's default"});
        }
    }

    // Keys no call reaches: qor_lang2::tr takes a key, trc a context and a key; a Qt context kept
    // as "Name|comment" is a context no program spells.
    for (const Entry& e : c.entries) {
        if (!e.usable(true))
            continue;
        const auto [context, source] = splitKey(e.key);
        if (e.key.find(kPluralMark) != std::u16string::npos)
            out.push_back({e.line, false,
                           "key " + quoted(e.key) + " holds U+0005, which marks plural forms: no call reaches it"});
        else if (context && context->find(u'|') != std::u16string_view::npos && format != Format::Po)
            out.push_back({e.line, false,
                           "key " + quoted(e.key) + " keeps the Qt context \"" +
                               encodeUtf8(context->substr(0, context->find(u'|'))) + "\": qor_lang2::tr(" +
                               quoted(source) + ") does not find it (compile a TS file with --qt-context drop)"});
    }

    // A lone "%" at the end: printf takes the terminating zero for a conversion.
    for (const Entry& e : c.entries) {
        if (!e.usable(true))
            continue;
        auto it = referenceTexts.find(e.key);
        const std::u16string_view source =
            it != referenceTexts.end() ? std::u16string_view(it->second->text) : splitKey(e.key).second;
        const std::vector<std::u16string_view> texts = e.texts();
        for (size_t i = 0; i < texts.size(); ++i) {
            if (endsInLonePercent(texts[i]) && !endsInLonePercent(source))
                out.push_back({e.line, e.cFormat || !placeholdersOf(source).printf.empty(),
                               "key " + quoted(e.key) + (e.forms.empty() ? "" : " form " + std::to_string(i)) +
                                   ": the text ends in a lone %, which printf reads as the start of a field; write %% "
                                   "for a percent sign"});
        }
    }

    // Reference keys without a translation here.
    if (reference) {
        std::set<std::u16string_view> here;
        for (const Entry& e : c.entries)
            if (e.usable(false))
                here.insert(e.key);
        std::set<std::u16string_view> reported;
        for (const Entry& e : reference->entries) {
            if (e.obsolete || here.count(e.key) || !reported.insert(e.key).second)
                continue;
            out.push_back({0, false,
                           "key " + quoted(e.key) + " of the reference" +
                               (e.line ? " (line " + std::to_string(e.line) + ")" : std::string()) +
                               " has no translation here"});
        }
    }
    // Keys here that the reference no longer has: the program does not ask for them.
    if (reference) {
        std::set<std::u16string_view> wanted;
        for (const Entry& e : reference->entries)
            if (!e.obsolete)
                wanted.insert(e.key);
        for (const Entry& e : c.entries)
            if (e.usable(true) && !wanted.count(e.key))
                out.push_back(
                    {e.line, false,
                     "key " + quoted(e.key) + " is not in the reference (stale); qorlang merge marks it obsolete"});
    }
    std::stable_sort(out.begin(), out.end(), [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return out;
}

Stats statsOf(const Catalogue& c, const Catalogue* reference)
{
    Stats s;
    std::set<std::u16string_view> keys, translated, fuzzy;
    for (const Entry& e : c.entries) {
        if (e.obsolete)
            continue;
        keys.insert(e.key);
        if (e.usable(false))
            translated.insert(e.key);
        else if (e.usable(true))
            fuzzy.insert(e.key);
    }
    s.entries = keys.size();
    s.translated = translated.size();
    for (auto k : translated)
        fuzzy.erase(k);
    s.fuzzy = fuzzy.size();
    if (reference) {
        std::set<std::u16string_view> wanted;
        for (const Entry& e : reference->entries)
            if (!e.obsolete)
                wanted.insert(e.key);
        for (auto k : wanted)
            s.missing += translated.count(k) ? 0 : 1;
        s.percent = wanted.empty() ? 100.0 : 100.0 * double(wanted.size() - s.missing) / double(wanted.size());
    } else {
        s.percent = s.entries == 0 ? 100.0 : 100.0 * double(s.translated) / double(s.entries);
    }
    return s;
}

} // namespace qorlang
