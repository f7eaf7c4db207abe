// The C++ layer qor_lang2.hpp against the real library: every string and handle it is given goes
// back exactly once whatever moves happen in between (the sanitizer builds report a leak or a
// second free), text reaches the library as the UTF-16 the caller meant, and the key forms the
// layer builds are the ones the library reads. (tests/wrapper compiles the layer as C++17.)
#include "../PluralModels.h"
#include "ExportTestSupport.h"

#include "qor_lang2.hpp"

#include <functional>

namespace {

using namespace export_test;
using namespace std::string_literals;

// A Ukrainian catalogue (three forms by the CLDR rule) with plural and context entries.
struct WrapperExports : CExportTest {
    void SetUp() override
    {
        qor_lang::CLanguageFileWriter writer =
            languageWriter(u"uk-UA", m_app,
                           {{u"{0} file\u0005", u"{0} файл\0{0} файли\0{0} файлів"s},
                            {u"mail\u0004{0} message\u0005", u"{0} лист\0{0} листи\0{0} листів"s},
                            {u"menu\u0004Open", u"Відкрити"},
                            {u"\u0004k", u"context empty"},
                            {u"ключ", u"значення"},
                            {u"greeting", u"Привіт \U0001F30D"}});
        writer.setAuthor(u"Ünal");
        writeLanguageFile(m_folder / (m_app + u"-uk-UA.qorlang"), writer);
        writeLanguageFile(m_folder, m_app, u"de-DE");
        writeBytes(m_folder / "help_uk-UA.txt", "x");
        ASSERT_EQ(qor_lang2::add(m_folder.u16string(), m_app), 0);
        ASSERT_EQ(qor_lang2::setCurrentLanguage("uk-UA"), 0);
    }
};

TEST_F(WrapperExports, EveryReturnedStringAndHandleIsGivenBackOnceWhateverHappensToItsOwner)
{
    using qor_lang2::String;
    const std::pair<const char*, std::function<String()>> sources[] = {
        {"currentLanguage", [] { return qor_lang2::currentLanguage(); }},
        {"language", [&] { return qor_lang2::language(m_app, 1); }},
        {"findLocalizedFile",
         [&] { return qor_lang2::findLocalizedFile(folderUri(m_folder), u"help_", u"", u".txt"); }},
        {"a file accessor", [&] { return qor_lang2::languageFile(m_app, 1).author(); }},
    };
    for (const auto& [name, make] : sources) {
        SCOPED_TRACE(name);
        {
            String first = make();
            ASSERT_TRUE(first);
            const std::u16string value = first.u16();
            String second(std::move(first));
            EXPECT_FALSE(first);
            String third = make();
            third = std::move(second); // the owner's old string goes back, the moved one stays
            third = std::move(third);
            EXPECT_EQ(third.u16(), value) << "a self-move keeps the string";
        }
        String kept = make();
        qor_lang2::Char* handedOver = kept.release();
        EXPECT_FALSE(kept);
        QOR_LANG2_freeWideString(handedOver); // release does not free
    }

    qor_lang2::File moved;
    {
        qor_lang2::File file = qor_lang2::languageFile(m_app, 1);
        ASSERT_TRUE(file);
        EXPECT_EQ(file.author().utf8(), "Ünal");
        EXPECT_EQ(file.languageId().utf8(), "uk-UA");
        EXPECT_TRUE(qor_lang2::languageFile(m_app, 0).comment()) << "an empty item is an empty string, not a null one";
        moved = std::move(file);
    }
    moved = qor_lang2::languageFile(m_app, 0); // the first handle goes back
    EXPECT_EQ(moved.languageId().utf8(), "de-DE");
    moved.reset();
    EXPECT_FALSE(moved.languageId());
    EXPECT_FALSE(qor_lang2::languageFile(m_app, 2));
    EXPECT_FALSE(qor_lang2::findLocalizedFile(folderUri(m_folder), u"none_", u"", u"")) << "not found is no exception";
}

TEST_F(WrapperExports, TextReachesTheLibraryAsUtf16AndComesBackInTheCallersForm)
{
    EXPECT_EQ(qor_lang2::tr("greeting", "Hello"), "Привіт 🌍");
    EXPECT_EQ(qor_lang2::tr(u"greeting", u"Hello"), u"Привіт \U0001F30D");
    EXPECT_EQ(qor_lang2::tr("ключ", "x"), "значення");
    EXPECT_EQ(qor_lang2::tr("ключ2", "значение €𝄞"), "значение €𝄞");
    // Views that are not zero-terminated pass only their own characters.
    EXPECT_EQ(qor_lang2::tr(std::string_view("greetingXYZ", 8), "Hi!"), "Привіт 🌍");
    EXPECT_EQ(qor_lang2::tr(std::u16string_view(u"absentXYZ", 6), std::u16string_view(u"Hi!", 2)), u"Hi");

    EXPECT_EQ(qor_lang2::setCurrentLanguage("de"), 20) << "the library's answer, unchanged";
}

// trn, trc and trnc against what gettext's ngettext answers for the same entries; an entry
// missing answers ngettext's default.
TEST_F(WrapperExports, PluralAndContextEntriesAnswerLikeGettext)
{
    const char* const files[] = {"{0} файл", "{0} файли", "{0} файлів"};
    const char* const mails[] = {"{0} лист", "{0} листи", "{0} листів"};
    for (unsigned long n :
         {0ul, 1ul, 2ul, 4ul, 5ul, 11ul, 12ul, 14ul, 21ul, 22ul, 25ul, 101ul, 111ul, 1000001ul, -1ul}) {
        const unsigned long form = plural_model::slavic(n);
        EXPECT_EQ(qor_lang2::trn("{0} file", "{0} files", n), files[form]) << n;
        EXPECT_EQ(qor_lang2::trnc("mail", "{0} message", "{0} messages", n), mails[form]) << n;
        EXPECT_EQ(qor_lang2::trnc(u"post", u"{0} message", u"{0} messages", n),
                  n == 1 ? u"{0} message" : u"{0} messages");
        EXPECT_EQ(qor_lang2::trn(u"{0} dir", u"{0} dirs", n), n == 1 ? u"{0} dir" : u"{0} dirs");
    }
    EXPECT_EQ(qor_lang2::format(qor_lang2::trn("{0} file", "{0} files", 3), 3), "3 файли");
    EXPECT_EQ(qor_lang2::trc("menu", "Open", "Open"), "Відкрити");
    EXPECT_EQ(qor_lang2::trc(u"menu", u"Open", u"Open"), u"Відкрити");
    EXPECT_EQ(qor_lang2::trc("", "k", ""), "context empty");
    EXPECT_EQ(qor_lang2::trc("toolbar", "Open", "Open"), "Open");
    EXPECT_EQ(qor_lang2::tr("Open", "Open"), "Open") << "the context is part of the key";
}

} // namespace
