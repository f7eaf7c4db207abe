// gettext's system-dependent printf segments: a c-format text may write "%<PRIu64>" for the
// conversion <inttypes.h> spells PRIu64 ("%lu" on 64-bit Linux). msgfmt keeps them apart and the C
// library fills in its own spelling when it loads a catalogue; a language file holds plain texts,
// so the tool fills in the spelling of the platform it was built for.
#include "Formats.h"

#include <cinttypes>
#include <map>

namespace qorlang {

namespace {

#define QORLANG_PRI_SIZES(conv)                                                                                        \
    {u"PRI" #conv "8", PRI##conv##8}, {u"PRI" #conv "16", PRI##conv##16}, {u"PRI" #conv "32", PRI##conv##32},          \
        {u"PRI" #conv "64", PRI##conv##64}, {u"PRI" #conv "LEAST8", PRI##conv##LEAST8},                                \
        {u"PRI" #conv "LEAST16", PRI##conv##LEAST16}, {u"PRI" #conv "LEAST32", PRI##conv##LEAST32},                    \
        {u"PRI" #conv "LEAST64", PRI##conv##LEAST64}, {u"PRI" #conv "FAST8", PRI##conv##FAST8},                        \
        {u"PRI" #conv "FAST16", PRI##conv##FAST16}, {u"PRI" #conv "FAST32", PRI##conv##FAST32},                        \
        {u"PRI" #conv "FAST64", PRI##conv##FAST64}, {u"PRI" #conv "MAX", PRI##conv##MAX},                              \
    {                                                                                                                  \
        u"PRI" #conv "PTR", PRI##conv##PTR                                                                             \
    }

const std::map<std::u16string_view, const char*>& segments()
{
    static const std::map<std::u16string_view, const char*> table = {
        QORLANG_PRI_SIZES(d), QORLANG_PRI_SIZES(i), QORLANG_PRI_SIZES(o),
        QORLANG_PRI_SIZES(u), QORLANG_PRI_SIZES(x), QORLANG_PRI_SIZES(X),
    };
    return table;
}

#undef QORLANG_PRI_SIZES

} // namespace

std::u16string expandSystemDependent(std::u16string_view text)
{
    std::u16string out;
    size_t i = 0;
    for (size_t open = text.find(u"<PRI"); open != std::u16string_view::npos; open = text.find(u"<PRI", i)) {
        const size_t close = text.find(u'>', open);
        if (close == std::u16string_view::npos)
            break;
        auto it = segments().find(text.substr(open + 1, close - open - 1));
        out += text.substr(i, open - i);
        if (it != segments().end()) {
            for (const char* c = it->second; *c; ++c)
                out.push_back(static_cast<char16_t>(*c));
        } else {
            out += text.substr(open, close + 1 - open);
        }
        i = close + 1;
    }
    out += text.substr(i);
    return out;
}

} // namespace qorlang
