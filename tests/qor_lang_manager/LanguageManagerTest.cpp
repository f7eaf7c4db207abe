#include "LanguageTestSupport.h"

#include "framework/io/FileSystemSupport.h"
#include "framework/log/Trace.h"
#include "qor_lang_manager/CLanguageManager.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace lang_test;
using qor_lang::CLanguageFileWriter;
using qor_lang::CLanguageManager;
using qor_lang::LanguageId;

struct LanguageManagerTest : ::testing::Test {
    kore_test::CTempFolder folder;
    CLocalizerGuard localizer;
    kore::P<CLanguageManager> manager = kore::make<CLanguageManager>();
};

struct CListener : kore::CObject, qor_lang::ILanguageChangeListener {
    CListener(std::string name, std::vector<std::string>& journal) : name(std::move(name)), journal(journal) {}
    void onLanguageChanged(const LanguageId& language) override
    {
        const std::u16string t = language.getTag();
        journal.push_back(name + ":" + std::string(t.begin(), t.end()));
    }
    std::string name;
    std::vector<std::string>& journal;
};

TEST_F(LanguageManagerTest, SettingTheLanguageLogsStoresLoadsAndTells)
{
    EXPECT_TRUE(manager->getCurrentLanguage().isValid());
    EXPECT_EQ(manager->getCurrentLanguage().getTag(), u"");

    CLanguageFileWriter writer;
    writer.setLanguage(u"de-DE", u"", u"");
    writer.addString(u"k", u"Deutsch");
    writeBytes(folder, "A-de-DE.qorlang", written(writer));
    manager->add(folder.uri(), "A");
    std::vector<std::string> journal;
    const auto first = kore::make<CListener>("first", journal);
    const auto second = kore::make<CListener>("second", journal);
    manager->addListener(first.get());
    manager->addListener(second.get());

    CLogCapture log(CLanguageManager::kLogModule);
    EXPECT_TRUE(manager->setCurrentLanguage(tag(u"de-DE")));
    EXPECT_EQ(localized("k"), "Deutsch");
    EXPECT_EQ(manager->getCurrentLanguage().getTag(), u"de-DE");
    manager->setCurrentLanguage(tag(u"de-DE"));
    manager->removeListener(first.get());
    manager->setCurrentLanguage(tag(u"fr-FR"));

    EXPECT_EQ(log.records(), (std::vector<std::string>{"1:Setting Language: de-DE", "1:Setting Language: de-DE",
                                                       "1:Setting Language: fr-FR"}));
    EXPECT_EQ(journal,
              (std::vector<std::string>{"first:de-DE", "second:de-DE", "first:de-DE", "second:de-DE", "second:fr-FR"}));
}

// Switching between languages that both have files never mixes them: a key the new language
// lacks shows its default, not the old text. Where no folder has a readable file for the new
// language (nor for its fallback), every key shows its default.
TEST_F(LanguageManagerTest, SwitchingLanguagesDoesNotMixTheirTexts)
{
    folder.makeFolder("a");
    folder.makeFolder("b");
    CLanguageFileWriter german;
    german.setLanguage(u"de-DE", u"", u"");
    german.addString(u"both", u"beide");
    german.addString(u"onlyGerman", u"nur deutsch");
    writeBytes(folder, "a/A-de-DE.qorlang", written(german));
    CLanguageFileWriter otherApp;
    otherApp.setLanguage(u"de-DE", u"", u"");
    otherApp.addString(u"otherApp", u"andere");
    writeBytes(folder, "b/B-de-DE.qorlang", written(otherApp));
    CLanguageFileWriter french;
    french.setLanguage(u"fr-FR", u"", u"");
    french.addString(u"both", u"les deux");
    writeBytes(folder, "a/A-fr-FR.qorlang", written(french));
    Bytes cut = written(french);
    cut.resize(40); // unreadable
    writeBytes(folder, "a/A-it-IT.qorlang", cut);
    manager->add(folder.uri("a"), "A");
    manager->add(folder.uri("b"), "B");

    manager->setCurrentLanguage(tag(u"de-DE"));
    EXPECT_EQ(localized("both"), "beide");
    EXPECT_EQ(localized("onlyGerman"), "nur deutsch");
    EXPECT_EQ(localized("otherApp"), "andere") << "every pack feeds the one localizer";

    manager->setCurrentLanguage(tag(u"fr-FR"));
    EXPECT_EQ(localized("both"), "les deux");
    EXPECT_EQ(localized("onlyGerman"), "-");
    EXPECT_EQ(localized("otherApp"), "-") << "B has no French file: its German texts go too";

    manager->setCurrentLanguage(tag(u"es-ES"));
    EXPECT_EQ(localized("both"), "-") << "no file at all: the defaults answer, never French";
    manager->setCurrentLanguage(tag(u"fr-FR"));
    manager->setCurrentLanguage(tag(u"it-IT"));
    EXPECT_EQ(localized("both"), "-") << "no readable file: the same";
}

// Without a file of its own a language takes a file of the same language with another country,
// chosen by file name: the language's own country, else the first tag in order. Each file's
// text of "k" says which file answered.
TEST_F(LanguageManagerTest, ALanguageWithoutAFileFallsBackToItsLanguageElsewhere)
{
    const std::pair<const char*, const char16_t*> files[] = {
        {"A-de-DE.qorlang", u"de-DE"},  {"A-de-CH.qorlang", u"de-CH"},   {"A-fr-CA.qorlang", u"fr-CA"},
        {"A-fr-BE.qorlang", u"fr-BE"},  {"A-es-MX.qorlang", u"es-MX"},   {"A-es-AR.qorlang", u"es-AR"},
        {"A-en-GB.qorlang", u"en-GB"},  {"A-en-US.qorlang", u"en-US"},   {"A-pt-BR.qorlang", u"pt-BR"},
        {"A-it-CH.qorlang", u"it-IT"}, // the name decides, not the tag inside
        {"A-nl-BE.qorlang", u"nl-BE"},  {"A-sv-x-FI.qorlang", u"sv-FI"}, {"A-sv-fi.qorlang", u"sv-FI"},
        {"Ab-ru-UA.qorlang", u"ru-UA"}, {"A-ru-.qorlang", u"ru-RU"},     {"A-ru-ZZ.qorlang", u"ru-RU"},
    };
    for (const auto& [name, inside] : files) {
        CLanguageFileWriter writer;
        writer.setLanguage(inside, u"", u"");
        const std::string n(name);
        writer.addString(u"k", std::u16string(n.begin() + 2, n.end() - 8).c_str());
        writeBytes(folder, name, written(writer));
    }
    Bytes cut = written(CLanguageFileWriter());
    cut.resize(12);
    writeBytes(folder, "A-nl-NL.qorlang", cut);
    manager->add(folder.uri(), "A");

    const struct {
        const char16_t* tag;
        const char* answer;
    } rows[] = {
        {u"de-AT", "de-DE"}, {u"de-CH", "de-CH"}, {u"fr-FR", "fr-BE"}, {u"es-ES", "es-AR"},
        {u"en-AU", "en-US"}, {u"pt-PT", "pt-BR"}, {u"it-IT", "it-CH"}, {u"ja-JP", "-"},
        {u"nl-NL", "nl-BE"}, {u"sv-SE", "-"},     {u"ru-RU", "-"},     {u"DE-at", "de-DE"},
    };
    for (const auto& row : rows) {
        manager->setCurrentLanguage(tag(row.tag));
        EXPECT_EQ(localized("k"), row.answer) << utf8(kore::make<kore::CUTF16String>(row.tag));
        EXPECT_EQ(manager->getCurrentLanguage().getTag(), tag(row.tag).getTag());
    }
}

// All packs feed one localizer; of two packs with one key, the later in the map's order (the
// application ids' own order, not the order of adding) answers, even with an empty text.
TEST_F(LanguageManagerTest, TheLaterPackInIdOrderAnswersAKeyTwoPacksShare)
{
    const std::pair<const char*, std::vector<std::pair<std::u16string, std::u16string>>> packs[] = {
        {"b", {{u"shared", u"from b"}, {u"blank", u"from b"}, {u"only.b", u"b"}}},
        {"a", {{u"shared", u"from a"}, {u"blank", u"from a"}, {u"only.a", u"a"}}},
        {"c", {{u"blank", u""}}},
    };
    for (const auto& [id, strings] : packs) {
        folder.makeFolder(id);
        CLanguageFileWriter writer;
        writer.setLanguage(u"de-DE", u"", u"");
        for (const auto& [key, text] : strings)
            writer.addString(key, text);
        writeBytes(folder, std::string(id) + "/" + id + "-de-DE.qorlang", written(writer));
        manager->add(folder.uri(id), id);
    }
    manager->setCurrentLanguage(tag(u"de-DE"));
    EXPECT_EQ(localized("shared"), "from b");
    EXPECT_EQ(localized("blank"), "-") << "c's empty text replaces the others";
    EXPECT_EQ(localized("only.a"), "a");
    EXPECT_EQ(localized("only.b"), "b");
}

// The change of language is traced with the manager's file and line and the tag, only while
// tracing is on, whether or not a file for the language exists.
TEST_F(LanguageManagerTest, ALanguageChangeIsTracedOnlyWhileTracingIsOn)
{
    if (kore::platform::usesWindowsPaths())
        GTEST_SKIP() << "the trace goes to the debugger there";
    CLanguageFileWriter writer;
    writer.setLanguage(u"de-DE", u"", u"");
    writer.addString(u"k", u"Deutsch");
    writeBytes(folder, "A-de-DE.qorlang", written(writer));
    manager->add(folder.uri(), "A");
    const struct {
        bool tracing;
        const char16_t* tag;
        const char* expected;
    } rows[] = {
        {false, u"de-DE", ""},
        {true, u"de-DE", "qor_trace: CLanguageManager.cpp (189) c=de-DE\n"},
        {true, u"fr-FR", "qor_trace: CLanguageManager.cpp (189) c=fr-FR\n"},
        {false, u"fr-FR", ""},
    };
    const bool was = kore::isTraceEnabled();
    for (const auto& row : rows) {
        ::testing::internal::CaptureStderr();
        kore::setTraceEnabled(row.tracing);
        manager->setCurrentLanguage(tag(row.tag));
        kore::setTraceEnabled(was);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), row.expected);
    }
}

} // namespace
