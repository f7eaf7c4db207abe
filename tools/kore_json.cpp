// kore_json [--pretty] FILE
//
// Reads FILE as UTF-8 JSON with the framework's parser and prints it again with its printer
// (compact unless --pretty), as UTF-8 followed by one line feed. Exit status: 0 when the file
// parsed, 1 when it did not (the parser's message goes to standard error), 2 for a usage or
// input/output error.
#include "framework/PlatformSupport.h"
#include "framework/errors/CException.h"
#include "framework/errors/CJsonParserError.h"
#include "framework/text/IString.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr int kParseError = 1;
constexpr int kUsageOrIOError = 2;

int usage()
{
    std::fputs("usage: kore_json [--pretty] FILE\n", stderr);
    return kUsageOrIOError;
}

int ioError(const std::string& file, const char* what)
{
    std::fprintf(stderr, "kore_json: %s '%s'\n", what, file.c_str());
    return kUsageOrIOError;
}

bool readFile(const std::string& utf8Name, std::string& content)
{
    const std::filesystem::path path(std::u8string(reinterpret_cast<const char8_t*>(utf8Name.data()), utf8Name.size()));
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

int run(const std::vector<std::string>& args)
{
    bool pretty = false;
    size_t next = 0;
    if (next < args.size() && args[next] == "--pretty") {
        pretty = true;
        ++next;
    }
    if (args.size() != next + 1 || args[next].empty() || args[next].rfind("--", 0) == 0)
        return usage();
    const std::string& file = args[next];

    std::string content;
    if (!readFile(file, content))
        return ioError(file, "cannot read");

    std::string text;
    try {
        const kore::P<kore::IBase> tree = kore::make<kore::CJsonParser>()->parseUTF8(content);
        text = kore::make<kore::CJsonPrinter>(pretty)->print(tree.get())->toUTF8();
    } catch (const kore::CJsonParserError& e) {
        std::fprintf(stderr, "%s\n", e.getDescription()->toUTF8().c_str());
        return kParseError;
    }
    text.push_back('\n');
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        return ioError(file, "cannot write the text of");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    kore::platform::setBinaryStandardStreams();
    try {
        return run(kore::platform::getArgumentsUTF8(argc, argv));
    } catch (const kore::CException& e) {
        std::fprintf(stderr, "kore_json: %s\n", e.getDescription()->toUTF8().c_str());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kore_json: %s\n", e.what());
    }
    return kUsageOrIOError;
}
