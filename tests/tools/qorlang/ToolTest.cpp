// The qorlang program as translators run it: exit status, one-line messages, no partial output.
#include "../../framework/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#ifndef _WIN32

namespace fs = std::filesystem;

namespace {

struct Result {
    int status;
    std::string output;
};

class QorlangTool : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) { m_folder.writeFile(name, text); }

    Result run(const std::string& arguments)
    {
        const std::string command = "cd '" + m_folder.utf8() + "' && '" QORLANG_EXE "' " + arguments + " 2>&1";
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
    write("de.po", kPo);
    write("demo-de-DE.qorlang", "previous");
    const std::pair<std::string, std::string> cases[] = {
        {"compile de.po -o demo-de-DE.qorlang",
         "de.po:1: the language \"de\" is not a tag the library accepts (it needs language-COUNTRY, such as de-DE); give one with --language\n"},
        {"compile de.po -o demo-de-DE.qorlang --language de",
         "qorlang compile: --language de: the library accepts only language-COUNTRY tags such as de-DE\n"},
        {"compile de.po -o other.qorlang --language de-DE",
         "other.qorlang: the name is not <app>-de-DE.qorlang, so give the application id with --app-id\n"},
        {"compile missing.po -o demo-de-DE.qorlang", "missing.po: cannot open the file for reading\n"},
        {"compile de.xml -o demo-de-DE.qorlang",
         "de.xml: unknown format (the extension must be .po, .xlf, .xliff, .ts, .json, .txt or .qorlang)\n"},
        {"compile de.po -o no/such/dir/demo-de-DE.qorlang --language de-DE", "no/such/dir/demo-de-DE.qorlang: cannot create the file\n"},
        {"compile de.po --frobnicate", "qorlang compile: unknown option --frobnicate (see qorlang compile --help)\n"},
        {"compile de.po -o demo-de-DE.qorlang --qt-context maybe", "qorlang: --qt-context takes auto, keep or drop\n"},
    };
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(arguments);
        const Result r = run(arguments);
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.output, message);
    }
    EXPECT_EQ(m_folder.readFile("demo-de-DE.qorlang"), "previous");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path()), fs::directory_iterator()), 2); // no temporary left
}

TEST_F(QorlangTool, CheckExitsNonZeroOnErrorsOnly)
{
    write("en-US.txt", "@tag=en-US\ngreet=Hello %s\nbye=Bye\n");
    write("de-DE.txt", "@tag=de-DE\ngreet=Hallo %s\n");
    write("fr-FR.txt", "@tag=fr-FR\ngreet=Bonjour %d\nbye=Salut\n");
    const Result de = run("check de-DE.txt --reference en-US.txt");
    EXPECT_EQ(de.status, 0) << de.output;
    EXPECT_EQ(de.output, "de-DE.txt: warning: key \"bye\" of the reference (line 3) has no translation here\n0 errors, 1 warning\n");
    const Result fr = run("check fr-FR.txt --reference en-US.txt");
    EXPECT_EQ(fr.status, 1);
    EXPECT_EQ(fr.output, "fr-FR.txt:2: error: key \"greet\": placeholders differ from the reference's text (line 2): "
                         "missing %1$s, extra %1$d\n1 error, 0 warnings\n");
    const Result stats = run("stats de-DE.txt fr-FR.txt --reference en-US.txt");
    EXPECT_EQ(stats.output, "file       entries translated  fuzzy  missing  percent\n"
                            "de-DE.txt        1          1      0        1    50.0%\n"
                            "fr-FR.txt        2          2      0        0   100.0%\n");
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
    EXPECT_NE(po.find("msgid \"n\"\nmsgid_plural \"n\"\nmsgstr[0] \"%d файл\"\nmsgstr[1] \"%d файла\"\nmsgstr[2] \"%d файлов\"\n"),
              std::string::npos) << po;
    EXPECT_NE(po.find("msgid \"n_other\"\nmsgstr \"%d файла\"\n"), std::string::npos) << po;
}

TEST_F(QorlangTool, EveryCommandHasHelp)
{
    for (const char* command : {"compile", "decompile", "check", "stats", "info"}) {
        const Result r = run(std::string(command) + " --help");
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.output.rfind(std::string("usage: qorlang ") + command, 0), 0u) << r.output;
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("").status, 2);
}

#endif
