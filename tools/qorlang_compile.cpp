// qorlang_compile: turns a translation source (UTF-8 text) into a ".qorlang" language file.
//
//   qorlang_compile <source.txt> <output.qorlang> <application id>
//
// Source format, one item per line:
//   # comment
//   @tag=de-DE              language tag (language-COUNTRY)
//   @native=Deutsch         name of the language in itself
//   @nativeSub=Deutschland  name of the variant in the language itself
//   @author=...             written as the "QOR_LANG_AUTHOR" pair
//   @comment=...
//   @version=3
//   key=text                one string entry; "\n" in the text stands for a line break
#include "framework/CException.h"
#include "framework/CString.h"
#include "framework/CURI.h"
#include "framework/UTF8Decoding.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include <fstream>
#include <iostream>
#include <optional>
#include <string>

namespace {

// Through the complete decoder: the framework's UTF-8 strings would drop scripts such as
// Devanagari and Thai from translations; this tool must keep every character.
std::optional<std::u16string> decodeUtf8(const std::string& in)
{
    std::u16string out;
    if (!kore::decodeUTF8(in, out))
        return std::nullopt;
    return out;
}

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

int fail(const std::string& where, const std::string& message)
{
    std::cerr << "qorlang_compile: " << where << ": " << message << "\n";
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: qorlang_compile <source.txt> <output.qorlang> <application id>\n";
        return 2;
    }
    std::ifstream source(argv[1], std::ios::binary);
    if (!source)
        return fail(argv[1], "cannot read the file");

    qor_lang::CLanguageFileWriter writer;
    std::u16string tag, native, nativeSub, comment;
    std::string line;
    for (int number = 1; std::getline(source, line); ++number) {
        const std::string where = std::string(argv[1]) + ":" + std::to_string(number);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (number == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0)
            line.erase(0, 3);
        if (line.empty() || line[0] == '#')
            continue;
        const size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0)
            return fail(where, "expected key=text");
        const auto key = decodeUtf8(line.substr(0, equals));
        const auto value = decodeUtf8(line.substr(equals + 1));
        if (!key || !value)
            return fail(where, "not valid UTF-8");
        if ((*key)[0] != u'@') {
            writer.addString(*key, unescape(*value));
        } else if (*key == u"@tag") {
            tag = *value;
        } else if (*key == u"@native") {
            native = *value;
        } else if (*key == u"@nativeSub") {
            nativeSub = *value;
        } else if (*key == u"@author") {
            writer.setAuthor(*value);
        } else if (*key == u"@comment") {
            comment = unescape(*value);
        } else if (*key == u"@version") {
            const std::string digits = line.substr(equals + 1);
            if (digits.empty() || digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string::npos)
                return fail(where, "@version takes a decimal number");
            writer.setVersion(static_cast<uint32_t>(std::stoul(digits)));
        } else {
            return fail(where, "unknown field " + line.substr(0, equals));
        }
    }
    if (tag.empty())
        return fail(argv[1], "no @tag line");
    writer.setLanguage(tag, native, nativeSub);
    writer.setComment(comment);
    const auto appId = decodeUtf8(argv[3]);
    if (!appId)
        return fail(argv[3], "application id is not valid UTF-8");
    writer.setApplication(*appId);
    try {
        writer.writeFile(*kore::CURI::fromLocalPath(kore::CString::fromUTF8(argv[2])));
    } catch (const kore::CException& e) {
        return fail(argv[2], e.getDescription()->toUTF8());
    } catch (const std::exception&) {
        return fail(argv[2], "cannot write the file");
    }
    return 0;
}
