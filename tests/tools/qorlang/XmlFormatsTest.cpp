// XLIFF and TS as Qt's lconvert writes them (the forms a PO catalogue takes on its way through
// translation platforms), XLIFF 2.0, and the writers read back.
#include "CatalogueTestSupport.h"

using namespace qorlang;
using namespace qorlang_test;

TEST(XmlFormats, TsFollowsLconvertConventions)
{
    const Catalogue c = readTs("t.ts", R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
    <extra-po-header-last_translator>Ivan</extra-po-header-last_translator>
<context>
    <name></name>
    <message><source>Open</source><comment>menu</comment><translation>Открыть</translation></message>
    <message><source>Plain</source><translation>Просто</translation></message>
    <message numerus="yes"><source>a file</source><translation>
            <numerusform>%d файл</numerusform>
            <numerusform>%d файла</numerusform>
        </translation><extra-po-flags>c-format</extra-po-flags></message>
    <message><source>Fuzzy</source><translation type="unfinished">Нечётко</translation></message>
    <message><source>Old</source><translation type="vanished">Старое</translation></message>
    <message><source><byte value="xd"/>
line<byte value="x7"/>
</source><translation> </translation></message>
</context>
<context>
    <name>MainWindow</name>
    <message><source>Open</source><comment>verb</comment><translation>Открывать</translation></message>
    <message><source>Close</source><translation>Закрыть</translation></message>
</context>
</TS>
)");
    EXPECT_EQ(c.language, u"ru_RU");
    EXPECT_EQ(c.author, u"Ivan");
    EXPECT_EQ(pairsOf(c), (Pairs{
                              {u"menu\x04Open", u"Открыть"},
                              {u"Plain", u"Просто"},
                              {u"a file", u"%d файл"},
                              {u"Fuzzy", u"(fuzzy) Нечётко"},
                              {u"Old", u"(obsolete)"},
                              {u"\r\nline\a\n", u" "},
                              {u"MainWindow|verb\x04Open", u"Открывать"},
                              {u"MainWindow|\x04"
                               u"Close",
                               u"Закрыть"},
                          }));
    EXPECT_TRUE(c.entries[2].plural);
}

TEST(XmlFormats, XliffFollowsLconvertConventions)
{
    // Lines end in LF, so the CR inside the first source is the text's own.
    const Catalogue c = readXliff(
        "t.xlf",
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\" "
        "xmlns:trolltech=\"urn:trolltech:names:ts:document:1.0\">\n"
        "  <trolltech:po-header-language>ru</trolltech:po-header-language>\n"
        "  <file original=\"\" datatype=\"plaintext\" source-language=\"en\" target-language=\"ru-RU\"><body>\n"
        "    <trans-unit id=\"_msg1\"><source xml:space=\"preserve\">\r\nbotched\r\n</source>"
        "<target xml:space=\"preserve\"><ph id=\"ph1\" ctype=\"x-ch-bel\">\\a</ph>сбой <g id=\"1\">a</g> <g "
        "id=\"2\">b</g></target></trans-unit>\n"
        "    <trans-unit id=\"_msg2\"><source>Open</source><target>Открыть</target>\n"
        "      <context-group><context context-type=\"x-gettext-msgctxt\">menu</context></context-group></trans-unit>\n"
        "    <group restype=\"x-gettext-plurals\">\n"
        "      <context-group><context context-type=\"x-gettext-msgctxt\">files</context></context-group>\n"
        "      <trolltech:po-flags>c-format</trolltech:po-flags>\n"
        "      <trans-unit id=\"_msg3[0]\"><source>%&lt;PRIu8&gt; file</source><target>%&lt;PRIu8&gt; "
        "файл</target></trans-unit>\n"
        "      <trans-unit id=\"_msg3[1]\"><source>%&lt;PRIu8&gt; files</source><target>%&lt;PRIu8&gt; "
        "файла</target></trans-unit>\n"
        "    </group>\n"
        "    <trans-unit id=\"_msg4\"><source>Fuzzy</source><target "
        "state=\"needs-review-translation\">Нечётко</target></trans-unit>\n"
        "    <trans-unit id=\"_msg5\" translate=\"no\"><source>Old</source><target>Старое</target></trans-unit>\n"
        "    <trans-unit id=\"_msg6\"><source>Untranslated</source><target></target></trans-unit>\n"
        "    <group restype=\"x-trolltech-linguist-context\" resname=\"MainWindow\">\n"
        "      <trans-unit id=\"_msg7\"><source>Close</source><target>Закрыть</target></trans-unit>\n"
        "    </group>\n"
        "    <trans-unit id=\"k\" resname=\"app.title\"><source>Title</source><target>Заголовок</target></trans-unit>\n"
        "  </body></file>\n</xliff>\n");
    EXPECT_EQ(c.language, u"ru-RU"); // the file's target language before lconvert's copy of the PO header
    EXPECT_EQ(pairsOf(c), (Pairs{
                              {u"\r\nbotched\r\n", u"\aсбой a b"},
                              {u"menu\x04Open", u"Открыть"},
                              {u"files\x04%u file", u"%u файл"},
                              {u"Fuzzy", u"(fuzzy) Нечётко"},
                              {u"Old", u"(obsolete)"},
                              {u"Untranslated", u""},
                              {u"MainWindow|\x04"
                               u"Close",
                               u"Закрыть"},
                              {u"app.title", u"Заголовок"},
                          }));
    EXPECT_EQ(c.entries[0].line, 5);
    EXPECT_EQ(c.entries[7].line, 22);
}

TEST(XmlFormats, Xliff2UnitsAndCrLfFiles)
{
    const Catalogue c = readXliff(
        "t.xlf",
        "<?xml version=\"1.0\"?>\r\n"
        "<xliff xmlns=\"urn:oasis:names:tc:xliff:document:2.0\" version=\"2.0\" srcLang=\"en\" trgLang=\"de-DE\">\r\n"
        " <file id=\"f1\"><group id=\"g\">\r\n"
        "  <unit id=\"1\" name=\"menu.open\"><segment "
        "state=\"final\"><source>Open</source><target>Öffnen\r\nnow</target></segment></unit>\r\n"
        "  <unit id=\"2\"><segment><source>Two </source><target>Zwei </target></segment>"
        "<ignorable><source> </source><target> </target></ignorable>"
        "<segment state=\"initial\"><source>parts</source><target>Teile</target></segment></unit>\r\n"
        " </group></file>\r\n</xliff>\r\n");
    EXPECT_EQ(c.language, u"de-DE");
    EXPECT_EQ(pairsOf(c), (Pairs{{u"menu.open", u"Öffnen\nnow"}, {u"Two  parts", u"(fuzzy) Zwei  Teile"}}));
}

TEST(XmlFormats, WrittenFilesReadBack)
{
    Catalogue c = describedCatalogue("w");
    c.entries = {
        {u"plain", u"einfach"},
        {u"Qt|verb\x04Open", u"Öffnen"},
        {u"Qt|\x04"
         u"Close",
         u"Schließen"},
        {u"|odd\x04x", u"y"},
        {u"ctx\x04x", u"<b>&amp;</b> \"q\""},
        {u"\x04no context name", u"leer"},
        {u"  spaces  ", u"\n"},
        {u"\abell\r\n", u"\x1b[1m\r"},
    };
    for (Format format : {Format::Ts, Format::Xliff}) {
        SCOPED_TRACE(format == Format::Ts ? "TS" : "XLIFF");
        const std::string text = writeCatalogue(c, format);
        const Catalogue back = format == Format::Ts ? readTs("w.ts", text) : readXliff("w.xlf", text);
        // TS groups messages by Qt context name, so compare without the order.
        EXPECT_EQ(sorted(pairsOf(back)), sorted(pairsOf(c))) << text;
        expectSameDescription(back, c);
    }
}

TEST(XmlFormats, ErrorsNameFileAndLine)
{
    const std::string broken = errorOf([] { readTs("a.ts", "<TS>\n<context>\n</TS>"); });
    EXPECT_EQ(broken.rfind("a.ts:2: not well-formed XML", 0), 0u) << broken;
    EXPECT_EQ(errorOf([] { readTs("a.ts", "<xliff/>"); }), "a.ts:1: not a Qt TS document (no <TS> root)");
    EXPECT_EQ(errorOf([] { readXliff("a.xlf", "<TS/>"); }), "a.xlf:1: not an XLIFF document (no <xliff> root)");
}
