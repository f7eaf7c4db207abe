#include "LanguageTestSupport.h"

#include "framework/io/FileSystemSupport.h"
#include "framework/log/Trace.h"
#include "qor_lang_manager/CLanguageManager.h"

#include <gtest/gtest.h>

namespace {

using namespace lang_test;
using qor_lang::CLanguageManager;
using qor_lang::LanguageId;

const auto tag = [](const char16_t* text) -> LanguageId { return {text, qor_lang::LanguageTagMode::Tag}; };
// The localizer's text of `key`, "-" when it has none.
const auto localized = [](const char* key) { return utf8(kore::CStringLocalizer::instance()->getString(key, "-")); };

struct LanguageManagerTest : ::testing::Test {
    kore_test::CTempFolder folder;
    CLocalizerGuard localizer;
    kore::P<CLanguageManager> manager = kore::make<CLanguageManager>();

    // The file `name` (its name decides its language, not `inside`) without an application id.
    void write(const std::string& name, const char16_t* inside, const Strings& strings)
    {
        writeLanguageFile(folder.path(name), languageWriter(inside, std::nullopt, strings));
    }
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
    write("A-de-DE.qorlang", u"de-DE", {{u"k", u"Deutsch"}});
    manager->add(folder.uri(), "A");
    std::vector<std::string> journal;
    const auto first = kore::make<CListener>("first", journal), second = kore::make<CListener>("second", journal);
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
// language (nor for its fallback), every key shows its default. All packs feed one localizer; of
// two packs with one key, the later in the map's order (the application ids' own order, not the
// order of adding) answers, even with an empty text.
TEST_F(LanguageManagerTest, SwitchingLanguagesDoesNotMixTheirTexts)
{
    folder.makeFolder("a");
    folder.makeFolder("b");
    write("a/A-de-DE.qorlang", u"de-DE",
          {{u"both", u"beide"}, {u"onlyGerman", u"nur deutsch"}, {u"shared", u"from A"}, {u"blank", u"from A"}});
    write("b/B-de-DE.qorlang", u"de-DE", {{u"otherApp", u"andere"}, {u"shared", u"from B"}, {u"blank", u""}});
    write("a/A-fr-FR.qorlang", u"fr-FR", {{u"both", u"les deux"}});
    const Bytes french = written(languageWriter(u"fr-FR", std::nullopt, {{u"both", u"les deux"}}));
    writeBytes(folder, "a/A-it-IT.qorlang", Bytes(french.begin(), french.begin() + 40)); // unreadable
    manager->add(folder.uri("b"), "B");
    manager->add(folder.uri("a"), "A");

    // Each row: the language set, then the texts of "both", "onlyGerman", "otherApp", "shared", "blank".
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"de-DE", "beide|nur deutsch|andere|from B|-"},
        {u"fr-FR", "les deux|-|-|-|-"}, // B has no French file: its German texts go too
        {u"es-ES", "-|-|-|-|-"}, // no file at all: the defaults answer, never French
        {u"fr-FR", "les deux|-|-|-|-"},
        {u"it-IT", "-|-|-|-|-"}, // no readable file: the same
    };
    for (const auto& [language, texts] : rows) {
        manager->setCurrentLanguage(tag(language));
        std::string answers;
        for (const char* key : {"both", "onlyGerman", "otherApp", "shared", "blank"})
            answers += (answers.empty() ? "" : "|") + localized(key);
        EXPECT_EQ(answers, texts);
    }
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
        const std::string n(name);
        write(name, inside, {{u"k", std::u16string(n.begin() + 2, n.end() - 8)}});
    }
    writeBytes(folder, "A-nl-NL.qorlang", chf_test::text("URESFILE") + u32(0)); // cut in its header
    manager->add(folder.uri(), "A");

    const std::pair<const char16_t*, const char*> rows[] = {
        {u"de-AT", "de-DE"}, {u"de-CH", "de-CH"}, {u"fr-FR", "fr-BE"}, {u"es-ES", "es-AR"},
        {u"en-AU", "en-US"}, {u"pt-PT", "pt-BR"}, {u"it-IT", "it-CH"}, {u"ja-JP", "-"},
        {u"nl-NL", "nl-BE"}, {u"sv-SE", "-"},     {u"ru-RU", "-"},     {u"DE-at", "de-DE"},
    };
    for (const auto& [language, answer] : rows) {
        manager->setCurrentLanguage(tag(language));
        EXPECT_EQ(localized("k"), answer) << utf8(kore::make<kore::CUTF16String>(language));
        EXPECT_EQ(manager->getCurrentLanguage().getTag(), tag(language).getTag());
    }
}

// The change of language is traced with the tag only while tracing is on (the trace's own form is
// the trace's tests' business).
TEST_F(LanguageManagerTest, ALanguageChangeIsTracedOnlyWhileTracingIsOn)
{
    if (kore::platform::usesWindowsPaths())
        GTEST_SKIP() << "the trace goes to the debugger there";
    const bool was = kore::isTraceEnabled();
    for (const bool tracing : {false, true}) {
        ::testing::internal::CaptureStderr();
        kore::setTraceEnabled(tracing);
        manager->setCurrentLanguage(tag(u"fr-FR"));
        kore::setTraceEnabled(was);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  tracing ? "qor_trace: CLanguageManager.cpp (189) c=fr-FR\n" : "");
    }
}

} // namespace
