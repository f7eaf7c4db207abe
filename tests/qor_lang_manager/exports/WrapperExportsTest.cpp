// The C++ layer qor_lang2.hpp against the real library, where the two meet in the key forms the
// layer builds and the library reads (its ownership and text conversions are tests/wrapper's).
#include "../PluralModels.h"
#include "ExportTestSupport.h"

#include "qor_lang2.hpp"

namespace {

using namespace export_test;
using namespace std::string_literals;

// trn, trc and trnc with a Ukrainian catalogue (three forms by the CLDR rule), against what
// gettext's ngettext answers for the same entries; an entry missing answers ngettext's default.
TEST(WrapperExports, PluralAndContextEntriesAnswerLikeGettext)
{
    kore_test::CTempFolder temp;
    const std::u16string app = testName();
    writeLanguageFile(temp.path(), app, u"uk-UA",
                      {{u"{0} file\u0005", u"{0} файл\0{0} файли\0{0} файлів"s},
                       {u"menu\u0004Open", u"Відкрити"},
                       {u"mail\u0004{0} message\u0005", u"{0} лист\0{0} листи\0{0} листів"s}});
    ASSERT_EQ(qor_lang2::add(temp.path().u16string(), app), 0);
    ASSERT_EQ(qor_lang2::setCurrentLanguage("uk-UA"), 0);
    const char* const files[] = {"{0} файл", "{0} файли", "{0} файлів"};
    const char* const mails[] = {"{0} лист", "{0} листи", "{0} листів"};
    for (unsigned long n : {0ul, 1ul, 2ul, 4ul, 5ul, 11ul, 12ul, 14ul, 21ul, 22ul, 25ul, 101ul, 111ul, 1000001ul}) {
        const unsigned long form = plural_model::slavic(n);
        EXPECT_EQ(qor_lang2::trn("{0} file", "{0} files", n), files[form]) << n;
        EXPECT_EQ(qor_lang2::trnc("mail", "{0} message", "{0} messages", n), mails[form]) << n;
        EXPECT_EQ(qor_lang2::trnc("post", "{0} message", "{0} messages", n), n == 1 ? "{0} message" : "{0} messages");
        EXPECT_EQ(qor_lang2::trn(u"{0} dir", u"{0} dirs", n), n == 1 ? u"{0} dir" : u"{0} dirs");
    }
    EXPECT_EQ(qor_lang2::format(qor_lang2::trn("{0} file", "{0} files", 3), 3), "3 файли");
    EXPECT_EQ(qor_lang2::trc("menu", "Open", "Open"), "Відкрити");
    EXPECT_EQ(qor_lang2::trc("toolbar", "Open", "Open"), "Open");
    EXPECT_EQ(qor_lang2::tr("Open", "Open"), "Open") << "the context is part of the key";
}

} // namespace
