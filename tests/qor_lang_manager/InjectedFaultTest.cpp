// Loading a language and looking texts up through the exports while the n-th file operation or
// the n-th allocation fails, for every n: each call ends in its stated failure value or in a
// result that was valid before or after it, nothing leaks (LeakSanitizer in the debug build),
// the next call works, a file that fails is reported in the log, and loading never changes a file.
#include "../framework/FailingFiles.h"
#include "LanguageTestSupport.h"
#include "exports/ExportTestSupport.h"
#include "qor_lang2.hpp"
#include "qor_lang_manager/CLanguagePack.h"

#include <algorithm>

namespace {

using namespace export_test;
using lang_test::CAllocationWatch;

// Two languages of one application in a folder of its own, the German one large.
struct InjectedFaults : ::testing::Test {
    kore_test::CTempFolder folder;
    lang_test::CLocalizerGuard localizer;
    const std::u16string app = testName();
    const std::string german = qor_lang::CLanguagePack::fileName(app.c_str(), u"de-DE")->toUTF8();
    const std::string french = qor_lang::CLanguagePack::fileName(app.c_str(), u"fr-FR")->toUTF8();

    void SetUp() override
    {
        // More than the disk stream's buffer holds, so that loading takes several reads.
        Strings many{{u"k", u"Hallo"}};
        for (int i = 0; i < 2000; ++i)
            many.emplace_back(u16("key" + std::to_string(i)), u16("text " + std::to_string(i) + std::string(40, '.')));
        writeLanguageFile(folder.path(), app, u"de-DE", many);
        writeLanguageFile(folder.path(), app, u"fr-FR", {{u"k", u"Bonjour"}});
        ASSERT_EQ(addFolder(folder.path(), app), 0);
    }

    // French loaded and the file list forgotten, so that the next load reads everything anew.
    void startFromFrench()
    {
        ASSERT_EQ(QOR_LANG2_reload(), 0);
        ASSERT_EQ(setLanguage(u"fr-FR"), 0);
        ASSERT_EQ(localString(u"k", u"-"), u"Bonjour");
        ASSERT_EQ(QOR_LANG2_reload(), 0);
    }

    // Scans the folder, switches to German and looks a text up; the tag is taken later.
    struct Outcome {
        int32_t count = 0, setResult = 0;
        Text text, tag;
        QOR_LANG2_CHAR* rawTag = nullptr;
    };
    Outcome loadGerman(bool lookUp = true)
    {
        Outcome o;
        o.count = QOR_LANG2_getLanguageCount(w(app));
        o.rawTag = QOR_LANG2_getLanguage(w(app), 0);
        o.setResult = setLanguage(u"de-DE");
        o.text = lookUp ? localString(u"k", u"-") : Text();
        return o;
    }

    // Every failure leaves a state some run without it could reach, and German works afterwards.
    void expectValidAndGermanWorks(Outcome& o)
    {
        o.tag = take(o.rawTag);
        EXPECT_TRUE(o.count >= 0 && o.count <= 2) << o.count;
        EXPECT_TRUE(!o.tag || o.tag == u"de-DE" || o.tag == u"fr-FR") << utf8(*o.tag);
        EXPECT_EQ(o.setResult, 0);
        // A German file that cannot be read leaves no texts: the default answers, never French.
        EXPECT_TRUE(o.text == u"Hallo" || o.text == u"-") << (o.text ? utf8(*o.text) : "null");
        ASSERT_EQ(QOR_LANG2_reload(), 0);
        EXPECT_EQ(QOR_LANG2_getLanguageCount(w(app)), 2);
        EXPECT_EQ(setLanguage(u"de-DE"), 0);
        EXPECT_EQ(localString(u"k", u"-"), u"Hallo");
        EXPECT_EQ(localString(u"key1999", u"-"), u"text 1999" + std::u16string(40, u'.'));
    }
};

TEST_F(InjectedFaults, EveryFailingFileOperationOfALoadSkipsAFileOrLeavesNoTexts)
{
    const auto contents = [&] { return folder.readFile(german) + folder.readFile(french); };
    const std::string before = contents();
    startFromFrench();
    int64_t operations = 0;
    {
        kore_test::CFailingFiles counting(0);
        Outcome o = loadGerman();
        operations = counting.operations();
        ASSERT_EQ(o.count, 2);
        ASSERT_EQ(o.text, u"Hallo");
        QOR_LANG2_freeWideString(o.rawTag);
    }
    ASSERT_GT(operations, 4);
    for (int64_t n = 1; n <= operations; ++n) {
        SCOPED_TRACE("failing file operation " + std::to_string(n));
        startFromFrench();
        Outcome o;
        lang_test::CLogCapture log(qor_lang::CLanguagePack::kLogModule);
        {
            kore_test::CFailingFiles files(n);
            o = loadGerman();
            EXPECT_TRUE(files.failed());
            EXPECT_EQ(files.writableOpens() + files.writesToReadOnlyFiles(), 0);
        }
        // A file that fails while the folder is scanned is left out of the list, and reported.
        EXPECT_GE(o.count, 1);
        EXPECT_NE(o.rawTag, nullptr);
        EXPECT_TRUE(std::any_of(log.records().begin(), log.records().end(), [](const std::string& r) {
            return r.find("error while loading") != std::string::npos;
        }));
        EXPECT_EQ(contents(), before);
        expectValidAndGermanWorks(o);
    }
}

TEST_F(InjectedFaults, EveryFailingAllocationOfALoadGivesAStatedFailureValue)
{
    startFromFrench();
    size_t allocations = 0;
    {
        CAllocationWatch counting(0);
        QOR_LANG2_freeWideString(loadGerman(false).rawTag);
        allocations = counting.allocations();
    }
    ASSERT_GT(allocations, 10u);
    size_t lastFailed = 0;
    for (size_t n = 1; n <= allocations; ++n) {
        SCOPED_TRACE("failing allocation " + std::to_string(n));
        startFromFrench();
        Outcome o;
        bool failed = false;
        {
            CAllocationWatch failure(n);
            o = loadGerman(false); // the look-up and the tag's copy must not meet the failure
            failed = failure.failed();
        }
        if (!failed) { // the counting run made first-use allocations that are now done
            QOR_LANG2_freeWideString(o.rawTag);
            break;
        }
        lastFailed = n;
        o.text = localString(u"k", u"-");
        expectValidAndGermanWorks(o);
    }
    EXPECT_GE(lastFailed, allocations * 3 / 4) << "of " << allocations;
}

TEST_F(InjectedFaults, EveryFailingAllocationOfALookUpAnswersNullOrThrowsAndTheNextLookUpWorks)
{
    ASSERT_EQ(setLanguage(u"de-DE"), 0);
    for (const std::u16string key : {u"k", u"missing"}) {
        size_t allocations = 0;
        for (size_t n = 0; n == 0 || n <= allocations; ++n) { // 0 only counts
            QOR_LANG2_CHAR* text = nullptr;
            {
                CAllocationWatch failure(n);
                text = QOR_LANG2_getLocalString(w(key), w(u"default"));
                allocations = n == 0 ? failure.allocations() : allocations;
            }
            EXPECT_EQ(text == nullptr, n != 0) << utf8(key) << ", allocation " << n;
            QOR_LANG2_freeWideString(text);
            if (n != 0) { // the C++ layer turns exhaustion, and only that, into an exception
                CAllocationWatch failure(n);
                EXPECT_THROW(qor_lang2::tr(key, u"default"), std::bad_alloc);
            }
            EXPECT_EQ(localString(key, u"default"), key == u"k" ? u"Hallo" : u"default");
        }
        EXPECT_GE(allocations, 1u);
    }
}

} // namespace
