#include "LanguageTestSupport.h"

#include "qor_lang_manager/CLanguagePack.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace lang_test;
using qor_lang::CLanguageFileWriter;
using qor_lang::CLanguagePack;
using qor_lang::LanguageId;

struct LanguagePackTest : ::testing::Test {
    kore_test::CTempFolder folder;
    CLocalizerGuard localizer;
    CLogCapture log{CLanguagePack::kLogModule};

    kore::P<CLanguagePack> pack(const char* appId = "A") { return kore::make<CLanguagePack>(folder.uri(), appId); }

    void writeLanguage(const std::string& name, const char16_t* languageTag,
                       const std::vector<std::pair<std::u16string, std::u16string>>& strings = {},
                       int fillers = 0)
    {
        CLanguageFileWriter writer;
        writer.setLanguage(languageTag, u"", u"");
        writer.setApplication(u"A");
        for (const auto& [key, text] : strings)
            writer.addString(key, text);
        for (int i = 0; i < fillers; ++i)
            writer.addString(u"filler." + std::u16string(1, char16_t(0x400 + i)), u"x");
        writeBytes(folder, name, written(writer));
    }

    static std::vector<std::u16string> tags(CLanguagePack& p)
    {
        std::vector<std::u16string> out;
        for (int32_t i = 0; i < p.count(); ++i)
            out.push_back(p.file(i)->getLanguage().getTag());
        return out;
    }
};

TEST_F(LanguagePackTest, ListsFilesStartingWithItsIdInFolderOrder)
{
    writeLanguage("A-fr-FR.qorlang", u"fr-FR");
    writeLanguage("A-en-US.qorlang", u"en-US");
    writeLanguage("AB-it-IT.qorlang", u"it-IT"); // the pattern is the id and then anything
    writeLanguage("A-de-DE.qorlang", u"de-DE");
    writeLanguage("B-es-ES.qorlang", u"es-ES");
    writeLanguage("A-pt-PT.txt", u"pt-PT");
    folder.makeFolder("A-sub.qorlang");

    const auto p = pack();
    EXPECT_EQ(tags(*p), (std::vector<std::u16string>{u"de-DE", u"en-US", u"fr-FR", u"it-IT"}));
    EXPECT_EQ(utf8(p->file(0)->getSource()->getName()), "A-de-DE.qorlang");
    EXPECT_EQ(tags(*pack("B")), (std::vector<std::u16string>{u"es-ES"}));
    EXPECT_TRUE(log.records().empty());
}

TEST_F(LanguagePackTest, SetLanguageLoadsTheFileOfItsNameOrLeavesTheLocalizer)
{
    EXPECT_EQ(utf8(CLanguagePack::fileName("A", "de-DE")), "A-de-DE.qorlang");
    EXPECT_EQ(utf8(CLanguagePack::fileName("A", "")), "A-.qorlang");
    EXPECT_EQ(utf8(CLanguagePack::fileName("A-", "de-DE")), "A-de-DE.qorlang");
    // One pass: "A---" keeps a "--", so the name still starts with the id "A--" that the scan uses.
    EXPECT_EQ(utf8(CLanguagePack::fileName("A--", "de-DE")), "A--de-DE.qorlang");

    writeLanguage("A-.qorlang", u"", {{u"k", u"no tag"}});
    kore::CStringLocalizer::instance()->setString("other", "kept");
    EXPECT_EQ(pack()->setLanguage(LanguageId()), 1) << "the default id has the empty tag";
    EXPECT_EQ(localized("k"), "no tag");
    EXPECT_EQ(localized("other"), "kept") << "the pack only sets strings";
    EXPECT_EQ(pack()->setLanguage(tag(u"fr-FR")), 0);
    EXPECT_EQ(localized("k"), "no tag");
    EXPECT_TRUE(log.records().empty()) << "a missing file is no error";

    writeLanguage("A--de-DE.qorlang", u"de-DE", {{u"k", u"double"}});
    const auto dashed = pack("A--");
    EXPECT_EQ(dashed->count(), 1);
    EXPECT_EQ(dashed->setLanguage(tag(u"de-DE")), 1) << "a listed file can be set";
    EXPECT_EQ(localized("k"), "double");
}

TEST_F(LanguagePackTest, OfTwoEntriesWithOneKeyTheOneVisitedLastWins)
{
    writeLanguage("A-de-DE.qorlang", u"de-DE", {{u"dup", u"first"}, {u"dup", u"second"}});
    writeLanguage("A-fr-FR.qorlang", u"fr-FR", {{u"dup", u"first"}, {u"dup", u"second"}}, 799);
    const auto p = pack();
    ASSERT_EQ(p->setLanguage(tag(u"de-DE")), 1);
    EXPECT_EQ(localized("dup"), "first") << "head insertion visits the later entry first";
    ASSERT_EQ(p->setLanguage(tag(u"fr-FR")), 1);
    EXPECT_EQ(localized("dup"), "second") << "one doubling after both turns the order round";
}

TEST_F(LanguagePackTest, BrokenFilesAreReportedAndSkipped)
{
    writeLanguage("A-de-DE.qorlang", u"de-DE", {{u"k", u"Deutsch"}});
    writeLanguage("A-en-US.qorlang", u"en-US", {{u"k", u"English"}});

    CLanguageFileWriter writer;
    writer.setLanguage(u"it-IT", u"italiano", u"");
    writer.addString(u"k", u"Italiano");
    const Bytes good = written(writer);
    const Bytes lang = langChunk(u"pt-BR");
    Bytes badMagic = good;
    badMagic[7] = 'X';
    writeBytes(folder, "A-bad-magic.qorlang", badMagic);
    writeBytes(folder, "A-empty.qorlang", {});
    writeBytes(folder, "A-cut-header.qorlang", Bytes(good.begin(), good.begin() + 12));
    writeBytes(folder, "A-cut-lang.qorlang", Bytes(good.begin(), good.begin() + 16 + 12 + 5));
    writeBytes(folder, "A-huge-count.qorlang", container(lang + chunk("xdid", u32(0xFFFFFFFF))));
    writeBytes(folder, "A-huge-string.qorlang", container(chunk("lang", u32(0xFFFFFFFF))));
    // Constructs (the walk just ends at the wrapping size) but its strings cannot be read.
    writeBytes(folder, "A-pt-BR.qorlang", container(lang + chunk("junk", ~0ull - 11, Bytes{})));
    writeBytes(folder, "A-it-IT.qorlang", Bytes(good.begin(), good.end() - 3));

    const auto p = pack();
    EXPECT_EQ(tags(*p), (std::vector<std::u16string>{u"de-DE", u"en-US", u"it-IT", u"pt-BR"}));
    EXPECT_EQ(log.records(), (std::vector<std::string>{
                                 "3:error while loading 'A-bad-magic.qorlang'",
                                 "3:error while loading 'A-cut-header.qorlang'",
                                 "3:error while loading 'A-cut-lang.qorlang'",
                                 "3:error while loading 'A-empty.qorlang'",
                                 "3:error while loading 'A-huge-count.qorlang'",
                                 "3:error while loading 'A-huge-string.qorlang'"}));
    log.clear();

    EXPECT_EQ(p->setLanguage(tag(u"it-IT")), 0);
    EXPECT_EQ(localized("k"), "-") << "a file failing midway sets nothing";
    EXPECT_EQ(log.records(), (std::vector<std::string>{"3:error while loading 'A-it-IT.qorlang'"}));
    EXPECT_EQ(p->setLanguage(tag(u"pt-BR")), 1) << "no STMP reached: an empty table";
    EXPECT_EQ(p->setLanguage(tag(u"en-US")), 1);
    EXPECT_EQ(localized("k"), "English");
    EXPECT_EQ(p->setLanguage(tag(u"de-DE")), 1);
    EXPECT_EQ(localized("k"), "Deutsch");
}

} // namespace
