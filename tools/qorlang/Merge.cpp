// merge and init through the catalogue model, for the formats gettext's msgmerge and msginit do
// not read (TS, XLIFF, i18next JSON): the same outcome as msgmerge's, entry by entry.
#include "Workflow.h"

#include "qor_lang_manager/PluralLookup.h"

#include <algorithm>
#include <map>
#include <set>

namespace qorlang {

namespace {

// As many empty forms as the rule a catalogue in `language` follows ("de_DE", "pt-PT", "sr@latin"):
// its own `rule`, else the language's, as the library chooses at run time.
std::vector<std::u16string> emptyForms(const std::optional<std::u16string>& rule, std::u16string_view language)
{
    std::u16string tag(language.substr(0, language.find_first_of(u"@.")));
    std::replace(tag.begin(), tag.end(), u'_', u'-');
    const std::u16string text = qor_lang::pluralRuleText(rule, tag);
    const auto parsed = qor_lang::PluralRule::parse(std::string(text.begin(), text.end()));
    return std::vector<std::u16string>(parsed ? parsed->count() : 2);
}

// The template's entry `t` untranslated, a plural one with the language's empty forms.
Entry untranslated(const Entry& t, const std::vector<std::u16string>& languageForms)
{
    Entry e = t;
    e.text.clear();
    if (!e.forms.empty())
        e.forms = languageForms;
    e.fuzzy = false;
    e.line = 0;
    return e;
}

// Puts the translation `from` into the template's entry `e`; true when its shape no longer fits
// (a plural source added, changed or dropped), so that a translator reviews it.
bool carryTranslation(Entry& e, const Entry& from, const std::vector<std::u16string>& languageForms)
{
    e.text = from.text;
    if (e.forms.empty())
        return !from.forms.empty();
    if (from.forms.empty()) {
        e.forms = languageForms;
        e.forms.front() = from.text;
        return true;
    }
    e.forms = from.forms;
    return from.pluralSource != e.pluralSource;
}

} // namespace

double similarity(std::u16string_view a, std::u16string_view b)
{
    if (a == b)
        return 1.0;
    if (a.empty() || b.empty())
        return 0.0;
    // Longest common subsequence over at most 400 units of each; beyond that the start decides.
    a = a.substr(0, 400);
    b = b.substr(0, 400);
    std::vector<unsigned> row(b.size() + 1, 0), previous(b.size() + 1, 0);
    for (size_t i = 1; i <= a.size(); ++i) {
        std::swap(row, previous);
        for (size_t j = 1; j <= b.size(); ++j)
            row[j] = a[i - 1] == b[j - 1] ? previous[j - 1] + 1 : std::max(previous[j], row[j - 1]);
    }
    return 2.0 * row[b.size()] / double(a.size() + b.size());
}

Catalogue mergeCatalogue(const Catalogue& translation, const Catalogue& templ)
{
    Catalogue out = translation;
    out.entries.clear();
    std::map<std::u16string_view, const Entry*> current, old;
    for (const Entry& e : translation.entries)
        (e.obsolete ? old : current)[e.key] = &e;
    std::set<std::u16string_view> wanted;
    for (const Entry& t : templ.entries)
        if (!t.obsolete)
            wanted.insert(t.key);
    // Translations whose key is gone: candidates for a changed source text, else obsolete.
    std::vector<const Entry*> removed;
    for (const Entry& e : translation.entries)
        if (!wanted.count(e.key) && !e.text.empty() && (e.obsolete ? old : current)[e.key] == &e)
            removed.push_back(&e);
    std::set<const Entry*> reused;
    const std::vector<std::u16string> languageForms =
        emptyForms(translation.pluralForms, translation.language.value_or(u""));

    std::set<std::u16string_view> done;
    for (const Entry& t : templ.entries) {
        if (t.obsolete || !done.insert(t.key).second)
            continue;
        Entry e = untranslated(t, languageForms);
        if (auto it = current.find(t.key); it != current.end()) {
            e.fuzzy = carryTranslation(e, *it->second, languageForms) || it->second->fuzzy;
        } else if (auto was = old.find(t.key); was != old.end() && !was->second->text.empty()) {
            carryTranslation(e, *was->second, languageForms);
            e.fuzzy = true; // back again: to be reviewed
        } else {
            const auto [context, source] = splitKey(t.key);
            const Entry* best = nullptr;
            double bestScore = 0.6; // gettext's threshold for a fuzzy match
            for (const Entry* r : removed) {
                const auto [rContext, rSource] = splitKey(r->key);
                const double score = rContext == context ? similarity(source, rSource) : 0.0;
                if (score >= bestScore && !reused.count(r)) {
                    best = r;
                    bestScore = score;
                }
            }
            if (best) {
                carryTranslation(e, *best, languageForms);
                e.fuzzy = true;
                reused.insert(best);
            }
        }
        out.entries.push_back(std::move(e));
    }
    for (const Entry* r : removed) {
        if (reused.count(r))
            continue; // lives on under its new key
        Entry e = *r;
        e.obsolete = true;
        e.line = 0;
        out.entries.push_back(std::move(e));
    }
    return out;
}

MergeCounts countChanges(const Catalogue& before, const Catalogue& after)
{
    std::map<std::u16string_view, const Entry*> was;
    for (const Entry& e : before.entries)
        if (!e.obsolete)
            was[e.key] = &e;
    MergeCounts counts;
    for (const Entry& e : after.entries) {
        auto it = was.find(e.key);
        if (e.obsolete)
            counts.obsolete += it != was.end() ? 1 : 0;
        else if (it != was.end())
            ++(e.fuzzy && !it->second->fuzzy ? counts.fuzzy : counts.kept);
        else
            ++(e.fuzzy ? counts.fuzzy : counts.added);
    }
    return counts;
}

Catalogue initCatalogue(const Catalogue& templ, const std::u16string& tag)
{
    Catalogue out;
    out.path = templ.path;
    out.language = tag;
    out.appId = templ.appId;
    const std::vector<std::u16string> forms = emptyForms(std::nullopt, tag);
    for (const Entry& t : templ.entries) {
        if (t.obsolete)
            continue;
        out.entries.push_back(untranslated(t, forms));
    }
    return out;
}

} // namespace qorlang
