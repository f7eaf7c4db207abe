// The exported functions as a host calls them: through qor_lang2.h and the shared library only.
// These tests share one process (under Wine all of them do), so each uses its own application id,
// folder and keys, and sets the current language itself before relying on it.
#include "ExportTestSupport.h"

#include <algorithm>

namespace {

using namespace export_test;
namespace fs = std::filesystem;

using Exports = CExportTest;

// `found` is the local path of `file`.
void expectFile(const Text& found, const fs::path& file)
{
    ASSERT_TRUE(found) << utf8(file.u16string());
    EXPECT_TRUE(fs::path(*found).is_absolute()) << utf8(*found) << " is no local path";
    std::error_code error;
    EXPECT_TRUE(fs::equivalent(fs::path(*found), file, error)) << utf8(*found);
}

// Rejected tags (parsing has its table in LanguageIdTest; here only that the export applies it)
// and folders change nothing; a tag is spelled as the tables do.
TEST_F(Exports, RejectedTagsAndFoldersChangeNothing)
{
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    for (const char16_t* rejected : {u"en", u"", u"de-XX", static_cast<const char16_t*>(nullptr)}) {
        EXPECT_EQ(QOR_LANG2_setCurrentLanguage(reinterpret_cast<const QOR_LANG2_CHAR*>(rejected)), 20);
        EXPECT_EQ(currentLanguage(), u"de-DE") << "a rejected tag changes nothing";
    }
    EXPECT_EQ(setLanguage(u"fra--fr"), 0);
    EXPECT_EQ(currentLanguage(), u"fr-FR");

    writeLanguageFile(m_folder, m_app, u"de-DE");
    for (const char16_t* bad : {u"not a uri", u"file:///%zz/", u"C:\\Lang\\", u""})
        EXPECT_EQ(QOR_LANG2_addEx(w(bad), w(m_app)), -1) << utf8(bad);
    EXPECT_EQ(QOR_LANG2_addEx(nullptr, w(m_app)), -1);
    EXPECT_EQ(QOR_LANG2_addEx(w(folderUri(m_folder)), nullptr), -1);
    EXPECT_EQ(QOR_LANG2_add(nullptr, nullptr, w(m_app)), -1);
    EXPECT_EQ(QOR_LANG2_add(w(m_folder.u16string()), nullptr, nullptr), -1);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0) << "a failed registration registers nothing";
    ASSERT_EQ(QOR_LANG2_addEx(w(folderUri(m_folder)), w(m_app)), 0);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 1);
}

TEST_F(Exports, LoadedTextsAnswerAndEverythingElseGetsACopyOfTheDefault)
{
    // Japanese (BMP), a character outside the BMP (a surrogate pair) and Latin-1 letters. Unpaired
    // surrogates are no characters, but Windows strings may hold them: what a host or a file gives
    // comes back unit for unit. Keys compare exactly.
    const std::u16string key = m_app + u".メニュー", missing = m_app + u".未定義", unpaired = u"a\xDC00z\xD800";
    const std::u16string text = u"ファイルを開く… \U0001F310 äöü", emoji = u"既定の文字列 \U0001F600";
    writeLanguageFile(m_folder, m_app, u"ja-JP", {{key, text}, {m_app + u".unpaired", unpaired}});
    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(setLanguage(u"ja-JP"), 0);
    const std::u16string rows[][3] = {{key, u"Open file", text},          {m_app + u".unpaired", u"d", unpaired},
                                      {m_app + u".UNPAIRED", u"d", u"d"}, {missing, emoji, emoji},
                                      {missing, unpaired, unpaired},      {missing, u"", u""}};
    for (const auto& [asked, defaultText, answer] : rows)
        EXPECT_EQ(localString(asked, defaultText), answer) << utf8(asked);

    const std::u16string defaultText = u"Not translated";
    QOR_LANG2_CHAR* copy = QOR_LANG2_getLocalString(w(missing), w(defaultText));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, w(defaultText)) << "the caller's default must come back as a buffer of its own";
    EXPECT_EQ(take(copy), defaultText);
    EXPECT_EQ(take(QOR_LANG2_getLocalString(w(missing), nullptr)), u"") << "a null default reads as the empty text";
    EXPECT_EQ(take(QOR_LANG2_getLocalString(nullptr, w(defaultText))), defaultText);
}

// Indices outside the list, unknown and null ids answer null or 0; a missing folder is no error
// and, while its list is empty, is looked for again.
TEST_F(Exports, LanguagesAreListedInFolderOrderWithTheirTagsFromTheFiles)
{
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(nullptr), 0);
    EXPECT_FALSE(FileHandle(QOR_LANG2_getLanguageFile(nullptr, 0)));
    const fs::path later = m_folder / "later";
    ASSERT_EQ(addFolder(later, m_app), 0);
    EXPECT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 0);
    EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), 0)), std::nullopt);
    fs::create_directory(later);
    writeLanguageFile(later, m_app, u"fr-FR");
    writeLanguageFile(later, m_app, u"de-DE");
    // The tag comes from the file, not from its name, and is spelled as the tables do.
    writeLanguageFile(later / (m_app + u"-x.qorlang"), languageWriter(u"JA-jp", m_app));

    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 3);
    const Text expected[] = {std::nullopt, u"de-DE", u"fr-FR", u"ja-JP", std::nullopt};
    for (int32_t index : {INT32_MIN, -1, 0, 1, 2, 3}) {
        const Text& tag = expected[std::clamp(index + 1, 0, 4)];
        EXPECT_EQ(take(QOR_LANG2_getLanguage(w(m_app), index)), tag) << index;
        FileHandle file = languageFile(m_app, index);
        EXPECT_EQ(file ? take(QOR_LANG2_FILE_getLanguageID(file.get())) : std::nullopt, tag) << index;
    }
}

TEST_F(Exports, FileAccessorsReportEveryItemAndEveryHandleKeepsItsFile)
{
    qor_lang::CLanguageFileWriter full;
    full.setLanguage(u"ja-JP", u"日本語", u"日本");
    full.setApplication(m_app, u"second string");
    full.setComment(u"翻訳メモ \U0001F310");
    full.addExtra(u"QOR_LANG_REVIEWER", u"someone else");
    full.setAuthor(u"山田 太郎");
    writeLanguageFile(m_folder / (m_app + u"-1.qorlang"), full);

    // Absent items (no tag, counts of 0) read as empty strings, never as null.
    qor_lang::CLanguageFileWriter bare;
    bare.setLanguage(std::nullopt, std::nullopt, u"");
    writeLanguageFile(m_folder / (m_app + u"-2.qorlang"), bare);

    ASSERT_EQ(addFolder(m_folder, m_app), 0);
    ASSERT_EQ(QOR_LANG2_getLanguageCount(w(m_app)), 2);

    using Accessor = QOR_LANG2_CHAR* (*)(QOR_LANG2_FILE_HANDLE);
    const std::pair<const char*, Accessor> accessors[] = {
        {"LanguageID", QOR_LANG2_FILE_getLanguageID},   {"AppID", QOR_LANG2_FILE_getAppID},
        {"Author", QOR_LANG2_FILE_getAuthor},           {"Comment", QOR_LANG2_FILE_getComment},
        {"EnglishName", QOR_LANG2_FILE_getEnglishName}, {"EnglishSubName", QOR_LANG2_FILE_getEnglishSubName},
        {"NativeName", QOR_LANG2_FILE_getNativeName},   {"NativeSubName", QOR_LANG2_FILE_getNativeSubName}};
    // English names come from the code tables, whatever the file calls its language.
    const std::u16string expected[2][8] = {
        {u"ja-JP", m_app, u"山田 太郎", u"翻訳メモ \U0001F310", u"Japanese", u"Japan", u"日本語", u"日本"},
        {u"", u"", u"", u"", u"", u"", u"", u""}};
    for (int32_t index = 0; index < 2; ++index) {
        FileHandle file = languageFile(m_app, index);
        ASSERT_TRUE(file);
        for (size_t a = 0; a < 8; ++a)
            EXPECT_EQ(take(accessors[a].second(file.get())), expected[index][a])
                << "file " << index << ", " << accessors[a].first;
    }

    for (const auto& [name, accessor] : accessors)
        EXPECT_EQ(accessor(nullptr), nullptr) << name << " with a null handle";
    QOR_LANG2_freeQorLangFile(nullptr);

    FileHandle first = languageFile(m_app, 0), second = languageFile(m_app, 0);
    EXPECT_NE(first.get(), second.get()) << "every call makes a new handle";
    first.reset();
    EXPECT_EQ(take(QOR_LANG2_FILE_getAuthor(second.get())), u"山田 太郎");
}

TEST_F(Exports, LocalizedFilesAreFoundAsLocalPathsForTheCurrentLanguageOrEnglish)
{
    const fs::path folder = m_folder / u"ヘルプ";
    fs::create_directory(folder);
    writeBytes(folder / "help_de-DE_v2.pdf", "x");
    writeBytes(folder / "help_en-US_v2.pdf", "x");
    fs::create_directory(folder / "help_fr-FR_v2.pdf");
    const std::u16string uri = folderUri(folder), prefix = u"help_", infix = u"_v2", suffix = u".pdf";
    const auto find = [&](const std::u16string& in, const std::u16string& end) {
        return take(QOR_LANG2_findLocalizedFile(w(in), w(prefix), w(infix), w(end)));
    };
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    expectFile(find(uri, suffix), folder / "help_de-DE_v2.pdf");
    expectFile(find(uri, u".p?f"), folder / "help_de-DE_v2.pdf"); // wildcards are the enumeration's
    ASSERT_EQ(setLanguage(u"fr-FR"), 0);
    expectFile(find(uri, suffix), folder / "help_en-US_v2.pdf"); // a folder is no match

    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(nullptr, w(prefix), w(infix), w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), nullptr, w(infix), w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), w(prefix), nullptr, w(suffix))), std::nullopt);
    EXPECT_EQ(take(QOR_LANG2_findLocalizedFile(w(uri), w(prefix), w(infix), nullptr)), std::nullopt);
    EXPECT_EQ(find(u"no uri", suffix), std::nullopt);
    EXPECT_EQ(find(folderUri(m_folder / "missing"), suffix), std::nullopt);
    fs::remove(folder / "help_en-US_v2.pdf");
    EXPECT_EQ(find(uri, suffix), std::nullopt);
}

// Folder names, application ids (so file names) and keys in scripts whose UTF-8 takes two, three
// (one starting with 0xE0) and four bytes, and with combining marks, registered by path and by
// URI: every one lists its languages, loads its texts and finds its files.
TEST_F(Exports, FoldersFilesAndIdsInAnyScript)
{
    for (const std::u16string script : {u"café Ελληνικά", u"हिन्दी", u"smile 😀", u"Zoe\u0308 e\u0301"}) {
        const fs::path folder = m_folder / script;
        fs::create_directory(folder);
        writeBytes(folder / (script + u"_fr-FR.txt"), "x");
        for (const std::u16string& id : {m_app + u".path." + script, m_app + u".uri." + script}) {
            SCOPED_TRACE(utf8(id));
            for (const char16_t* tag : {u"de-DE", u"fr-FR"})
                writeLanguageFile(folder, id, tag, {{id + u".greeting", std::u16string(tag) + u" " + script}});
            EXPECT_EQ(id.find(u".uri.") == std::u16string::npos ? addFolder(folder, id)
                                                                : QOR_LANG2_addEx(w(folderUri(folder)), w(id)),
                      0);
            ASSERT_EQ(setLanguage(u"fr-FR"), 0);
            EXPECT_EQ(QOR_LANG2_getLanguageCount(w(id)), 2);
            EXPECT_EQ(take(QOR_LANG2_getLanguage(w(id), 0)), u"de-DE");
            EXPECT_EQ(take(QOR_LANG2_FILE_getAppID(languageFile(id, 1).get())), id);
            EXPECT_EQ(localString(id + u".greeting", u"none"), u"fr-FR " + script);
        }
        expectFile(take(QOR_LANG2_findLocalizedFile(w(folderUri(folder)), w(script + u"_"), w(u""), w(u".txt"))),
                   folder / (script + u"_fr-FR.txt"));
    }
}

} // namespace
