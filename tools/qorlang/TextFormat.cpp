// The project's own plain text source, one item per line:
//   # comment
//   @tag=de-DE              language tag (language-COUNTRY)
//   @native=Deutsch         name of the language in itself
//   @nativeSub=Deutschland  name of the variant in the language itself
//   @author=...             the author
//   @comment=...            ("\n" stands for a line break, as in texts)
//   @version=3
//   key=text                one string entry; "\n" in the text stands for a line break
#include "Formats.h"

namespace qorlang {

namespace {

std::u16string unescape(const std::u16string& text)
{
    std::u16string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size() && (text[i + 1] == u'n' || text[i + 1] == u'\\')) {
            out.push_back(text[i + 1] == u'n' ? u'\n' : u'\\');
            ++i;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

} // namespace

Catalogue readText(const std::string& path, const std::string& bytes)
{
    Catalogue c;
    c.path = path;
    size_t pos = bytes.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
    for (int number = 1; pos < bytes.size(); ++number) {
        size_t end = bytes.find('\n', pos);
        if (end == std::string::npos)
            end = bytes.size();
        std::string line = bytes.substr(pos, end - pos);
        pos = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        const size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0)
            fail(path, number, "expected key=text");
        const std::u16string key = decodedOrFail(path, number, line.substr(0, equals));
        const std::u16string value = decodedOrFail(path, number, line.substr(equals + 1));
        if (key[0] != u'@') {
            c.entries.push_back(Entry{key, unescape(value), number});
        } else if (key == u"@tag") {
            c.language = value;
            c.languageLine = number;
        } else if (key == u"@native") {
            c.nativeName = value;
        } else if (key == u"@nativeSub") {
            c.nativeSubName = value;
        } else if (key == u"@author") {
            c.author = value;
        } else if (key == u"@comment") {
            c.comment = unescape(value);
        } else if (key == u"@version") {
            c.version = versionOf(line.substr(equals + 1));
            if (!c.version)
                fail(path, number, "@version takes a decimal number");
        } else {
            fail(path, number, "unknown field " + line.substr(0, equals));
        }
    }
    return c;
}

} // namespace qorlang
