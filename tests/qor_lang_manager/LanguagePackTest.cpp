#include "LanguageTestSupport.h"

#include "qor_lang_manager/CLanguagePack.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using namespace lang_test;
using qor_lang::CLanguagePack;
using Tags = std::vector<std::u16string>;
using Tables = std::vector<kore::P<kore::CTextTable>>;

struct LanguagePackTest : ::testing::Test {
    kore_test::CTempFolder folder;
    CLocalizerGuard localizer;
    CLogCapture log{CLanguagePack::kLogModule};

    kore::P<CLanguagePack> pack(const char* appId = "A") { return kore::make<CLanguagePack>(folder.uri(), appId); }
    void write(const std::string& name, const char16_t* tag, const qor_lang::CountedString& appId = u"A",
               const Strings& strings = {})
    {
        writeLanguageFile(folder.path(name), languageWriter(tag, appId, strings));
    }
    static Tags tags(CLanguagePack& p)
    {
        Tags out;
        for (int32_t i = 0; i < p.count(); ++i)
            out.push_back(p.file(i)->getLanguage().getTag());
        return out;
    }
};

TEST_F(LanguagePackTest, ListsFilesStartingWithItsIdInFolderOrder)
{
    // The pattern is the id and then anything; a match that names another application in its
    // "apid" chunk is passed over, one without the chunk or naming this one in other letter case stays.
    const std::tuple<const char*, const char16_t*, qor_lang::CountedString> files[] = {
        {"A-fr-FR.qorlang", u"fr-FR", u"A"},          {"A-en-US.qorlang", u"en-US", u"A"},
        {"AB-it-IT.qorlang", u"it-IT", u"AB"},        {"A-tools-ja-JP.qorlang", u"ja-JP", u"A-tools"},
        {"AC-ko-KR.qorlang", u"ko-KR", std::nullopt}, {"A-nl-NL.qorlang", u"nl-NL", u"a"},
        {"A-de-DE.qorlang", u"de-DE", u"A"},          {"B-es-ES.qorlang", u"es-ES", u"B"}};
    for (const auto& [name, tag, appId] : files)
        write(name, tag, appId);
    write("A-pt-PT.txt", u"pt-PT");
    folder.makeFolder("A-sub.qorlang");

    const auto p = pack();
    EXPECT_EQ(tags(*p), (Tags{u"de-DE", u"en-US", u"fr-FR", u"nl-NL", u"ko-KR"}));
    EXPECT_EQ(utf8(p->file(0)->getSource()->getName()), "A-de-DE.qorlang");
    EXPECT_EQ(tags(*pack("B")), (Tags{u"es-ES"}));
    EXPECT_EQ(tags(*pack("AB")), (Tags{u"it-IT"}));
    EXPECT_EQ(tags(*pack("A-tools")), (Tags{u"ja-JP"}));
    EXPECT_TRUE(log.records().empty());
}

TEST_F(LanguagePackTest, SetLanguageReadsTheFileOfItsName)
{
    EXPECT_EQ(utf8(CLanguagePack::fileName("A", "de-DE")), "A-de-DE.qorlang");
    EXPECT_EQ(utf8(CLanguagePack::fileName("A", "")), "A-.qorlang");
    EXPECT_EQ(utf8(CLanguagePack::fileName("A-", "de-DE")), "A-de-DE.qorlang");
    // One pass: "A---" keeps a "--", so the name still starts with the id "A--" that the scan uses.
    EXPECT_EQ(utf8(CLanguagePack::fileName("A--", "de-DE")), "A--de-DE.qorlang");

    write("A-.qorlang", u"", u"A", {{u"k", u"no tag"}});
    Tables texts;
    EXPECT_EQ(pack()->setLanguage(u"", texts), 1) << "the default id has the empty tag";
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(contentOf(*texts[0]), (Texts{{u"k", u"no tag"}}));
    EXPECT_EQ(pack()->setLanguage(u"fr-FR", texts), 0);
    EXPECT_EQ(texts.size(), 1u) << "no file, nothing added";
    EXPECT_TRUE(log.records().empty()) << "a missing file is no error";

    write("A--de-DE.qorlang", u"de-DE", u"A--", {{u"k", u"double"}});
    const auto dashed = pack("A--");
    EXPECT_EQ(dashed->count(), 1);
    EXPECT_EQ(dashed->setLanguage(u"de-DE", texts), 1) << "a listed file can be set";
    EXPECT_EQ(contentOf(*texts.back()), (Texts{{u"k", u"double"}}));
}

TEST_F(LanguagePackTest, BrokenFilesAreReportedAndSkipped)
{
    write("A-de-DE.qorlang", u"de-DE", u"A", {{u"k", u"Deutsch"}});
    const Bytes good = written(languageWriter(u"it-IT", std::nullopt, {{u"k", u"Italiano"}}));
    const Bytes lang = langChunk(u"pt-BR");
    Bytes badMagic = good;
    badMagic[7] = 'X';
    writeBytes(folder, "A-bad-magic.qorlang", badMagic);
    writeBytes(folder, "A-empty.qorlang", {});
    writeBytes(folder, "A-cut-header.qorlang", Bytes(good.begin(), good.begin() + 12));
    writeBytes(folder, "A-cut-lang.qorlang", Bytes(good.begin(), good.begin() + 16 + 12 + 5));
    writeBytes(folder, "A-huge-count.qorlang", container(lang + chunk("xdid", u32(0xFFFFFFFF))));
    writeBytes(folder, "A-huge-string.qorlang", container(chunk("lang", u32(0xFFFFFFFF))));
    // Constructs (the walk just ends at the wrapping size): it has no strings, which is no damage.
    writeBytes(folder, "A-pt-BR.qorlang", container(lang + chunk("junk", ~0ull - 11, Bytes{})));
    writeBytes(folder, "A-it-IT.qorlang", Bytes(good.begin(), good.end() - 3));

    const auto p = pack();
    EXPECT_EQ(tags(*p), (Tags{u"de-DE", u"it-IT", u"pt-BR"}));
    std::string reported;
    for (const std::string& record : log.records())
        reported += record.rfind("3:error while loading '", 0) == 0 ? record.substr(23, record.size() - 32) + " " : "";
    EXPECT_EQ(reported, "A-bad-magic A-cut-header A-cut-lang A-empty A-huge-count A-huge-string ");
    log.records().clear();

    // Making a language current reads its file again: see the next test for one cut short.
    Tables texts;
    EXPECT_EQ(p->setLanguage(u"pt-BR", texts), 1);
    EXPECT_EQ(contentOf(*texts.at(0)), Texts());
    EXPECT_TRUE(log.records().empty());
}

// A file cut short loses strings: making its language current is an error whose second record
// tells a translator where the file breaks off.
TEST_F(LanguagePackTest, FilesCutShortAreDamagedAndTheCauseIsReported)
{
    const Bytes head = langChunk(u"de-DE");
    const Bytes entry = u32(0) + counted(u"k") + counted(u"text") + u32(0) + u32(0);
    const Bytes whole = container(head + chunk("STMP", chunk("data", u32(2) + entry + entry)));
    const size_t stmpAt = 16 + head.size();
    const std::string data = "chunk 'data' at offset " + std::to_string(stmpAt + 12) + ": ";
    // Chunk sizes that fit, but the second entry's text count asks for more than is left.
    Bytes longText = container(head + chunk("STMP", chunk("data", u32(2) + entry + u32(0) + counted(u"k") + u32(40))));
    const std::pair<Bytes, std::string> cases[] = {
        {Bytes(whole.begin(), whole.begin() + long(stmpAt + 7)), // cut in the STMP header
         "the container header gives " + std::to_string(whole.size() - 16) + " bytes of chunks, but the file holds " +
             std::to_string(stmpAt + 7 - 16) + " after the header"},
        {container(head + Bytes(whole.begin() + long(stmpAt), whole.begin() + long(stmpAt + 7))), // length fixed
         "offset " + std::to_string(stmpAt) + ": the file ends inside a chunk header (7 of its 12 bytes)"},
        {container(head + chunk("STMP", chunk("data", 500, u32(0)))),
         data + "its header gives 500 bytes of data, but the file ends after 4"},
        {longText, data + "entry 2 of 2 needs 80 bytes at offset " + std::to_string(longText.size()) +
                       ", but the file ends after 0"},
    };
    for (const auto& [file, cause] : cases) {
        SCOPED_TRACE(cause);
        writeBytes(folder, "A-de-DE.qorlang", file);
        log.records().clear();
        Tables texts;
        EXPECT_EQ(pack()->setLanguage(u"de-DE", texts), 0);
        EXPECT_TRUE(texts.empty());
        EXPECT_EQ(log.records(), (std::vector<std::string>{"3:error while loading 'A-de-DE.qorlang'",
                                                           "3:'A-de-DE.qorlang': " + cause}));
    }
}

} // namespace
