// The qorlang program as translators run it: exit status, one-line messages, no partial output.
#include "../../framework/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#ifndef _WIN32

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// One command: its exit status and its whole output (stdout and stderr), or with a leading "~" a
// piece the output must hold.
struct Command {
    int status;
    std::string arguments, output;
};

class QorlangTool : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) { m_folder.writeFile(name, text); }

    Command run(const std::string& arguments)
    {
        // A leading "NAME=value " sets the program's environment.
        const size_t split = arguments.find('=') < arguments.find(' ') ? arguments.find(' ') : 0;
        const std::string command = "cd '" + m_folder.utf8() + "' && " + arguments.substr(0, split) +
                                    " '" QORLANG_EXE "' " + arguments.substr(split) + " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            output.append(buffer, n);
        const int status = pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, arguments, output};
    }

    // Runs each command in turn.
    void expectRuns(std::initializer_list<Command> runs)
    {
        for (const Command& expected : runs) {
            SCOPED_TRACE(expected.arguments);
            const Command r = run(expected.arguments);
            EXPECT_EQ(r.status, expected.status);
            if (expected.output.starts_with("~"))
                EXPECT_NE(r.output.find(expected.output.substr(1)), std::string::npos) << r.output;
            else
                EXPECT_EQ(r.output, expected.output);
        }
    }

    kore_test::CTempFolder m_folder;
};

const char* const kPo = "msgid \"\"\nmsgstr \"\"\n\"Language: de\\n\"\n\"Last-Translator: Änne\\n\"\n\n"
                        "msgid \"greet\"\nmsgstr \"Hallo %s\"\n\n#, fuzzy\nmsgid \"maybe\"\nmsgstr \"vielleicht\"\n";
const std::string kCannotCreate = ": cannot create the file: ";
const std::string kCreateHint = "; check that the folder exists and that you may write in it\n";
const std::string kModifier =
    "the language \"sr@latin\" has the modifier @latin, and a language-COUNTRY tag cannot tell "
    "that variant from the language's usual one; give the tag to ship it under with --language";
const std::string kUnknownFormat =
    ": unknown format (the extension must be .po, .pot, .xlf, .xliff, .ts, .json, .txt or .qorlang)\n";
const std::string kNoInput =
    ": cannot open the file for reading: No such file or directory; check the name and the folder\n";

} // namespace

// Exit 1 for an input that cannot be used, 2 for a command line that is wrong; each message says
// where, what went wrong, the system's reason and what to do.
TEST_F(QorlangTool, FailuresLeaveNoOutputAndSayWhy)
{
    write("de.po", kPo);
    write("demo-de-DE.qorlang", "previous");
    write("latin1.po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n# note\nmsgid "
                       "\"a\"\nmsgstr \"\"\n\"caf\xE9\"\n");
    write("broken.ts", "<TS>\n<context>\n<a & b>");
    write("t.pot", "msgid \"a\"\nmsgstr \"\"\n");
    write("de.txt", "a=b\n");
    fs::create_directory(m_folder.path() / "out");
    fs::create_directory(m_folder.path() / "locked");
    fs::permissions(m_folder.path() / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    expectRuns(
        {{1, "compile de.po -o other.qorlang --language de-DE",
          "other.qorlang: the name is not <app>-de-DE.qorlang, so give the application id with --app-id\n"},
         {1, "compile missing.po -o demo-de-DE.qorlang", "missing.po" + kNoInput},
         {1, "compile out/ -o demo-de-DE.qorlang", "out/" + kUnknownFormat},
         {1, "compile de.xml -o demo-de-DE.qorlang", "de.xml" + kUnknownFormat},
         {1, "compile de.po -o no/such/dir/demo-de-DE.qorlang --language de-DE",
          "no/such/dir/demo-de-DE.qorlang" + kCannotCreate + "No such file or directory" + kCreateHint},
         {1, "compile latin1.po -o demo-de-DE.qorlang --language de-DE",
          "latin1.po:7: not valid UTF-8; convert the file to UTF-8 (iconv, msgconv) or name its real charset in the "
          "header's Content-Type\n"},
         {1, "check broken.ts",
          "broken.ts:3: not well-formed XML: a tag is not closed or not spelt right; fix it in an XML editor or the "
          "tool that wrote it [error]\n1 error, 0 warnings\n"},
         {2, "compile de.po -o out --language de-DE",
          "qorlang compile: -o out is a folder; give the file to write, such as out/app-de-DE.qorlang (see qorlang "
          "compile --help)\n"},
         {2, "compile de.po --frobnicate",
          "qorlang compile: unknown option --frobnicate (see qorlang compile --help)\n"},
         {2, "compile de.po -o", "qorlang compile: -o needs a value (see qorlang compile --help)\n"},
         {2, "compile de.po -o demo-de-DE.qorlang --qt-context maybe",
          "qorlang compile: --qt-context takes auto, keep or drop (see qorlang compile --help)\n"},
         {2, "check", "qorlang check: needs at least one FILE (see qorlang check --help)\n"},
         {2, "frobnicate", "qorlang: unknown command 'frobnicate' (see qorlang --help)\n"},
         {1, "init t.pot -o de.po", "de.po: exists already; qorlang merge brings it up to date with the template\n"},
         {2, "init t.pot -o sr@latin.po", "qorlang init: " + kModifier + " (see qorlang init --help)\n"},
         {1, "merge t.pot missing.po de.txt",
          "missing.po" + kNoInput +
              "de.txt: merge updates .po, .ts, .xlf, .xliff or .json files; decompile a language file first\n"},
         {1, "PATH=/nonexistent extract a.cpp -o a.pot",
          "qorlang: xgettext is not installed or not on PATH; install gettext (Debian: apt-get install gettext)\n"},
         {2, "pseudo t.pot -o x.po",
          "qorlang pseudo: the output of pseudo is a language file, its name ends in .qorlang (see qorlang pseudo "
          "--help)\n"},
         {2, "merge t.pot",
          "qorlang merge: needs a TEMPLATE and at least one translation FILE (see qorlang merge --help)\n"},
         {0, "--version", "qorlang " QORLANG_VERSION "\n"}});
    if (geteuid() != 0) // permissions do not stop root
        expectRuns({{1, "compile de.po -o locked/demo-de-DE.qorlang --language de-DE",
                     "locked/demo-de-DE.qorlang" + kCannotCreate + "Permission denied" + kCreateHint}});
    fs::permissions(m_folder.path() / "locked", fs::perms::owner_all);
    EXPECT_EQ(m_folder.readFile("demo-de-DE.qorlang"), "previous");
    for (const char* folder : {"out", "locked"}) // no temporary left
        EXPECT_TRUE(fs::is_empty(m_folder.path() / folder)) << folder;
}

TEST_F(QorlangTool, CompileTakesIdAndLanguageFromOptionOutputNameOrHeader)
{
    write("de.po", kPo); // "Language: de"
    write("sr.po", "msgid \"\"\nmsgstr \"Language: sr@latin\\n\"\n\nmsgid \"a\"\nmsgstr \"b\"\n");
    const std::string id = "~QOR_LANG2_FILE_getLanguageID      ";
    expectRuns(
        {{0, "compile de.po -o demo-de-DE.qorlang --language de-DE", ""},
         {0, "info demo-de-DE.qorlang", "~QOR_LANG2_FILE_getAppID           \"demo\"\n"},
         {0, "info demo-de-DE.qorlang", "~QOR_LANG2_FILE_getAuthor          \"Änne\"\n"},
         {0, "info demo-de-DE.qorlang", "~QOR_LANG2_FILE_getEnglishSubName  \"Germany\"\n"},
         {0, "info demo-de-DE.qorlang", "~entries                           1\n"},
         {0, "compile de.po -o demo-de-DE.qorlang --language de-DE --use-fuzzy", ""},
         {0, "info demo-de-DE.qorlang", "~entries                           2\n"},
         {0, "compile de.po -o demo-de-AT.qorlang", ""},
         {0, "info demo-de-AT.qorlang", id + "\"de-AT\""},
         {0, "compile de.po -o lang.qorlang --app-id demo",
          "de.po:1: warning: the language \"de\" names no country; using de-DE, its usual one (--language chooses "
          "another)\nlang.qorlang: warning: the library looks for this language under the name demo-de-DE.qorlang\n"},
         {0, "info lang.qorlang", id + "\"de-DE\""},
         {0, "compile de.po -o demo-fr-FR.qorlang",
          "de.po:1: warning: the file's language is \"de\" but the output is named for fr-FR; the name wins "
          "(--language "
          "decides otherwise)\n"},
         {0, "info demo-fr-FR.qorlang", id + "\"fr-FR\""},
         {1, "compile sr.po -o lang.qorlang --app-id demo", "sr.po:1: " + kModifier + "\n"},
         {0, "compile sr.po -o demo-sr-ME.qorlang --native-name 'srpski (latinica)' --native-sub-name 'Crna Gora'", ""},
         {0, "info demo-sr-ME.qorlang", id + "\"sr-ME\""},
         {0, "info demo-sr-ME.qorlang", "~QOR_LANG2_FILE_getNativeName      \"srpski (latinica)\"\n"},
         {0, "info demo-sr-ME.qorlang", "~QOR_LANG2_FILE_getNativeSubName   \"Crna Gora\"\n"},
         {2, "compile de.po -o x.qorlang --language de-Latn",
          "qorlang compile: --language: the language \"de-Latn\" names the script Latn, and a language-COUNTRY tag "
          "cannot tell it from the language's usual script; a tag is language-COUNTRY, such as de-DE (see qorlang "
          "compile --help)\n"}});
}

TEST_F(QorlangTool, CheckAndStatsAgainstAReference)
{
    // A .pot has no texts: translations are checked against its source texts, and keys it no
    // longer has are stale. A plural form may follow either of the template's sources.
    write("app.pot", "msgid \"\"\nmsgstr \"\"\n\n#, c-format\nmsgid \"%d files in %s\"\nmsgstr \"\"\n\nmsgid "
                     "\"Open\"\nmsgstr \"\"\n\n"
                     "#, c-format\nmsgid \"one file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"\"\nmsgstr[1] \"\"\n");
    write("de.po",
          "msgid \"\"\nmsgstr \"Language: de_DE\\n\"\n\nmsgid \"%d files in %s\"\nmsgstr \"%s Dateien\"\n\n"
          "msgid \"Close\"\nmsgstr \"Schließen\"\n\n"
          "msgid \"one file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"eine Datei\"\nmsgstr[1] \"%s Dateien\"\n");
    write("en-US.txt", "@tag=en-US\ngreet=Hello %s\nbye=Bye\n");
    write("de-DE.txt", "@tag=de-DE\ngreet=Hallo %s\n");
    write("fr-FR.txt", "@tag=fr-FR\ngreet=Bonjour %d\nbye=Salut\n");
    expectRuns(
        {{1, "check de.po --reference app.pot",
          "de.po: warning: key \"Open\" of the reference (line 8) has no translation here\n"
          "de.po:4: error: key \"%d files in %s\": placeholders differ from the reference's source text (line 5): "
          "missing %1$d %2$s, extra %1$s\n"
          "de.po:7: warning: key \"Close\" is not in the reference (stale); qorlang merge marks it obsolete\n"
          "de.po:10: error: key \"one file\" form 1: placeholders differ from the reference's source texts (line "
          "12): missing %1$d, extra %1$s\n"
          "2 errors, 2 warnings\n"},
         {0, "stats app.pot", "~app.pot"},
         // Warnings alone leave the exit status 0.
         {0, "check de-DE.txt --reference en-US.txt",
          "de-DE.txt: warning: key \"bye\" of the reference (line 3) has no translation here\n0 errors, 1 warning\n"},
         {0, "stats de-DE.txt fr-FR.txt --reference en-US.txt",
          "file       entries translated  fuzzy  missing  percent\n"
          "de-DE.txt        1          1      0        1    50.0%\n"
          "fr-FR.txt        2          2      0        0   100.0%\n"}});
}

TEST_F(QorlangTool, I18nextPluralsSurviveInitMergeAndCompile)
{
    // init writes Russian's three categories; merge joins them again, so nothing turns obsolete.
    write("t.pot", "msgid \"\"\nmsgstr \"\"\n\nmsgid \"a\"\nmsgid_plural \"as\"\nmsgstr[0] \"\"\nmsgstr[1] \"\"\n");
    ASSERT_EQ(run("init t.pot -o ru.json").status, 0);
    EXPECT_NE(m_folder.readFile("ru.json").find("\"a_one\": \"\",\n\t\"a_few\": \"\",\n\t\"a_many\": \"\""),
              std::string::npos);
    write("ru.json", R"({"@qorlang": {"language": "ru-RU"}, "a_one": "x", "a_few": "y", "a_many": "z"})");
    expectRuns({{0, "merge t.pot ru.json", "ru.json: 1 kept, 0 added, 0 fuzzy, 0 obsolete\n"}});
    EXPECT_NE(m_folder.readFile("ru.json").find("\"a_one\": \"x\",\n\t\"a_few\": \"y\",\n\t\"a_many\": \"z\""),
              std::string::npos);

    // Without the language the keys read as English's: "_few" and "_many" are no forms there.
    write("ru.json", R"({"n_one": "%d файл", "n_few": "%d файла", "n_many": "%d файлов", "n_other": "%d файла"})");
    expectRuns({{0, "check ru.json", "~warning: the file names no language"},
                {0, "compile ru.json -o app-ru-RU.qorlang --language ru-RU", ""},
                {0, "decompile app-ru-RU.qorlang -o back.po", ""}});
    const std::string po = m_folder.readFile("back.po");
    EXPECT_NE(po.find("msgid \"n\"\nmsgid_plural \"n\"\nmsgstr[0] \"%d файл\"\nmsgstr[1] \"%d файла\"\nmsgstr[2] \"%d "
                      "файлов\"\n"),
              std::string::npos)
        << po;
    EXPECT_NE(po.find("msgid \"n_other\"\nmsgstr \"%d файла\"\n"), std::string::npos) << po;
}

TEST_F(QorlangTool, EveryCommandHasHelp)
{
    for (const std::string command :
         {"compile", "decompile", "check", "stats", "info", "extract", "init", "merge", "pseudo"}) {
        const Command r = run(command + " --help");
        EXPECT_EQ(r.status, 0);
        EXPECT_TRUE(r.output.starts_with("usage: qorlang " + command)) << r.output;
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("").status, 2);
}

#endif
