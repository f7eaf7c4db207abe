// extract: gettext's xgettext reads the sources (it knows C and C++ literals, comments,
// concatenation and macros far better than a lexer of our own would); qorlang adds the keyword
// options for the library's calls and the default texts.
#include "Formats.h"
#include "Process.h"
#include "Workflow.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>

namespace qorlang {

namespace {

// Keys: tr(key, default), trc(context, key, default), trn(key, pluralKey, n),
// trnc(context, key, pluralKey, n), QOR_LANG2_getLocalString(key, default).
const char* const kKeyKeywords[] = {"--keyword=tr:1", "--keyword=trc:1c,2", "--keyword=trn:1,2",
                                    "--keyword=trnc:1c,2,3", "--keyword=QOR_LANG2_getLocalString:1"};
const char* const kDefaultKeywords[] = {"--keyword=tr:2", "--keyword=trc:3", "--keyword=QOR_LANG2_getLocalString:2"};

struct Block {
    std::vector<std::string> references; // "file:line" each
    std::string msgid; // as quoted in the file, the pieces joined
};

// The entries of xgettext's output, split at blank lines.
std::vector<std::pair<std::string, Block>> blocksOf(const std::string& pot)
{
    std::vector<std::pair<std::string, Block>> out;
    size_t pos = 0;
    while (pos < pot.size()) {
        size_t end = pot.find("\n\n", pos);
        end = end == std::string::npos ? pot.size() : end + 1;
        const std::string text = pot.substr(pos, end - pos);
        pos = end + (end < pot.size() ? 1 : 0);
        Block block;
        bool inId = false;
        for (size_t at = 0; at < text.size();) {
            size_t lineEnd = text.find('\n', at);
            lineEnd = lineEnd == std::string::npos ? text.size() : lineEnd;
            const std::string line = text.substr(at, lineEnd - at);
            at = lineEnd + 1;
            if (line.rfind("#: ", 0) == 0) {
                for (size_t s = 3; s < line.size();) {
                    size_t e = std::min(line.find(' ', s), line.size());
                    block.references.push_back(line.substr(s, e - s));
                    s = e + 1;
                }
            } else if (line.rfind("msgid \"", 0) == 0) {
                block.msgid = line.substr(7, line.size() - 8);
                inId = true;
            } else if (inId && line.size() >= 2 && line[0] == '"') {
                block.msgid += line.substr(1, line.size() - 2);
            } else {
                inId = false;
            }
        }
        out.emplace_back(text, std::move(block));
    }
    return out;
}

std::string temporaryBeside(const std::string& path, const char* suffix)
{
    return path + ".extract" + std::to_string(std::random_device()() % 1000000) + suffix;
}

void removeQuietly(const std::string& utf8)
{
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(std::u8string(utf8.begin(), utf8.end())), ignored);
}

} // namespace

std::string addDefaultComments(const std::string& keys, const std::string& defaults)
{
    std::map<std::string, std::vector<std::string>> byReference;
    for (const auto& [text, block] : blocksOf(defaults))
        for (const std::string& reference : block.references)
            byReference[reference].push_back(block.msgid);
    std::string out;
    for (const auto& [text, block] : blocksOf(keys)) {
        std::vector<std::string> comments;
        for (const std::string& reference : block.references) {
            auto it = byReference.find(reference);
            if (it == byReference.end())
                continue;
            for (const std::string& value : it->second)
                if (value != block.msgid && std::find(comments.begin(), comments.end(), value) == comments.end())
                    comments.push_back(value);
        }
        std::string extra;
        for (const std::string& value : comments)
            extra += "#. default: \"" + value + "\"\n";
        // Before the references, where xgettext puts its extracted comments.
        const size_t at = text.find("#: ");
        out += at == std::string::npos ? text : text.substr(0, at) + extra + text.substr(at);
        out += "\n";
    }
    while (out.size() >= 2 && out.compare(out.size() - 2, 2, "\n\n") == 0)
        out.pop_back();
    return out;
}

std::string withDefaultsAsTexts(const std::string& pot)
{
    std::string out;
    for (auto [text, block] : blocksOf(pot)) {
        const std::string marker = "#. default: \"";
        const size_t comment = text.find(marker);
        const size_t empty = text.find("\nmsgstr \"\"\n");
        if (comment != std::string::npos && empty != std::string::npos) {
            const size_t start = comment + marker.size();
            const std::string value =
                text.substr(start, text.find('\n', start) - start - 1); // still quoted as PO quotes it
            text.replace(empty, 11, "\nmsgstr \"" + value + "\"\n");
        }
        out += text + "\n";
    }
    return out;
}

void extractTemplate(const std::vector<std::string>& sources, const std::string& output, const std::string& packageName)
{
    const std::string xgettext = requireProgram("xgettext", "gettext (Debian: apt-get install gettext)");
    const auto run = [&](const char* const* keywords, size_t count, const std::string& to) {
        std::vector<std::string> command = {xgettext,
                                            "--language=C++",
                                            "--from-code=UTF-8",
                                            "--add-comments=TRANSLATORS:",
                                            "--keyword",
                                            "--force-po",
                                            "--no-wrap",
                                            "--package-name=" + packageName,
                                            "-o",
                                            to};
        command.insert(command.end(), keywords, keywords + count);
        command.insert(command.end(), sources.begin(), sources.end());
        if (runProgram(command) != 0)
            fail(
                output, 0,
                "xgettext failed on the sources (its message is above); fix the source it names and run extract again");
    };
    const std::string keysFile = temporaryBeside(output, ".keys"), defaultsFile = temporaryBeside(output, ".defaults");
    std::string keys, defaults;
    try {
        run(kKeyKeywords, std::size(kKeyKeywords), keysFile);
        run(kDefaultKeywords, std::size(kDefaultKeywords), defaultsFile);
        keys = readFileBytes(keysFile);
        defaults = readFileBytes(defaultsFile);
    } catch (...) {
        removeQuietly(keysFile);
        removeQuietly(defaultsFile);
        throw;
    }
    removeQuietly(keysFile);
    removeQuietly(defaultsFile);
    writeFileAtomically(output, addDefaultComments(keys, defaults));
}

} // namespace qorlang
