// Plural entries through every reader, the language file and every writer; i18next's suffixes onto
// a language's forms; what a Qt TS context becomes in the keys.
#include "CatalogueTestSupport.h"
#include "Unicode.h"

#include "chunk_file/CMemoryStream.h"
#include "chunk_file/TChunkRef.h"
#include "qor_lang_manager/CLanguageFile.h"

using namespace qorlang;
using namespace qorlang_test;

namespace {

const char kRule[] =
    "nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);";
const std::vector<std::u16string> kForms{u"%d файл", u"%d файла", u"%d файлов"};

const std::string kPo =
    std::string("msgid \"\"\nmsgstr \"\"\n\"Language: ru_RU\\n\"\n\"Plural-Forms: ") + kRule +
    "\\n\"\n\n#, c-format\nmsgid \"%d file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"%d файл\"\n"
    "msgstr[1] \"%d файла\"\nmsgstr[2] \"%d файлов\"\n\nmsgctxt \"menu\"\nmsgid \"Open\"\nmsgstr \"Открыть\"\n";

// What lconvert (Qt 5) makes of kPo.
const char kTs[] = R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
    <extra-po-header-language>ru_RU</extra-po-header-language>
    <extra-po-headers>Language,Content-Type,Plural-Forms</extra-po-headers>
<context>
    <name></name>
    <message numerus="yes">
        <source>%d file</source>
        <translation>
            <numerusform>%d файл</numerusform>
            <numerusform>%d файла</numerusform>
            <numerusform>%d файлов</numerusform>
        </translation>
        <extra-po-flags>c-format</extra-po-flags>
        <extra-po-msgid_plural>%d files</extra-po-msgid_plural>
    </message>
    <message>
        <source>Open</source>
        <comment>menu</comment>
        <translation>Открыть</translation>
    </message>
</context>
</TS>
)";

const char kXliff[] = R"(<?xml version="1.0" encoding="utf-8"?>
<xliff version="1.2" xmlns="urn:oasis:names:tc:xliff:document:1.2" xmlns:trolltech="urn:trolltech:names:ts:document:1.0">
  <trolltech:po-header-language>ru_RU</trolltech:po-header-language>
  <file original="" datatype="plaintext" source-language="en" target-language="ru-RU"><body>
    <group restype="x-gettext-plurals">
      <trolltech:po-flags>c-format</trolltech:po-flags>
      <trans-unit id="_msg1[0]" approved="yes">
        <source xml:space="preserve">%d file</source>
        <target xml:space="preserve">%d файл</target>
      </trans-unit>
      <trans-unit id="_msg1[1]" approved="yes">
        <source xml:space="preserve">%d files</source>
        <target xml:space="preserve">%d файла</target>
      </trans-unit>
      <trans-unit id="_msg1[2]" approved="yes">
        <source xml:space="preserve">%d files</source>
        <target xml:space="preserve">%d файлов</target>
      </trans-unit>
    </group>
    <trans-unit id="_msg2" approved="yes">
      <source xml:space="preserve">Open</source>
      <target xml:space="preserve">Открыть</target>
      <context-group><context context-type="x-gettext-msgctxt">menu</context></context-group>
    </trans-unit>
  </body></file>
</xliff>
)";

const char kJson[] = R"({"%d file_one": "%d файл", "%d file_few": "%d файла", "%d file_many": "%d файлов",
  "%d file_other": "%d файла", "menu\u0004Open": "Открыть"})";

Catalogue readJsonAs(const std::string& bytes, std::u16string_view tag)
{
    Catalogue c = readJson("ru.json", bytes);
    joinI18nextPlurals(c, tag);
    return c;
}

// Every entry with its forms: "key = text" or "key = [f0|f1|...] / plural source".
std::vector<std::u16string> described(const Catalogue& c)
{
    std::vector<std::u16string> out;
    for (const Entry& e : c.entries) {
        std::u16string line = e.key + u" = ";
        if (e.forms.empty()) {
            line += e.text;
        } else {
            line += u"[";
            for (const std::u16string& form : e.forms)
                line += form + (&form == &e.forms.back() ? u"]" : u"|");
            line += u" / " + e.pluralSource;
        }
        out.push_back(line);
    }
    std::sort(out.begin(), out.end());
    return out;
}

const std::vector<std::u16string> kExpected{u"%d file = [%d файл|%d файла|%d файлов] / %d files",
                                            u"menu\x04Open = Открыть"};

} // namespace

TEST(PluralForms, EveryReaderKeepsEveryForm)
{
    const std::pair<const char*, Catalogue> read[] = {
        {"po", readPo("ru.po", kPo)},
        {"ts", readTs("ru.ts", kTs)},
        {"xlf", readXliff("ru.xlf", kXliff)},
        {"xlf 2.0", readXliff("ru.xlf", R"(<xliff version="2.0" srcLang="en" trgLang="ru-RU"><file id="f">
  <group id="g" type="x-gettext:plurals">
    <unit id="1"><segment><source>%d file</source><target>%d файл</target></segment></unit>
    <unit id="2"><segment><source>%d files</source><target>%d файла</target></segment></unit>
    <unit id="3"><segment><source>%d files</source><target>%d файлов</target></segment></unit>
  </group>
  <unit id="4" name="menu&#4;Open"><segment><source>Open</source><target>Открыть</target></segment></unit>
</file></xliff>)")},
    };
    for (const auto& [name, c] : read) {
        SCOPED_TRACE(name);
        EXPECT_EQ(described(c), kExpected);
        EXPECT_TRUE(c.entries[0].plural);
        EXPECT_EQ(c.entries[0].text, kForms[0]);
    }
    EXPECT_EQ(read[0].second.pluralForms, decodeUtf8(kRule));
    // i18next has no plural source; the Russian "other" (fractions only) stays a key of its own.
    EXPECT_EQ(described(readJsonAs(kJson, u"ru-RU")),
              (std::vector<std::u16string>{u"%d file = [%d файл|%d файла|%d файлов] / %d file",
                                           u"%d file_other = %d файла", u"menu\x04Open = Открыть"}));
}

TEST(PluralForms, LanguageFileHoldsBothEntriesAndEveryWriterGivesThemBack)
{
    Catalogue c = readPo("ru.po", kPo);
    c.appId = u"app";
    const std::vector<uint8_t> bytes = compileLanguageFile(c, {});
    // tr finds the first form; the forms entry holds all of them and the plural source.
    const auto answer = answersOf(bytes);
    EXPECT_EQ(answer(u"%d file"), kForms[0]);
    EXPECT_EQ(answer(u"%d file\x05"), kForms[0] + u'\0' + kForms[1] + u'\0' + kForms[2]);
    std::u16string third;
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream(bytes));
    qor_lang::CLanguageFile::readEntries(
        *stream, nullptr, [&](const std::u16string& key, const std::u16string&, const std::u16string& t) {
            if (key == u"%d file\x05")
                third = t;
        });
    EXPECT_EQ(third, u"%d files");

    const Catalogue back = readQorlang("app-ru-RU.qorlang", bytes);
    EXPECT_EQ(described(back), kExpected);
    EXPECT_EQ(back.pluralForms, c.pluralForms);
    for (Format format : {Format::Po, Format::Ts, Format::Xliff, Format::Json}) {
        const std::string text = writeCatalogue(back, format);
        SCOPED_TRACE(text);
        Catalogue again = format == Format::Po      ? readPo("x.po", text)
                          : format == Format::Ts    ? readTs("x.ts", text)
                          : format == Format::Xliff ? readXliff("x.xlf", text)
                                                    : readJsonAs(text, u"ru-RU");
        if (format == Format::Json)
            again.entries[0].pluralSource = u"%d files"; // i18next keeps none
        EXPECT_EQ(described(again), kExpected);
        EXPECT_EQ(again.pluralForms, c.pluralForms);
    }
}

TEST(PluralForms, I18nextSuffixesFollowTheLanguagesCategories)
{
    struct Case {
        const char16_t* tag;
        std::string json;
        std::vector<std::u16string> expected;
    };
    const Case cases[] = {
        // Croatian has Russian's rule but calls its last form "other".
        {u"hr-HR",
         R"({"n_one": "1", "n_few": "2", "n_many": "M", "n_other": "5"})",
         {u"n = [1|2|5] / n", u"n_many = M"}},
        {u"ar-EG",
         R"({"n_other": "o", "n_many": "m", "n_few": "f", "n_two": "t", "n_one": "1", "n_zero": "0"})",
         {u"n = [0|1|t|f|m|o] / n"}},
        {u"ja-JP", R"({"n_other": "件"})", {u"n = [件] / n"}},
        // A lone "_other" is a key where the language has more forms; a missing form is empty.
        {u"en-US",
         R"({"show_other": "x", "n_other": "files", "n_zero": "none"})",
         {u"n_other = files", u"n_zero = none", u"show_other = x"}},
        {u"ru-RU", R"({"n_many": "M", "n_one": "1", "n_zero": "0"})", {u"n = [1||M] / n", u"n_zero = 0"}},
        {u"xx-YY", R"({"n_one": "a", "n_other": "b"})", {u"n = [a|b] / n"}}, // unknown: English's forms
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.json);
        EXPECT_EQ(described(readJsonAs(c.json, c.tag)), c.expected);
    }
}

TEST(QtContext, NamesEnterTheKeysAsChosen)
{
    // The README's style (key-like sources under a grouping name), lupdate's output for
    // qor_lang2::tr("app.title", "My App") and tr("Open file"), and Qt's own texts with contexts.
    const char ts[] = R"(<TS version="2.1" language="ja_JP">
<context><name>MainWindow</name>
  <message><source>app.title</source><translation>題名</translation></message>
  <message><source>menu.quit</source><comment>short</comment><translation>終了</translation></message>
</context>
<context><name>qor_lang2</name>
  <message><source>app.title</source><comment>My App</comment><translation>アプリ</translation></message>
  <message><source>Open file</source><translation>開く</translation></message>
</context>
<context><name>Dialog</name>
  <message><source>Open</source><comment>verb</comment><translation>開ける</translation></message>
</context>
</TS>)";
    const std::vector<std::u16string> keep{u"Dialog|verb\x04Open",
                                           u"MainWindow|\x04"
                                           u"app.title",
                                           u"MainWindow|short\x04menu.quit",
                                           u"qor_lang2|My App\x04"
                                           u"app.title",
                                           u"qor_lang2|\x04Open file"};
    const std::vector<std::u16string> drop{u"Open file", u"app.title", u"app.title", u"short\x04menu.quit",
                                           u"verb\x04Open"};
    const std::vector<std::u16string> automatic{u"Dialog|verb\x04Open", u"Open file", u"app.title", u"app.title",
                                                u"short\x04menu.quit"};
    const std::pair<QtContext, std::vector<std::u16string>> cases[] = {
        {QtContext::Keep, keep}, {QtContext::Drop, drop}, {QtContext::Auto, automatic}};
    for (auto [mode, expected] : cases) {
        std::vector<std::u16string> keys;
        for (const Entry& e : readTs("ja.ts", ts, mode).entries)
            keys.push_back(e.key);
        std::sort(keys.begin(), keys.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(keys, expected) << int(mode);
    }
    // A TS file the tool wrote compiles to the keys it was written from.
    Catalogue kept = describedCatalogue("ja.ts");
    kept.entries = readTs("ja.ts", ts, QtContext::Keep).entries;
    EXPECT_EQ(pairsOf(readTs("again.ts", writeTs(kept))), pairsOf(kept));
    for (const auto& [source, key] :
         std::initializer_list<std::pair<std::u16string_view, bool>>{{u"app.title", true},
                                                                     {u"menu.file-open_2", true},
                                                                     {u"a.b.c", true},
                                                                     {u"title", false},
                                                                     {u"Open file", false},
                                                                     {u"e.g. this", false},
                                                                     {u"end.", false},
                                                                     {u".start", false},
                                                                     {u"a..b", false},
                                                                     {u"", false}})
        EXPECT_EQ(looksLikeKey(source), key) << encodeUtf8(source);
}
