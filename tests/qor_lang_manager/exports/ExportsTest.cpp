// The exported functions as a host calls them: through qor_lang2.h and the shared library only.
// These tests share one process (under Wine all of them do), so each uses its own application id,
// folder and keys, and sets the current language itself before relying on it.
#include "ExportTestSupport.h"

#include <atomic>
#include <thread>

namespace {

using namespace export_test;
using kore_test::utf8FromPath;
namespace fs = std::filesystem;

class Exports : public ::testing::Test {
protected:
    kore_test::CTempFolder m_temp;
    const fs::path m_folder = m_temp.path();
    const std::u16string m_app = testName();
};

// --- Language tags

TEST_F(Exports, OnlyLanguageCountryTagsAreAcceptedAndSpelledAsTheTablesDo)
{
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    EXPECT_EQ(currentLanguage(), u"de-DE");

    for (const char16_t* rejected : {u"en", u"a-b-c", u"", u"de-DE-x", u"xx-DE", u"de-XX", u"fre-FR"}) {
        EXPECT_EQ(setLanguage(rejected), 20) << utf8(rejected);
        EXPECT_EQ(currentLanguage(), u"de-DE") << "a rejected tag changes nothing";
    }
    EXPECT_EQ(QOR_LANG2_setCurrentLanguage(nullptr), 20);
    EXPECT_EQ(currentLanguage(), u"de-DE");

    const std::pair<const char16_t*, const char16_t*> accepted[] = {
        {u"en-US", u"en-US"}, {u"EN-us", u"en-US"}, {u"fra-FR", u"fr-FR"},
        {u"de--DE", u"de-DE"}, {u"ace-ID", u"ace-ID"}};
    for (const auto& [tag, spelled] : accepted) {
        EXPECT_EQ(setLanguage(tag), 0) << utf8(tag);
        EXPECT_EQ(currentLanguage(), spelled);
    }
}

// --- Localized strings

TEST_F(Exports, LoadedTextsAnswerAndEverythingElseGetsACopyOfTheDefault)
{
    writeLanguageFile(m_folder, m_app, u"de-DE",
                      {{m_app + u".file", u"Datei"}, {m_app + u".blank", u""}});
    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(setLanguage(u"de-DE"), 0);

    EXPECT_EQ(localString(m_app + u".file", u"File"), u"Datei");
    EXPECT_EQ(localString(m_app + u".blank", u"Blank"), u"Blank") << "an empty text cannot blank one out";
    EXPECT_EQ(localString(m_app + u".FILE", u"File"), u"File") << "keys compare exactly";
    EXPECT_EQ(localString(m_app + u".absent", u""), u"");

    const std::u16string defaultText = u"Not translated";
    QOR_LANG2_CHAR* copy = QOR_LANG2_getLocalString(w(m_app + u".absent"), w(defaultText));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, w(defaultText)) << "the caller's default must come back as a buffer of its own";
    EXPECT_EQ(take(copy), defaultText);

    EXPECT_EQ(take(QOR_LANG2_getLocalString(w(m_app + u".absent"), nullptr)), u"")
        << "a null default reads as the empty text";
    EXPECT_EQ(take(QOR_LANG2_getLocalString(nullptr, w(defaultText))), defaultText);
}

TEST_F(Exports, NonAsciiTextCrossesTheBoundaryUnchanged)
{
    // Japanese (BMP), a character outside the BMP (a surrogate pair) and Latin-1 letters, in keys,
    // texts and defaults.
    const std::u16string key = m_app + u".メニュー.ファイル";
    const std::u16string text = u"ファイルを開く… \U0001F310 äöü";
    // Unpaired surrogates are no characters, but Windows strings may hold them: what a host or a
    // file gives comes back unit for unit.
    const std::u16string unpaired = u"a\xDC00" u"b\xD800";
    writeLanguageFile(m_folder, m_app, u"ja-JP", {{key, text}, {m_app + u".unpaired", unpaired}});
    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(setLanguage(u"ja-JP"), 0);

    EXPECT_EQ(localString(key, u"Open file"), text);
    EXPECT_EQ(localString(m_app + u".未定義", u"既定の文字列 \U0001F600"), u"既定の文字列 \U0001F600");
    EXPECT_EQ(localString(m_app + u".unpaired", u"default"), unpaired);
    EXPECT_EQ(localString(m_app + u".未定義", unpaired), unpaired);
}

TEST_F(Exports, SettingALanguageReplacesTheTextsOfEveryApplication)
{
    const fs::path second = m_folder / "second";
    fs::create_directory(second);
    const std::u16string otherApp = m_app + u"Other";
    const std::u16string key = m_app + u".title";
    const std::u16string otherKey = m_app + u".other.title";
    writeLanguageFile(m_folder, m_app, u"de-DE", {{key, u"Titel"}});
    writeLanguageFile(m_folder, m_app, u"fr-FR", {{key, u"Titre"}});
    writeLanguageFile(second, otherApp, u"de-DE", {{otherKey, u"Anderer Titel"}});
    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(addFolder(second, otherApp), 0);

    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    EXPECT_EQ(localString(key, u"Title"), u"Titel");
    EXPECT_EQ(localString(otherKey, u"Other title"), u"Anderer Titel") << "all packs feed one table";

    ASSERT_EQ(setLanguage(u"fr-FR"), 0);
    EXPECT_EQ(localString(key, u"Title"), u"Titre");

    EXPECT_EQ(setLanguage(u"it-IT"), 0) << "a language without files is still a valid choice";
    EXPECT_EQ(currentLanguage(), u"it-IT");
    EXPECT_EQ(localString(key, u"Title"), u"Titre") << "no file: the loaded texts stay";
}

TEST_F(Exports, LookUpsWhileTheLanguageChangesSeeOneOfTheTexts)
{
    const std::u16string key = m_app + u".greeting";
    writeLanguageFile(m_folder, m_app, u"de-DE", {{key, u"Hallo"}});
    writeLanguageFile(m_folder, m_app, u"fr-FR", {{key, u"Bonjour"}});
    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(setLanguage(u"de-DE"), 0);

    std::atomic<bool> done{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 2; ++t) {
        readers.emplace_back([&] {
            while (!done) {
                const Text text = localString(key, u"Hello");
                if (text != u"Hallo" && text != u"Bonjour")
                    ++wrong;
            }
        });
    }
    for (int i = 0; i < 40; ++i)
        setLanguage(i % 2 ? u"de-DE" : u"fr-FR");
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(wrong, 0);
}

// --- Language lists

TEST_F(Exports, LanguagesAreListedInFolderOrderWithTheirTagsFromTheFiles)
{
    writeLanguageFile(m_folder, m_app, u"fr-FR");
    writeLanguageFile(m_folder, m_app, u"de-DE");
    // The tag comes from the file, not from its name, and is spelled as the tables do.
    writeLanguageFile(m_folder / (m_app + u"-x.qorlang"), languageWriter(u"JA-jp", m_app));
    // Neither another application's file nor another extension.
    writeLanguageFile(m_folder, u"Other", u"en-US");
    writeBytes(m_folder / (m_app + u"-en-US.txt"), "text");
    ASSERT_EQ(addFolder(m_folder, m_app), 0);

    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 3);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 0)), u"de-DE");
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 1)), u"fr-FR");
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 2)), u"ja-JP");
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 3)), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), -1)), std::nullopt);

    FileHandle last = languageFile(m_app, 2);
    ASSERT_TRUE(last);
    EXPECT_EQ(take(QOR_LANG2_FILE_getLanguageID(last.get())), u"ja-JP");
    EXPECT_FALSE(languageFile(m_app, 3)) << "index == count";
    EXPECT_FALSE(languageFile(m_app, -1));
    EXPECT_FALSE(languageFile(m_app, INT32_MIN));
}

TEST_F(Exports, UnknownApplicationsHaveNoLanguages)
{
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(nullptr), 0);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 0)), std::nullopt);
    EXPECT_FALSE(languageFile(m_app, 0));
    EXPECT_FALSE(FileHandle(QOR_LANG2_getLanguageFile(nullptr, 0)));
}

TEST_F(Exports, AMissingFolderIsNoErrorAndIsLookedForAgain)
{
    const fs::path later = m_folder / "later";
    ASSERT_EQ(addFolder(later, m_app), 0) << "a missing folder is no error";
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0);

    fs::create_directory(later);
    writeLanguageFile(later, m_app, u"de-DE");
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 1) << "an empty list is looked for again";
}

TEST_F(Exports, FoldersGivenAsUriText)
{
    writeLanguageFile(m_folder, m_app, u"de-DE");
    for (const char16_t* bad : {u"not a uri", u"file:///%zz/", u"C:\\Lang\\", u""})
        EXPECT_EQ(QOR_LANG2_addEx(w(bad), w(m_app)), -1) << utf8(bad);
    EXPECT_EQ(QOR_LANG2_addEx(nullptr, w(m_app)), -1);
    EXPECT_EQ(QOR_LANG2_addEx(w(folderUri(m_folder)), nullptr), -1);
    EXPECT_EQ(QOR_LANG2_add(nullptr, nullptr, w(m_app)), -1);
    EXPECT_EQ(QOR_LANG2_add(w(pathText(m_folder)), nullptr, nullptr), -1);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0) << "a failed registration registers nothing";

    ASSERT_EQ(QOR_LANG2_addEx(w(folderUri(m_folder)), w(m_app)), 0);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 1);
}

TEST_F(Exports, HostileFilesAreLeftOutAndTheOthersStillWork)
{
    const std::u16string key = m_app + u".ok";
    writeLanguageFile(m_folder, m_app, u"de-DE", {{key, u"In Ordnung"}});
    writeLanguageFile(m_folder, m_app, u"fr-FR", {{key, u"D'accord"}});

    auto name = [&](const char* rest) { return m_folder / (m_app + u16(rest)); };
    writeBytes(name("-aa-DJ.qorlang"), "not a language file at all");
    writeBytes(name("-ab-GE.qorlang"), "");
    const std::string good = readBytes(name("-de-DE.qorlang"));
    writeBytes(name("-ak-GH.qorlang"), good.substr(0, 30)); // cut inside "lang"
    // Header (16 bytes), chunk header (12), then the tag's count: make it claim almost 4 GiB.
    std::string huge = good;
    huge.replace(28, 4, std::string("\xF0\xFF\xFF\x7F", 4));
    writeBytes(name("-am-ET.qorlang"), huge);
    fs::create_directory(m_folder / (m_app + u"-an-ES.qorlang"));
    // Readable descriptive chunks, but the string table is cut: listed, yet it loads no text.
    writeLanguageFile(m_folder, m_app, u"it-IT", {{key, u"Va bene"}, {m_app + u".more", u"Altro"}});
    const fs::path cut = m_folder / (m_app + u"-it-IT.qorlang");
    fs::resize_file(cut, fs::file_size(cut) - 6);

    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 3);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 0)), u"de-DE");
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 1)), u"fr-FR");
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 2)), u"it-IT");

    ASSERT_EQ(setLanguage(u"fr-FR"), 0);
    EXPECT_EQ(localString(key, u"OK"), u"D'accord");
    EXPECT_EQ(setLanguage(u"it-IT"), 0);
    EXPECT_EQ(localString(key, u"OK"), u"D'accord") << "a broken table loads nothing";
    EXPECT_EQ(localString(m_app + u".more", u"More"), u"More");
    for (const char16_t* broken : {u"aa-DJ", u"ab-GE", u"ak-GH", u"am-ET", u"an-ES"})
        EXPECT_EQ(setLanguage(broken), 0) << utf8(broken);
    EXPECT_EQ(localString(key, u"OK"), u"D'accord");
}

// --- Language files

TEST_F(Exports, FileAccessorsReportEveryItem)
{
    qor_lang::CLanguageFileWriter full;
    full.setLanguage(u"ja-JP", u"日本語", u"日本");
    full.setApplication(m_app, u"second string");
    full.setComment(u"翻訳メモ \U0001F310");
    full.addExtra(u"QOR_LANG_REVIEWER", u"someone else");
    full.setAuthor(u"山田 太郎");
    writeLanguageFile(m_folder / (m_app + u"-1.qorlang"), full);

    // English names come from the code tables, whatever the file calls its language.
    qor_lang::CLanguageFileWriter tableNames;
    tableNames.setLanguage(u"nl-BE", u"Nederlands", u"België");
    writeLanguageFile(m_folder / (m_app + u"-2.qorlang"), tableNames);

    // Absent items (no tag, counts of 0) read as empty strings, never as null.
    qor_lang::CLanguageFileWriter bare;
    bare.setLanguage(std::nullopt, std::nullopt, u"");
    writeLanguageFile(m_folder / (m_app + u"-3.qorlang"), bare);

    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 3);

    using Accessor = QOR_LANG2_CHAR* (*)(QOR_LANG2_FILE_HANDLE);
    const std::pair<const char*, Accessor> accessors[] = {
        {"LanguageID", QOR_LANG2_FILE_getLanguageID},     {"AppID", QOR_LANG2_FILE_getAppID},
        {"Author", QOR_LANG2_FILE_getAuthor},             {"Comment", QOR_LANG2_FILE_getComment},
        {"EnglishName", QOR_LANG2_FILE_getEnglishName},   {"EnglishSubName", QOR_LANG2_FILE_getEnglishSubName},
        {"NativeName", QOR_LANG2_FILE_getNativeName},     {"NativeSubName", QOR_LANG2_FILE_getNativeSubName}};
    const std::u16string expected[3][8] = {
        {u"ja-JP", m_app, u"山田 太郎", u"翻訳メモ \U0001F310", u"Japanese", u"Japan", u"日本語", u"日本"},
        {u"nl-BE", u"", u"", u"", u"Dutch; Flemish", u"Belgium", u"Nederlands", u"België"},
        {u"", u"", u"", u"", u"", u"", u"", u""}};
    for (int32_t index = 0; index < 3; ++index) {
        FileHandle file = languageFile(m_app, index);
        ASSERT_TRUE(file);
        for (size_t a = 0; a < 8; ++a)
            EXPECT_EQ(take(accessors[a].second(file.get())), expected[index][a])
                << "file " << index << ", " << accessors[a].first;
    }

    for (const auto& [name, accessor] : accessors)
        EXPECT_EQ(accessor(nullptr), nullptr) << name << " with a null handle";
    QOR_LANG2_freeQorLangFile(nullptr);
}

TEST_F(Exports, EachHandleKeepsItsFileOnItsOwn)
{
    qor_lang::CLanguageFileWriter writer = languageWriter(u"de-DE", m_app);
    writer.setAuthor(u"Erika Mustermann");
    writeLanguageFile(m_folder / (m_app + u"-de-DE.qorlang"), writer);
    ASSERT_EQ(addFolder(m_folder, m_app), 0);

    FileHandle first = languageFile(m_app, 0);
    FileHandle second = languageFile(m_app, 0);
    ASSERT_TRUE(first && second);
    EXPECT_NE(first.get(), second.get()) << "every call makes a new handle";
    first.reset();
    EXPECT_EQ(take(QOR_LANG2_FILE_getAuthor(second.get())), u"Erika Mustermann");
}

// --- Companion files

class FindLocalizedFile : public Exports {
protected:
    Text find(const std::u16string& prefix, const std::u16string& infix, const std::u16string& suffix,
              const std::u16string& folder)
    {
        return take(QOR_LANG2_findLocalizedFile(w(folder), w(prefix), w(infix), w(suffix)));
    }
    // The answer is a local path (not a URI) that names `expected`.
    static void expectNames(const Text& found, const fs::path& expected)
    {
        ASSERT_TRUE(found) << "nothing found where " << utf8FromPath(expected) << " exists";
        const fs::path path(*found);
        EXPECT_TRUE(path.is_absolute()) << utf8FromPath(path);
        std::error_code error;
        EXPECT_TRUE(fs::equivalent(path, expected, error)) << utf8FromPath(path);
    }
};

TEST_F(FindLocalizedFile, CurrentLanguageFirstThenEnglish)
{
    const fs::path folder = m_folder / u"ヘルプ";
    fs::create_directory(folder);
    const std::u16string uri = folderUri(folder);
    for (const char* name : {"help_de-DE.pdf", "help_en-US.pdf", "manual_de-DE_v2.html"})
        writeBytes(folder / name, "x");
    fs::create_directory(folder / "help_fr-FR.pdf");

    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    expectNames(find(u"help_", u"", u".pdf", uri), folder / "help_de-DE.pdf");
    expectNames(find(u"manual_", u"_v2", u".html", uri), folder / "manual_de-DE_v2.html");
    expectNames(find(u"help_", u"", u".p?f", uri), folder / "help_de-DE.pdf");

    ASSERT_EQ(setLanguage(u"fr-FR"), 0); // help_fr-FR.pdf is a folder, and so no answer
    expectNames(find(u"help_", u"", u".pdf", uri), folder / "help_en-US.pdf");
    ASSERT_EQ(setLanguage(u"it-IT"), 0);
    expectNames(find(u"help_", u"", u".pdf", uri), folder / "help_en-US.pdf");

    fs::remove(folder / "help_en-US.pdf");
    EXPECT_EQ(find(u"help_", u"", u".pdf", uri), std::nullopt);
    EXPECT_EQ(find(u"manual_", u"_v2", u".html", uri), std::nullopt);
}

TEST_F(FindLocalizedFile, UnusableArgumentsFindNothing)
{
    writeBytes(m_folder / "help_en-US.pdf", "x");
    const std::u16string uri = folderUri(m_folder);
    const std::u16string prefix = u"help_", empty, suffix = u".pdf";
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(nullptr, w(prefix), w(empty), w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), nullptr, w(empty), w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), w(prefix), nullptr, w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), w(prefix), w(empty), nullptr)), std::nullopt);
    EXPECT_EQ(find(prefix, empty, suffix, u"no uri"), std::nullopt);
    EXPECT_EQ(find(prefix, empty, suffix, folderUri(m_folder / "missing")), std::nullopt);
    EXPECT_TRUE(find(prefix, empty, suffix, uri)) << "the same call with usable arguments finds it";
}

} // namespace
