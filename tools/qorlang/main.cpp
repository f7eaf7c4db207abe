// qorlang: compiles translations (gettext PO, XLIFF, Qt TS, the project's text format) into
// language files, turns language files back into translators' formats, and checks both.
#include "Checks.h"
#include "Formats.h"
#include "Language.h"
#include "Process.h"
#include "Unicode.h"
#include "Workflow.h"

#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "framework/PlatformSupport.h"
#include "framework/errors/CException.h"
#include "framework/text/IString.h"
#include "qor_lang_manager/CLanguageFile.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace qorlang;

// A command line the tool cannot act on; exits with 2 where a failed input exits with 1.
struct UsageError {
    std::string message;
};
[[noreturn]] void usageError(const std::string& command, const std::string& message)
{
    throw UsageError{"qorlang " + command + ": " + message + " (see qorlang " + command + " --help)"};
}

const char* const kUsage =
    "usage: qorlang <command> [options]\n"
    "\n"
    "commands:\n"
    "  compile INPUT -o OUTPUT.qorlang   make a language file from a translation\n"
    "  decompile INPUT.qorlang -o OUTPUT  write a language file as .po, .xlf, .ts or .json\n"
    "  check FILE... [--reference FILE]   find mistakes a translator can fix\n"
    "  stats FILE... [--reference FILE]   count entries and translations\n"
    "  info FILE.qorlang                  show what the library reads from a language file\n"
    "  extract SOURCE... -o APP.pot       collect the keys of C and C++ sources (xgettext)\n"
    "  init TEMPLATE -o de.po             start a language from a template\n"
    "  merge TEMPLATE FILE...             bring translations up to a changed template\n"
    "  pseudo INPUT -o APP-TAG.qorlang    a pseudo-localised language file for testing\n"
    "\n"
    "Input formats by extension: .po/.pot (gettext), .xlf/.xliff (XLIFF 1.2, 2.0), .ts (Qt),\n"
    ".json (i18next), .txt (key=text lines), .qorlang. 'qorlang <command> --help' tells more.\n"
    "'qorlang --version' prints the version.\n"
    "\n"
    "Exit status: 0 done (check: no errors), 1 an input could not be used or check found errors,\n"
    "2 the command line is wrong.\n";

const std::map<std::string, const char*> kCommandHelp = {
    {"compile", "usage: qorlang compile INPUT -o OUTPUT [--app-id ID] [--language TAG] [--author NAME]\n"
                "                       [--comment TEXT] [--native-name NAME] [--native-sub-name NAME]\n"
                "                       [--use-fuzzy] [--qt-context auto|keep|drop]\n"
                "\n"
                "Makes the language file OUTPUT (.qorlang) from INPUT (.po, .xlf, .xliff, .ts, .json, .txt).\n"
                "  --language TAG  the language, language-COUNTRY such as de-DE; by default the tag OUTPUT's\n"
                "                  name ends in (app-de-AT.qorlang), else the input's own (PO \"Language\",\n"
                "                  XLIFF target language, TS language); a bare language takes its usual\n"
                "                  country (de: de-DE, pt: pt-BR, as CLDR's likely subtags say); a script\n"
                "                  (sr-Latn, zh-Hant) or modifier (sr@latin) is refused: give --language\n"
                "  --native-name NAME      the language's name in itself (Deutsch), for language pickers\n"
                "  --native-sub-name NAME  the variant's name in the language (Österreich)\n"
                "  --app-id ID     the application id; by default taken from OUTPUT's name <app>-<tag>.qorlang\n"
                "  --author NAME   by default the PO \"Last-Translator\"\n"
                "  --comment TEXT  by default the comment lines above a PO header\n"
                "  --use-fuzzy     keep fuzzy (unreviewed) translations, which are left out otherwise\n"
                "  --qt-context    how a Qt TS <context><name> enters the keys: keep makes the key\n"
                "                  \"name|comment\", U+0004, source (as lconvert's PO); drop leaves it out;\n"
                "                  auto (the default) drops it where every source of the context looks like a\n"
                "                  key (app.title), and lupdate's context qor_lang2 (of qor_lang2::tr calls)\n"
                "                  unless kept\n"
                "Untranslated entries are left out; a key given twice keeps its last text. A gettext\n"
                "context becomes part of the key: context, U+0004, source text. In i18next JSON nested\n"
                "objects give dotted keys (\"menu\": {\"open\": ...} is menu.open), and item_one, item_few,\n"
                "item_other... one plural entry item, its forms in the CLDR order of the language. A plural\n"
                "entry keeps every form, and the catalogue's plural rule (PO Plural-Forms) goes along;\n"
                "qor_lang2::trn picks the form for a number.\n"},
    {"decompile", "usage: qorlang decompile INPUT.qorlang -o OUTPUT\n"
                  "\n"
                  "Writes every entry and the descriptive data of a language file as OUTPUT, whose extension\n"
                  "chooses the format: .po, .xlf/.xliff (XLIFF 1.2), .ts or .json (i18next, flat dotted keys).\n"
                  "Compiling OUTPUT again gives the same entries.\n"},
    {"check", "usage: qorlang check FILE... [--reference FILE] [--qt-context auto|keep|drop]\n"
              "\n"
              "Reports, per file and line, what a translator should fix: placeholders that differ from the\n"
              "reference's text of the same key (a template's source text), or without a reference from the\n"
              "entry's own source text\n"
              "(printf fields %s, %1$d for a c-format entry; {0}, {name}, {{name}} for the others; each\n"
              "plural form against the singular or the plural source), plural entries whose count of forms\n"
              "is not the plural rule's, reference keys missing here, keys defined twice, keys no qor_lang2\n"
              "call reaches, empty texts, a language tag the library rejects, a language file name the\n"
              "library never looks for. Exits with 1 when there are errors, 0 when there are only warnings.\n"},
    {"stats", "usage: qorlang stats FILE... [--reference FILE]\n"
              "\n"
              "Prints one row per file: entries, translated, fuzzy, missing against the reference and the\n"
              "translated share (of the reference's keys when one is given).\n"},
    {"extract", "usage: qorlang extract SOURCE... -o OUTPUT.pot [--package-name NAME]\n"
                "\n"
                "Runs gettext's xgettext over C and C++ SOURCEs and writes the template OUTPUT with every key\n"
                "the program asks for: qor_lang2::tr(key, default), trc(context, key, default),\n"
                "trn(key, pluralKey, n), trnc(context, key, pluralKey, n) and QOR_LANG2_getLocalString(key,\n"
                "default), with contexts, plural pairs and source references. A default text that differs\n"
                "from its key is shown to translators as \"#. default: ...\", comments starting with\n"
                "TRANSLATORS: too. Needs xgettext (Debian package gettext).\n"},
    {"init", "usage: qorlang init TEMPLATE -o OUTPUT [--language TAG]\n"
             "\n"
             "Starts the translation OUTPUT (.po, .ts, .xlf, .json) of TEMPLATE (usually the .pot of\n"
             "extract) with every entry untranslated. The language is --language, else OUTPUT's name\n"
             "(de.po, de_AT.po, app-de-DE.ts; a bare language takes its usual country). A PO file is made\n"
             "by gettext's msginit, so it carries the language's plural rule. OUTPUT must not exist yet.\n"},
    {"merge", "usage: qorlang merge TEMPLATE FILE...\n"
              "\n"
              "Brings each translation FILE up to date with TEMPLATE, in place: new keys are added\n"
              "untranslated, a key whose source text changed keeps its old translation marked fuzzy, keys\n"
              "no longer in TEMPLATE become obsolete. PO files go through gettext's msgmerge (translators'\n"
              "comments kept); TS, XLIFF and JSON through the tool's own catalogue, with the same rules\n"
              "(JSON cannot mark obsolete entries, so they are dropped there). Prints per FILE how many\n"
              "entries were kept, added, marked fuzzy and made obsolete.\n"},
    {"pseudo", "usage: qorlang pseudo INPUT -o OUTPUT.qorlang [--language TAG] [--app-id ID] [--rtl]\n"
               "\n"
               "Writes a language file in which every text of INPUT (its translation, else its source text)\n"
               "is pseudo-localised: letters accented, about 35 % longer, in brackets, so that texts that\n"
               "bypass the library, labels cut off and fonts without accents show at once. Placeholders and\n"
               "markup stay as they are. --rtl also mirrors the text right to left. The tag is --language,\n"
               "else the one OUTPUT's name ends in, else zxx-US (zxx: no linguistic content), which the host\n"
               "selects like any other.\n"},
    {"info", "usage: qorlang info FILE.qorlang\n"
             "\n"
             "Prints what the library's file accessors answer for FILE, its version and its entry count.\n"},
};

struct Arguments {
    std::vector<std::string> files;
    std::map<std::string, std::string> options; // "--app-id" -> value; flags map to ""
};

// Options with a value; every other option is a flag.
bool takesValue(const std::string& option)
{
    return option == "-o" || option == "--app-id" || option == "--language" || option == "--author" ||
           option == "--comment" || option == "--reference" || option == "--native-name" ||
           option == "--native-sub-name" || option == "--package-name" || option == "--qt-context";
}

Arguments parseArguments(const std::string& command, const std::vector<std::string>& args,
                         const std::vector<std::string>& allowed)
{
    Arguments out;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.size() > 1 && a[0] == '-') {
            if (std::find(allowed.begin(), allowed.end(), a) == allowed.end())
                usageError(command, "unknown option " + a);
            if (takesValue(a)) {
                if (i + 1 >= args.size())
                    usageError(command, a + " needs a value");
                out.options[a] = args[++i];
            } else {
                out.options[a] = "";
            }
        } else {
            out.files.push_back(a);
        }
    }
    return out;
}

std::optional<std::u16string> optionText(const Arguments& a, const std::string& name)
{
    auto it = a.options.find(name);
    if (it == a.options.end())
        return std::nullopt;
    auto text = decodeUtf8(it->second);
    if (!text)
        fail("qorlang", 0, name + " is not valid UTF-8");
    return text;
}

QtContext qtContextOption(const std::string& command, const Arguments& a)
{
    auto it = a.options.find("--qt-context");
    if (it == a.options.end() || it->second == "auto")
        return QtContext::Auto;
    if (it->second == "keep")
        return QtContext::Keep;
    if (it->second == "drop")
        return QtContext::Drop;
    usageError(command, "--qt-context takes auto, keep or drop");
}

void warn(const std::string& where, int line, const std::string& message)
{
    std::fprintf(stderr, "%s%s: warning: %s\n", where.c_str(), line ? (":" + std::to_string(line)).c_str() : "",
                 message.c_str());
}

// --app-id, else the output's name <app>-<tag>.qorlang, else the catalogue's own.
void setApplicationId(const Arguments& a, Catalogue& c, const std::string& output, const std::u16string& tag)
{
    const std::string outputName = fileNameOf(output);
    if (auto id = optionText(a, "--app-id")) {
        c.appId = *id;
    } else {
        const std::string suffix = "-" + encodeUtf8(tag) + ".qorlang";
        if (outputName.size() > suffix.size() &&
            outputName.compare(outputName.size() - suffix.size(), suffix.size(), suffix) == 0)
            c.appId = decodeUtf8(outputName.substr(0, outputName.size() - suffix.size()));
        else if (!c.appId || c.appId->empty())
            fail(output, 0,
                 "the name is not <app>-" + encodeUtf8(tag) + ".qorlang, so give the application id with --app-id");
    }
}

// Runs a gettext program that writes `temporary`, and returns what it wrote.
std::string outputOfProgram(const std::vector<std::string>& command, const std::string& temporary, bool quiet,
                            const std::string& target, const std::string& failure)
{
    const int status = runProgram(command, quiet);
    std::string bytes = status == 0 ? readFileBytes(temporary) : std::string();
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(std::u8string(temporary.begin(), temporary.end())), ignored);
    if (status != 0)
        fail(target, 0, failure);
    return bytes;
}

// --language, else the tag the output's name ends in, else the catalogue's own language (a bare
// language completed with its usual country).
std::u16string compiledTag(const Arguments& a, const Catalogue& c, const std::string& input,
                           const std::string& outputName)
{
    if (auto given = optionText(a, "--language")) {
        const TagChoice choice = tagFor(*given);
        if (!choice.tag)
            usageError("compile", "--language: " + choice.problem.substr(0, choice.problem.find(';')) +
                                      "; a tag is language-COUNTRY, such as de-DE");
        return *choice.tag;
    }
    const std::optional<TagChoice> own =
        c.language && !c.language->empty() ? std::optional(tagFor(*c.language)) : std::nullopt;
    if (auto named = tagOfFileName(outputName)) {
        if (own && own->tag && own->tag->substr(0, own->tag->find(u'-')) != named->substr(0, named->find(u'-')))
            warn(input, c.languageLine,
                 "the file's language is " + qorlang::quoted(*c.language) + " but the output is named for " +
                     encodeUtf8(*named) + "; the name wins (--language decides otherwise)");
        return *named;
    }
    if (!own)
        fail(input, 0,
             "the file names no language; give one with --language, such as --language de-DE, or name the output "
             "<app>-<tag>.qorlang");
    if (!own->tag)
        fail(input, c.languageLine, own->problem);
    if (own->completed)
        warn(input, c.languageLine,
             "the language " + qorlang::quoted(*c.language) + " names no country; using " + encodeUtf8(*own->tag) +
                 ", its usual one (--language chooses another)");
    return *own->tag;
}

int compile(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("compile", args,
                                       {"-o", "--app-id", "--language", "--author", "--comment", "--use-fuzzy",
                                        "--native-name", "--native-sub-name", "--qt-context"});
    if (a.files.size() != 1 || !a.options.count("-o"))
        usageError("compile", "needs one INPUT and -o OUTPUT");
    const std::string& input = a.files[0];
    const std::string& output = a.options.at("-o");
    if (isFolder(output))
        usageError("compile",
                   "-o " + output + " is a folder; give the file to write, such as " + output + "/app-de-DE.qorlang");
    if (formatOf(output) != Format::Qorlang)
        fail(output, 0, "the output of compile is a language file, its name ends in .qorlang");
    Catalogue c = readCatalogue(input, qtContextOption("compile", a));

    const std::string outputName = fileNameOf(output);
    const std::u16string tag = compiledTag(a, c, input, outputName);
    c.language = tag;
    if (formatOf(input) == Format::Json)
        joinI18nextPlurals(c, tag);

    setApplicationId(a, c, output, tag);
    if (c.appId->empty())
        fail("qorlang compile", 0, "the application id is empty");
    if (auto author = optionText(a, "--author"))
        c.author = *author;
    if (auto comment = optionText(a, "--comment"))
        c.comment = *comment;
    if (auto name = optionText(a, "--native-name"))
        c.nativeName = *name;
    if (auto name = optionText(a, "--native-sub-name"))
        c.nativeSubName = *name;

    CompileOptions options;
    options.useFuzzy = a.options.count("--use-fuzzy") != 0;
    std::map<std::u16string_view, int> firstLine;
    for (const Entry& e : c.entries) {
        if (!e.usable(options.useFuzzy))
            continue;
        auto [it, added] = firstLine.emplace(e.key, e.line);
        if (!added)
            warn(input, e.line,
                 "key " + qorlang::quoted(e.key) + " was defined before" +
                     (it->second ? " (line " + std::to_string(it->second) + ")" : std::string()) +
                     "; this later text is the one kept");
    }
    const std::vector<uint8_t> bytes = compileLanguageFile(c, options);
    const std::string expected = encodeUtf8(languageFileName(*c.appId, tag));
    if (expected != outputName)
        warn(output, 0, "the library looks for this language under the name " + expected);
    writeFileAtomically(output, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    return 0;
}

int decompile(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("decompile", args, {"-o"});
    if (a.files.size() != 1 || !a.options.count("-o"))
        usageError("decompile", "needs one INPUT.qorlang and -o OUTPUT");
    const std::string& input = a.files[0];
    const std::string& output = a.options.at("-o");
    if (isFolder(output))
        usageError("decompile",
                   "-o " + output + " is a folder; give the file to write, such as " + output + "/de-DE.po");
    if (formatOf(input) != Format::Qorlang)
        fail(input, 0, "decompile reads a language file (.qorlang)");
    const Format format = formatOf(output);
    if (format == Format::Qorlang || format == Format::Text)
        fail(output, 0, "decompile writes .po, .json, .xlf, .xliff or .ts");
    Catalogue c = readCatalogue(input);
    for (const Entry& e : c.entries) {
        if (e.key.empty())
            warn(input, 0, "an entry with an empty key is left out");
    }
    writeFileAtomically(output, writeCatalogue(c, format));
    return 0;
}

// Reads every FILE and the reference; a file that cannot be read is an error of its own.
struct Input {
    std::string path;
    std::optional<Catalogue> catalogue;
    std::vector<uint8_t> languageFile; // the bytes of a .qorlang FILE, for check
};
struct Inputs {
    std::vector<Input> files;
    std::optional<Catalogue> reference;
    bool failed = false;
};

void printError(const std::string& message)
{
    std::string line = message;
    for (char& ch : line)
        if (ch == '\n' || ch == '\r')
            ch = ' ';
    std::fprintf(stderr, "%s\n", line.c_str());
}

std::string describe(const kore::CException& e)
{
    return e.getDescription()->toUTF8();
}

// i18next plural keys join into entries by the file's own language, when it names one.
Catalogue withI18nextPlurals(Catalogue c)
{
    if (formatOf(c.path) == Format::Json)
        joinI18nextPlurals(c, c.language.value_or(u""));
    return c;
}

Inputs readInputs(const std::string& command, const std::vector<std::string>& args)
{
    const Arguments a = parseArguments(command, args, {"--reference", "--qt-context"});
    const QtContext qtContext = qtContextOption(command, a);
    auto read = [&](const std::string& path) { return withI18nextPlurals(readCatalogue(path, qtContext)); };
    if (a.files.empty())
        usageError(command, "needs at least one FILE");
    Inputs in;
    if (a.options.count("--reference"))
        in.reference = read(a.options.at("--reference"));
    for (const std::string& path : a.files) {
        Input& file = in.files.emplace_back();
        file.path = path;
        try {
            if (formatOf(path) == Format::Qorlang) {
                const std::string raw = readFileBytes(path);
                file.languageFile.assign(raw.begin(), raw.end());
                file.catalogue = readQorlang(path, file.languageFile);
            } else {
                file.catalogue = read(path);
            }
        } catch (const kore::CException& e) {
            printError(describe(e) + " [error]");
            in.failed = true;
        }
    }
    return in;
}

int check(const std::vector<std::string>& args)
{
    Inputs in = readInputs("check", args);
    size_t errors = in.failed ? 1 : 0, warnings = 0;
    for (const auto& [path, catalogue, languageFile] : in.files) {
        if (!catalogue)
            continue;
        for (const Finding& f : checkCatalogue(*catalogue, in.reference ? &*in.reference : nullptr,
                                               formatOf(path) == Format::Qorlang ? &languageFile : nullptr)) {
            std::printf("%s%s: %s: %s\n", path.c_str(), f.line ? (":" + std::to_string(f.line)).c_str() : "",
                        f.error ? "error" : "warning", f.message.c_str());
            ++(f.error ? errors : warnings);
        }
    }
    std::printf("%zu error%s, %zu warning%s\n", errors, errors == 1 ? "" : "s", warnings, warnings == 1 ? "" : "s");
    return errors ? 1 : 0;
}

int stats(const std::vector<std::string>& args)
{
    Inputs in = readInputs("stats", args);
    size_t width = 4;
    for (const auto& file : in.files)
        width = std::max(width, file.path.size());
    std::printf("%-*s %8s %10s %6s %8s %8s\n", int(width), "file", "entries", "translated", "fuzzy", "missing",
                "percent");
    for (const auto& [path, catalogue, languageFile] : in.files) {
        if (!catalogue)
            continue;
        const Stats s = statsOf(*catalogue, in.reference ? &*in.reference : nullptr);
        const std::string missing = in.reference ? std::to_string(s.missing) : "-";
        std::printf("%-*s %8zu %10zu %6zu %8s %7.1f%%\n", int(width), path.c_str(), s.entries, s.translated, s.fuzzy,
                    missing.c_str(), s.percent);
    }
    return in.failed ? 1 : 0;
}

int info(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("info", args, {});
    if (a.files.size() != 1 || formatOf(a.files[0]) != Format::Qorlang)
        usageError("info", "needs one FILE.qorlang");
    const std::string& path = a.files[0];
    const std::string raw = readFileBytes(path);
    const std::vector<uint8_t> bytes(raw.begin(), raw.end());
    const Catalogue c = readQorlang(path, bytes);
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(bytes));
    const kore::P<qor_lang::CLanguageFile> file = kore::make<qor_lang::CLanguageFile>(nullptr, *stream);
    auto row = [](const char* accessor, const std::string& value) {
        std::printf("%-33s %s\n", accessor, value.c_str());
    };
    auto text = [](const kore::P<kore::IString>& s) { return "\"" + s->toUTF8() + "\""; };
    row("QOR_LANG2_FILE_getLanguageID",
        "\"" + encodeUtf8(file->getLanguage().getTag()) + "\"" +
            (file->getLanguage().isValid() ? ""
                                           : "  (the tag " + qorlang::quoted(file->getTagText()) + " is not valid)"));
    row("QOR_LANG2_FILE_getAppID", text(file->getAppId()));
    row("QOR_LANG2_FILE_getAuthor", text(file->getAuthor()));
    row("QOR_LANG2_FILE_getComment", text(file->getComment()));
    row("QOR_LANG2_FILE_getEnglishName", text(file->getEnglishName()));
    row("QOR_LANG2_FILE_getEnglishSubName", text(file->getEnglishSubName()));
    row("QOR_LANG2_FILE_getNativeName", text(file->getNativeName()));
    row("QOR_LANG2_FILE_getNativeSubName", text(file->getNativeSubName()));
    row("version", std::to_string(file->getVersion()));
    row("entries", std::to_string(c.entries.size()));
    return 0;
}

// The tag a new translation is for: --language, else its file name ("de.po", "app-de-AT.ts").
std::u16string tagForNewFile(const std::string& command, const Arguments& a, const std::string& output)
{
    std::u16string written;
    if (auto given = optionText(a, "--language")) {
        written = *given;
    } else {
        std::string stem = fileNameOf(output);
        stem = stem.substr(0, stem.rfind('.'));
        if (auto tag = tagOfFileName(stem + ".qorlang"))
            return *tag;
        written = decodedOrFail(output, 0, stem);
    }
    const TagChoice choice = tagFor(written);
    if (!choice.tag)
        usageError(command, choice.problem);
    return *choice.tag;
}

int extract(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("extract", args, {"-o", "--package-name"});
    if (a.files.empty() || !a.options.count("-o"))
        usageError("extract", "needs SOURCE files and -o OUTPUT.pot");
    const std::string& output = a.options.at("-o");
    if (isFolder(output))
        usageError("extract",
                   "-o " + output + " is a folder; give the template to write, such as " + output + "/app.pot");
    const std::string name = fileNameOf(output);
    extractTemplate(a.files, output,
                    a.options.count("--package-name") ? a.options.at("--package-name")
                                                      : name.substr(0, name.rfind('.')));
    return 0;
}

int init(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("init", args, {"-o", "--language"});
    if (a.files.size() != 1 || !a.options.count("-o"))
        usageError("init", "needs one TEMPLATE and -o OUTPUT");
    const std::string& templ = a.files[0];
    const std::string& output = a.options.at("-o");
    const Format format = formatOf(output);
    if (format == Format::Qorlang || format == Format::Text)
        usageError("init", "init writes .po, .ts, .xlf, .xliff or .json");
    const std::u16string tag = tagForNewFile("init", a, output);
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::path(std::u8string(output.begin(), output.end())), ignored))
        fail(output, 0, "exists already; qorlang merge brings it up to date with the template");
    const Catalogue source = readCatalogue(templ); // refuses a broken template before anything runs
    if (format == Format::Po && formatOf(templ) == Format::Po) {
        std::string locale = encodeUtf8(tag);
        std::replace(locale.begin(), locale.end(), '-', '_');
        const std::string temporary = output + ".init.tmp";
        std::string bytes = outputOfProgram(
            {requireProgram("msginit", "gettext (Debian: apt-get install gettext)"), "--no-translator", "--no-wrap",
             "-i", templ, "-o", temporary, "-l", locale},
            temporary, true, output, "msginit failed; run msginit -i " + templ + " -l " + locale + " to see why");
        // msginit picks the charset of its own locale; translators write UTF-8, of which ASCII is part.
        if (const size_t at = bytes.find("charset=ASCII\\n"); at != std::string::npos)
            bytes.replace(at, 13, "charset=UTF-8");
        writeFileAtomically(output, bytes);
        return 0;
    }
    writeFileAtomically(output, writeCatalogue(initCatalogue(source, tag), format));
    return 0;
}

int merge(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("merge", args, {});
    if (a.files.size() < 2)
        usageError("merge", "needs a TEMPLATE and at least one translation FILE");
    const std::string& templPath = a.files[0];
    const Catalogue templ = withI18nextPlurals(readCatalogue(templPath));
    int status = 0;
    for (size_t i = 1; i < a.files.size(); ++i) {
        const std::string& path = a.files[i];
        try {
            const Format format = formatOf(path);
            if (format == Format::Qorlang || format == Format::Text)
                fail(path, 0, "merge updates .po, .ts, .xlf, .xliff or .json files; decompile a language file first");
            const std::string temporary = path + ".merge.tmp";
            const Catalogue before = withI18nextPlurals(readCatalogue(path));
            std::string bytes;
            if (format == Format::Po && formatOf(templPath) == Format::Po)
                bytes = outputOfProgram({requireProgram("msgmerge", "gettext (Debian: apt-get install gettext)"),
                                         "--quiet", "--previous", "-o", temporary, path, templPath},
                                        temporary, false, path, "msgmerge failed (its message is above)");
            else
                bytes = writeCatalogue(mergeCatalogue(before, templ), format);
            const MergeCounts counts = countChanges(before, withI18nextPlurals(readCatalogueBytes(path, bytes)));
            writeFileAtomically(path, bytes);
            std::printf("%s: %zu kept, %zu added, %zu fuzzy, %zu obsolete\n", path.c_str(), counts.kept, counts.added,
                        counts.fuzzy, counts.obsolete);
        } catch (const kore::CException& e) {
            printError(describe(e));
            status = 1;
        }
    }
    return status;
}

int pseudo(const std::vector<std::string>& args)
{
    const Arguments a = parseArguments("pseudo", args, {"-o", "--language", "--app-id", "--rtl"});
    if (a.files.size() != 1 || !a.options.count("-o"))
        usageError("pseudo", "needs one INPUT and -o OUTPUT.qorlang");
    const std::string& output = a.options.at("-o");
    if (isFolder(output))
        usageError("pseudo",
                   "-o " + output + " is a folder; give the file to write, such as " + output + "/app-zxx-US.qorlang");
    if (formatOf(output) != Format::Qorlang)
        usageError("pseudo", "the output of pseudo is a language file, its name ends in .qorlang");
    // A template's key-based entries show their default texts rather than their keys.
    Catalogue c = formatOf(a.files[0]) == Format::Po
                      ? readPo(a.files[0], withDefaultsAsTexts(readFileBytes(a.files[0])))
                      : withI18nextPlurals(readCatalogue(a.files[0]));
    const std::string outputName = fileNameOf(output);
    std::u16string tag = u"zxx-US";
    if (auto given = optionText(a, "--language")) {
        const TagChoice choice = tagFor(*given);
        if (!choice.tag)
            usageError("pseudo", "--language: " + choice.problem);
        tag = *choice.tag;
    } else if (auto named = tagOfFileName(outputName)) {
        tag = *named;
    }
    const bool rtl = a.options.count("--rtl") != 0;
    for (Entry& e : c.entries) {
        // An untranslated text shows its source: the singular for the first form, else the plural.
        auto pseudoOf = [&](std::u16string_view text, std::u16string_view source) {
            return pseudoText(text.empty() ? source : text, rtl);
        };
        const std::u16string_view source = splitKey(e.key).second;
        for (size_t i = 0; i < e.forms.size(); ++i)
            e.forms[i] = pseudoOf(e.forms[i], i == 0 ? source : std::u16string_view(e.pluralSource));
        e.text = e.forms.empty() ? pseudoOf(e.text, source) : e.forms.front();
        e.fuzzy = false;
    }
    c.language = tag;
    setApplicationId(a, c, output, tag);
    c.nativeName = rtl ? u"Pseudo (RTL)" : u"Pseudo";
    c.nativeSubName = pseudoText(u"Pseudo", rtl);
    c.comment = u"pseudo-localised by qorlang";
    CompileOptions options;
    options.useFuzzy = true;
    const std::vector<uint8_t> bytes = compileLanguageFile(c, options);
    writeFileAtomically(output, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    return 0;
}

int run(const std::vector<std::string>& args)
{
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, args.empty() ? stderr : stdout);
        return args.empty() ? 2 : 0;
    }
    if (args[0] == "--version") {
        std::printf("qorlang %s\n", QORLANG_VERSION);
        return 0;
    }
    const std::string& command = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    auto help = kCommandHelp.find(command);
    if (help == kCommandHelp.end()) {
        std::fprintf(stderr, "qorlang: unknown command '%s' (see qorlang --help)\n", command.c_str());
        return 2;
    }
    if (std::find(rest.begin(), rest.end(), "--help") != rest.end() ||
        std::find(rest.begin(), rest.end(), "-h") != rest.end()) {
        std::fputs(help->second, stdout);
        return 0;
    }
    try {
        if (command == "compile")
            return compile(rest);
        if (command == "decompile")
            return decompile(rest);
        if (command == "check")
            return check(rest);
        if (command == "stats")
            return stats(rest);
        if (command == "extract")
            return extract(rest);
        if (command == "init")
            return init(rest);
        if (command == "merge")
            return merge(rest);
        if (command == "pseudo")
            return pseudo(rest);
        return info(rest);
    } catch (const UsageError& e) {
        printError(e.message);
        return 2;
    } catch (const kore::CException& e) {
        printError(describe(e));
    } catch (const std::exception& e) {
        printError(std::string("qorlang: ") + e.what());
    }
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    // On Windows the arguments come from the wide command line, so that paths outside the ANSI
    // code page arrive intact.
    return run(kore::platform::getArgumentsUTF8(argc, argv));
}
