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

struct Result {
    int status;
    std::string output;
};

class QorlangTool : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) { m_folder.writeFile(name, text); }

    Result run(const std::string& arguments, const std::string& environment = "")
    {
        const std::string command =
            "cd '" + m_folder.utf8() + "' && " + environment + " '" QORLANG_EXE "' " + arguments + " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            output.append(buffer, n);
        const int status = pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
    }

    kore_test::CTempFolder m_folder;
};

const char* const kPo = "msgid \"\"\nmsgstr \"\"\n\"Language: de\\n\"\n\"Last-Translator: Änne\\n\"\n\n"
                        "msgid \"greet\"\nmsgstr \"Hallo %s\"\n\n#, fuzzy\nmsgid \"maybe\"\nmsgstr \"vielleicht\"\n";

} // namespace

TEST_F(QorlangTool, CompileTakesTheApplicationIdFromTheOutputName)
{
    write("de.po", kPo);
    EXPECT_EQ(run("compile de.po -o demo-de-DE.qorlang --language de-DE").status, 0);
    const Result info = run("info demo-de-DE.qorlang");
    EXPECT_EQ(info.status, 0);
    EXPECT_NE(info.output.find("QOR_LANG2_FILE_getAppID           \"demo\"\n"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("QOR_LANG2_FILE_getAuthor          \"Änne\"\n"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("QOR_LANG2_FILE_getEnglishSubName  \"Germany\"\n"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("entries                           1\n"), std::string::npos) << info.output;

    EXPECT_EQ(run("compile de.po -o demo-de-DE.qorlang --language de-DE --use-fuzzy").status, 0);
    EXPECT_NE(run("info demo-de-DE.qorlang").output.find("entries                           2\n"), std::string::npos);
}

TEST_F(QorlangTool, FailuresLeaveNoOutputAndSayWhy)
{
    // One row per message shape: where, what went wrong, the system's reason, what to do; exit 1
    // for an input that cannot be used, 2 for a command line that is wrong.
    write("de.po", kPo);
    write("demo-de-DE.qorlang", "previous");
    write("latin1.po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n# note\nmsgid "
                       "\"a\"\nmsgstr \"\"\n\"caf\xE9\"\n");
    write("broken.ts", "<TS>\n<context>\n<a & b>");
    fs::create_directory(m_folder.path() / "out");
    fs::create_directory(m_folder.path() / "locked");
    fs::permissions(m_folder.path() / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    const bool root = geteuid() == 0; // permissions do not stop root
    const struct {
        int status;
        std::string arguments, message;
    } cases[] = {
        {1, "compile de.po -o other.qorlang --language de-DE",
         "other.qorlang: the name is not <app>-de-DE.qorlang, so give the application id with --app-id\n"},
        {1, "compile missing.po -o demo-de-DE.qorlang",
         "missing.po: cannot open the file for reading: No such file or directory; check the name and the folder\n"},
        {1, "compile out/ -o demo-de-DE.qorlang",
         "out/: unknown format (the extension must be .po, .pot, .xlf, .xliff, .ts, .json, .txt or .qorlang)\n"},
        {1, "compile de.xml -o demo-de-DE.qorlang",
         "de.xml: unknown format (the extension must be .po, .pot, .xlf, .xliff, .ts, .json, .txt or .qorlang)\n"},
        {1, "compile de.po -o no/such/dir/demo-de-DE.qorlang --language de-DE",
         "no/such/dir/demo-de-DE.qorlang: cannot create the file: No such file or directory; check that the folder "
         "exists and that you may write in it\n"},
        {1,
         root ? "compile de.po -o no/such/dir/demo-de-DE.qorlang --language de-DE"
              : "compile de.po -o locked/demo-de-DE.qorlang --language de-DE",
         root ? "no/such/dir/demo-de-DE.qorlang: cannot create the file: No such file or directory; check that the "
                "folder exists and that you may write in it\n"
              : "locked/demo-de-DE.qorlang: cannot create the file: Permission denied; check that the folder exists "
                "and that you may write in it\n"},
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
    };
    for (const auto& [status, arguments, message] : cases) {
        SCOPED_TRACE(arguments);
        const Result r = run(arguments);
        EXPECT_EQ(r.status, status);
        EXPECT_EQ(r.output, message);
    }
    fs::permissions(m_folder.path() / "locked", fs::perms::owner_all);
    EXPECT_EQ(m_folder.readFile("demo-de-DE.qorlang"), "previous");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path() / "out"), fs::directory_iterator()),
              0); // no temporary left
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path() / "locked"), fs::directory_iterator()), 0);
    EXPECT_EQ(run("--version").output, "qorlang " QORLANG_VERSION "\n");
}

TEST_F(QorlangTool, LanguageFromOptionOutputNameOrHeader)
{
    write("de.po", kPo); // "Language: de"
    write("sr.po", "msgid \"\"\nmsgstr \"Language: sr@latin\\n\"\n\nmsgid \"a\"\nmsgstr \"b\"\n");
    const struct {
        std::string arguments, tag, message;
    } cases[] = {
        {"compile de.po -o demo-de-AT.qorlang", "de-AT", ""},
        {"compile de.po -o lang.qorlang --app-id demo", "de-DE",
         "de.po:1: warning: the language \"de\" names no country; using de-DE, its usual one (--language chooses "
         "another)\n"
         "lang.qorlang: warning: the library looks for this language under the name demo-de-DE.qorlang\n"},
        {"compile de.po -o demo-fr-FR.qorlang", "fr-FR",
         "de.po:1: warning: the file's language is \"de\" but the output is named for fr-FR; the name wins (--language "
         "decides otherwise)\n"},
        {"compile sr.po -o lang.qorlang --app-id demo", "",
         "sr.po:1: the language \"sr@latin\" has the modifier @latin, and a language-COUNTRY tag cannot tell that "
         "variant from the "
         "language's usual one; give the tag to ship it under with --language\n"},
        {"compile sr.po -o demo-sr-ME.qorlang --native-name 'srpski (latinica)' --native-sub-name 'Crna Gora'", "sr-ME",
         ""},
        {"compile de.po -o x.qorlang --language de-Latn", "",
         "qorlang compile: --language: the language \"de-Latn\" names the script Latn, and a language-COUNTRY tag "
         "cannot tell it "
         "from the language's usual script; a tag is language-COUNTRY, such as de-DE (see qorlang compile --help)\n"},
    };
    for (const auto& [arguments, tag, message] : cases) {
        SCOPED_TRACE(arguments);
        const Result r = run(arguments);
        EXPECT_EQ(r.output, message);
        if (tag.empty())
            continue;
        const std::string file =
            arguments.find("lang.qorlang") != std::string::npos ? "lang.qorlang" : "demo-" + tag + ".qorlang";
        EXPECT_NE(run("info " + file).output.find("getLanguageID      \"" + tag + "\""), std::string::npos);
    }
    const std::string info = run("info demo-sr-ME.qorlang").output;
    EXPECT_NE(info.find("QOR_LANG2_FILE_getNativeName      \"srpski (latinica)\"\n"), std::string::npos) << info;
    EXPECT_NE(info.find("QOR_LANG2_FILE_getNativeSubName   \"Crna Gora\"\n"), std::string::npos) << info;
}

TEST_F(QorlangTool, TemplateAsReference)
{
    // A .pot has no texts: translations are checked against its source texts, and keys it no
    // longer has are stale.
    // A plural form may follow either of the template's sources.
    write("app.pot", "msgid \"\"\nmsgstr \"\"\n\n#, c-format\nmsgid \"%d files in %s\"\nmsgstr \"\"\n\nmsgid "
                     "\"Open\"\nmsgstr \"\"\n\n"
                     "#, c-format\nmsgid \"one file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"\"\nmsgstr[1] \"\"\n");
    write("de.po",
          "msgid \"\"\nmsgstr \"Language: de_DE\\n\"\n\nmsgid \"%d files in %s\"\nmsgstr \"%s Dateien\"\n\n"
          "msgid \"Close\"\nmsgstr \"Schließen\"\n\n"
          "msgid \"one file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"eine Datei\"\nmsgstr[1] \"%s Dateien\"\n");
    const Result r = run("check de.po --reference app.pot");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.output,
              "de.po: warning: key \"Open\" of the reference (line 8) has no translation here\n"
              "de.po:4: error: key \"%d files in %s\": placeholders differ from the reference's source text (line 5): "
              "missing %1$d %2$s, extra %1$s\n"
              "de.po:7: warning: key \"Close\" is not in the reference (stale); qorlang merge marks it obsolete\n"
              "de.po:10: error: key \"one file\" form 1: placeholders differ from the reference's source texts (line "
              "12): missing %1$d, extra %1$s\n"
              "2 errors, 2 warnings\n");
    EXPECT_EQ(run("stats app.pot").status, 0);
}

TEST_F(QorlangTool, WorkflowCommandsSayWhy)
{
    write("t.pot", "msgid \"a\"\nmsgstr \"\"\n");
    write("de.po", kPo);
    write("de.txt", "a=b\n");
    const struct {
        int status;
        std::string environment, arguments, message;
    } cases[] = {
        {1, "", "init t.pot -o de.po", "de.po: exists already; qorlang merge brings it up to date with the template\n"},
        {2, "", "init t.pot -o sr@latin.po",
         "qorlang init: the language \"sr@latin\" has the modifier @latin, and a language-COUNTRY tag cannot tell that "
         "variant from the "
         "language's usual one; give the tag to ship it under with --language (see qorlang init --help)\n"},
        {1, "", "merge t.pot missing.po de.txt",
         "missing.po: cannot open the file for reading: No such file or directory; check the name and the folder\n"
         "de.txt: merge updates .po, .ts, .xlf, .xliff or .json files; decompile a language file first\n"},
        {1, "PATH=/nonexistent", "extract a.cpp -o a.pot",
         "qorlang: xgettext is not installed or not on PATH; install gettext (Debian: apt-get install gettext)\n"},
        {2, "", "pseudo t.pot -o x.po",
         "qorlang pseudo: the output of pseudo is a language file, its name ends in .qorlang (see qorlang pseudo "
         "--help)\n"},
        {2, "", "merge t.pot",
         "qorlang merge: needs a TEMPLATE and at least one translation FILE (see qorlang merge --help)\n"},
    };
    for (const auto& [status, environment, arguments, message] : cases) {
        SCOPED_TRACE(arguments);
        const Result r = run(arguments, environment);
        EXPECT_EQ(r.status, status);
        EXPECT_EQ(r.output, message);
    }
}

TEST_F(QorlangTool, CheckExitsNonZeroOnErrorsOnly)
{
    write("en-US.txt", "@tag=en-US\ngreet=Hello %s\nbye=Bye\n");
    write("de-DE.txt", "@tag=de-DE\ngreet=Hallo %s\n");
    write("fr-FR.txt", "@tag=fr-FR\ngreet=Bonjour %d\nbye=Salut\n");
    const Result de = run("check de-DE.txt --reference en-US.txt");
    EXPECT_EQ(de.status, 0) << de.output;
    EXPECT_EQ(
        de.output,
        "de-DE.txt: warning: key \"bye\" of the reference (line 3) has no translation here\n0 errors, 1 warning\n");
    const Result fr = run("check fr-FR.txt --reference en-US.txt");
    EXPECT_EQ(fr.status, 1);
    EXPECT_EQ(fr.output, "fr-FR.txt:2: error: key \"greet\": placeholders differ from the reference's text (line 2): "
                         "missing %1$s, extra %1$d\n1 error, 0 warnings\n");
    const Result stats = run("stats de-DE.txt fr-FR.txt --reference en-US.txt");
    EXPECT_EQ(stats.output, "file       entries translated  fuzzy  missing  percent\n"
                            "de-DE.txt        1          1      0        1    50.0%\n"
                            "fr-FR.txt        2          2      0        0   100.0%\n");
}

TEST_F(QorlangTool, I18nextPluralsSurviveInitAndMerge)
{
    // init writes Russian's three categories; merge joins them again, so nothing turns obsolete.
    write("t.pot", "msgid \"\"\nmsgstr \"\"\n\nmsgid \"a\"\nmsgid_plural \"as\"\nmsgstr[0] \"\"\nmsgstr[1] \"\"\n");
    ASSERT_EQ(run("init t.pot -o ru.json").status, 0);
    EXPECT_NE(m_folder.readFile("ru.json").find("\"a_one\": \"\",\n\t\"a_few\": \"\",\n\t\"a_many\": \"\""),
              std::string::npos);
    write("ru.json", R"({"@qorlang": {"language": "ru-RU"}, "a_one": "x", "a_few": "y", "a_many": "z"})");
    EXPECT_EQ(run("merge t.pot ru.json").output, "ru.json: 1 kept, 0 added, 0 fuzzy, 0 obsolete\n");
    const std::string json = m_folder.readFile("ru.json");
    EXPECT_NE(json.find("\"a_one\": \"x\",\n\t\"a_few\": \"y\",\n\t\"a_many\": \"z\""), std::string::npos) << json;
}

TEST_F(QorlangTool, I18nextPluralsJoinByTheLanguageGivenToCompile)
{
    // Without the language the keys read as English's: "_few" and "_many" are no forms there.
    write("ru.json", R"({"n_one": "%d файл", "n_few": "%d файла", "n_many": "%d файлов", "n_other": "%d файла"})");
    const Result check = run("check ru.json");
    EXPECT_NE(check.output.find("warning: the file names no language"), std::string::npos) << check.output;
    ASSERT_EQ(run("compile ru.json -o app-ru-RU.qorlang --language ru-RU").status, 0);
    ASSERT_EQ(run("decompile app-ru-RU.qorlang -o back.po").status, 0);
    const std::string po = m_folder.readFile("back.po");
    EXPECT_NE(po.find("msgid \"n\"\nmsgid_plural \"n\"\nmsgstr[0] \"%d файл\"\nmsgstr[1] \"%d файла\"\nmsgstr[2] \"%d "
                      "файлов\"\n"),
              std::string::npos)
        << po;
    EXPECT_NE(po.find("msgid \"n_other\"\nmsgstr \"%d файла\"\n"), std::string::npos) << po;
}

TEST_F(QorlangTool, EveryCommandHasHelp)
{
    for (const char* command :
         {"compile", "decompile", "check", "stats", "info", "extract", "init", "merge", "pseudo"}) {
        const Result r = run(std::string(command) + " --help");
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.output.rfind(std::string("usage: qorlang ") + command, 0), 0u) << r.output;
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("").status, 2);
}

#endif
