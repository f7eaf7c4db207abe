#include "framework/CFileNotFoundError.h"
#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CStringLocalizer.h"
#include "framework/LocalizedText.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kore;

std::string text(const P<IString>& s)
{
    return s ? s->toUTF8() : "<null>";
}

TEST(StringLocalizer, MissingOrEmptyTextsGiveTheDefaultUnchanged)
{
    auto loc = make<CStringLocalizer>();
    EXPECT_EQ(text(loc->getString("kore.X.Desc", "The file '%FILE%' was not found.")),
              "The file '%FILE%' was not found.");

    loc->setString("kore.X.Desc", "Die Datei '%FILE%' fehlt.");
    EXPECT_EQ(text(loc->getString("kore.X.Desc", "default")), "Die Datei '%FILE%' fehlt.")
        << "placeholders are left for the caller";
    loc->setString("kore.X.Desc", "");
    EXPECT_EQ(text(loc->getString("kore.X.Desc", "default")), "default")
        << "an empty text cannot blank a text out";
    EXPECT_EQ(text(loc->getString("kore.x.desc", "default")), "default") << "keys are case-sensitive";
}

TEST(StringLocalizer, KeysAndTextsAreCopiedAndHitsShareTheStoredText)
{
    auto loc = make<CStringLocalizer>();
    char16_t key[] = u"app.title";
    wchar_t value[] = L"Tütel";
    loc->setString(key, value);
    key[0] = u'X';
    value[0] = L'X';
    const P<IString> first = loc->getString(u"app.title", "none");
    EXPECT_EQ(text(first), "Tütel");
    EXPECT_EQ(loc->getString(CString::fromUTF8("app.title"), "none"), first)
        << "a hit returns the stored string, not a copy";

    std::u16string caller = u"borrowed default";
    const P<IString> fallbackText = loc->getString("missing", caller.c_str());
    caller.assign(caller.size(), u'#');
    EXPECT_EQ(text(fallbackText), "borrowed default");
    EXPECT_EQ(loc->getCount(), 1u);
}

TEST(StringLocalizer, FallbackAnswersOnlyWhatIsMissingHere)
{
    auto loc = make<CStringLocalizer>();
    auto fallback = make<CStringLocalizer>();
    fallback->setString("both", "fallback text");
    fallback->setString("only.fallback", "from fallback");
    loc->setString("both", "own text");
    loc->setString("empty.here", "");
    fallback->setString("empty.here", "fallback fills in");

    loc->setFallback(fallback.get());
    EXPECT_EQ(fallback->getRefCount(), 2);
    EXPECT_EQ(text(loc->getString("both", "d")), "own text");
    EXPECT_EQ(text(loc->getString("only.fallback", "d")), "from fallback");
    EXPECT_EQ(text(loc->getString("empty.here", "d")), "fallback fills in");
    EXPECT_EQ(text(loc->getString("nowhere", "d")), "d");

    loc->clear();
    EXPECT_EQ(loc->getCount(), 0u);
    EXPECT_EQ(text(loc->getString("both", "d")), "fallback text") << "clear keeps the fallback";

    auto other = make<CStringLocalizer>();
    loc->setFallback(other.get());
    EXPECT_EQ(fallback->getRefCount(), 1);
    loc->setFallback(nullptr);
    EXPECT_EQ(other->getRefCount(), 1);
    EXPECT_EQ(text(loc->getString("both", "d")), "d");
    EXPECT_THROW(loc->setFallback(loc.get()), CInvalidArgError);
}

// The process-wide localizer is shared by every test: leave it empty.
class GlobalLocalizer : public ::testing::Test {
protected:
    void TearDown() override { CStringLocalizer::instance()->clear(); }
};

TEST_F(GlobalLocalizer, ErrorsBuiltAfterASetUseTheNewText)
{
    EXPECT_EQ(CStringLocalizer::instance(), CStringLocalizer::instance());
    const CFileNotFoundError before(nullptr);
    EXPECT_EQ(text(before.getDescription()), "The file '<uri unknown>' was not found.");

    CStringLocalizer::instance()->setString("kore.CFileNotFoundError.Desc",
                                            u"Die Datei '%FILE%' wurde nicht gefunden.");
    const CFileNotFoundError after(nullptr);
    EXPECT_EQ(text(after.getDescription()), "Die Datei '<uri unknown>' wurde nicht gefunden.");
    EXPECT_EQ(text(before.getDescription()), "The file '<uri unknown>' was not found.");
    EXPECT_EQ(text(getLocalizedText("kore.CFileNotFoundError.GeneralDesc", "The file was not found.")),
              "The file was not found.");
}

// Readers must always see either the default or a text that was set for exactly that key,
// while another thread keeps replacing texts and clearing the table.
TEST(StringLocalizer, ConcurrentLookupsSeeTheDefaultOrATextOfTheirKey)
{
    auto loc = make<CStringLocalizer>();
    constexpr int kKeys = 64;
    std::vector<std::string> keys;
    for (int k = 0; k < kKeys; ++k)
        keys.push_back("key." + std::to_string(k));

    for (int k = 0; k < kKeys; ++k)
        loc->setString(keys[k].c_str(), ("text " + keys[k] + " #start").c_str());
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::atomic<long> hits{0};
    std::thread writer([&] {
        for (int round = 0; !stop; ++round) {
            for (int k = 0; k < kKeys; ++k)
                loc->setString(keys[k].c_str(), ("text " + keys[k] + " #" + std::to_string(round)).c_str());
            if (round % 3 == 2)
                loc->clear();
        }
    });
    std::vector<std::thread> readers;
    for (int r = 0; r < 3; ++r) {
        readers.emplace_back([&, r] {
            for (int i = 0; i < 20000; ++i) {
                const std::string& key = keys[(i * 7 + r) % kKeys];
                const std::string got = loc->getString(key.c_str(), "default")->toUTF8();
                if (got == "default")
                    continue;
                ++hits;
                if (got.rfind("text " + key + " #", 0) != 0)
                    ++wrong;
            }
        });
    }
    for (auto& t : readers)
        t.join();
    stop = true;
    writer.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_GT(hits.load(), 0);
}

} // namespace
