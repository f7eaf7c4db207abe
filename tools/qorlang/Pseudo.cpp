// Pseudo-localisation: a language file in which every text is still readable but visibly passed
// through the library, grown as translations grow, with letters that need accents in the font.
#include "Workflow.h"

#include <string_view>

namespace qorlang {

namespace {

constexpr std::u16string_view kLower = u"ȧƀƈḓḗƒɠħīĵķŀḿƞǿƥɋřşŧŭṽẇẋẏẑ";
constexpr std::u16string_view kUpper = u"ȦƁƇḒḖƑƓĦĪĴĶĿḾȠǾƤɊŘŞŦŬṼẆẊẎẐ";
static_assert(kLower.size() == 26 && kUpper.size() == 26);
constexpr char16_t kRightToLeftOverride = u'\x202E';
constexpr char16_t kPopDirectionalFormatting = u'\x202C';

bool isLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// The length of what must stay as it is at text[i]: a printf field ("%-5.2ld", "%1$s", "%%"),
// a "%NAME%", a "{name}" or "{{name}}" field, a tag ("<b>"), an entity ("&amp;") or a control
// character; 0 for ordinary text.
size_t protectedLength(std::u16string_view text, size_t i)
{
    const char16_t c = text[i];
    if (c < 0x20)
        return 1;
    if (c == u'%') {
        size_t j = i + 1;
        if (j < text.size() && text[j] == u'%')
            return 2;
        size_t name = j;
        while (name < text.size() && (isLetter(text[name]) || isDigit(text[name]) || text[name] == u'_'))
            ++name;
        if (name > j && name < text.size() && text[name] == u'%' && isLetter(text[j]) && name - j > 1)
            return name + 1 - i;
        while (j < text.size() && std::u16string_view(u"0123456789$#+- .'*").find(text[j]) != std::u16string_view::npos)
            ++j;
        while (j < text.size() && std::u16string_view(u"hljztLqI").find(text[j]) != std::u16string_view::npos)
            ++j;
        if (j < text.size() && std::u16string_view(u"diouxXeEfFgGaAcspnCS").find(text[j]) != std::u16string_view::npos)
            return j + 1 - i;
        if (j < text.size() && text[j] == u'<') { // gettext's "%<PRIu64>"
            const size_t close = text.find(u'>', j);
            if (close != std::u16string_view::npos)
                return close + 1 - i;
        }
        return 1;
    }
    if (c == u'{') {
        const bool doubled = i + 1 < text.size() && text[i + 1] == u'{';
        const size_t close = text.find(doubled ? u"}}" : u"}", i);
        return close == std::u16string_view::npos ? 1 : close + (doubled ? 2 : 1) - i;
    }
    if (c == u'<') {
        const size_t close = text.find(u'>', i);
        return close == std::u16string_view::npos ? 1 : close + 1 - i;
    }
    if (c == u'&') {
        size_t j = i + 1;
        while (j < text.size() && (isLetter(text[j]) || isDigit(text[j]) || text[j] == u'#'))
            ++j;
        return j > i + 1 && j < text.size() && text[j] == u';' ? j + 1 - i : 1;
    }
    return 0;
}

} // namespace

std::u16string pseudoText(std::u16string_view text, bool rightToLeft)
{
    std::u16string body;
    size_t visible = 0;
    bool inRun = false;
    const auto endRun = [&] {
        if (inRun && rightToLeft)
            body.push_back(kPopDirectionalFormatting);
        inRun = false;
    };
    for (size_t i = 0; i < text.size();) {
        if (const size_t keep = protectedLength(text, i)) {
            endRun();
            body += text.substr(i, keep);
            i += keep;
            continue;
        }
        if (!inRun && rightToLeft)
            body.push_back(kRightToLeftOverride);
        inRun = true;
        const char16_t c = text[i++];
        ++visible;
        if (c >= u'a' && c <= u'z')
            body.push_back(kLower[c - u'a']);
        else if (c >= u'A' && c <= u'Z')
            body.push_back(kUpper[c - u'A']);
        else
            body.push_back(c);
    }
    endRun();
    // About a third longer, as German or Finnish texts grow against English ones.
    return u"[" + body + std::u16string((visible * 35 + 99) / 100, u'~') + u"]";
}

} // namespace qorlang
