#include "FrameworkTest.h"

#include "framework/CFileNotFoundError.h"
#include "framework/CStringLocalizer.h"
#include "framework/LocalizedText.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace kore_test;

std::string text(const P<IString>& s)
{
    return s ? s->toUTF8() : "<null>";
}

TEST(StringLocalizer, TextsAreCopiesAndMissingOrEmptyOnesGiveTheDefaultUnchanged)
{
    auto loc = make<CStringLocalizer>();
    EXPECT_EQ(text(loc->getString("kore.X.Desc", "The file '%FILE%' was not found.")),
              "The file '%FILE%' was not found.");
    char16_t key[] = u"kore.X.Desc";
    wchar_t value[] = L"Die Datei '%FILE%' fehlt.";
    loc->setString(key, value);
    key[0] = u'X';
    value[0] = L'X';
    const P<IString> first = loc->getString(u"kore.X.Desc", "default");
    EXPECT_EQ(text(first), "Die Datei '%FILE%' fehlt.") << "placeholders are left for the caller";
    EXPECT_EQ(loc->getString(CString::fromUTF8("kore.X.Desc"), "default"), first)
        << "a hit returns the stored string, not a copy";
    EXPECT_EQ(text(loc->getString("kore.x.desc", "default")), "default") << "keys are case-sensitive";
    EXPECT_EQ(loc->getCount(), 1u);

    std::u16string caller = u"borrowed default";
    const P<IString> fallbackText = loc->getString("missing", caller.c_str());
    caller.assign(caller.size(), u'#');
    EXPECT_EQ(text(fallbackText), "borrowed default");
    loc->setString("kore.X.Desc", "");
    EXPECT_EQ(text(loc->getString("kore.X.Desc", "default")), "default") << "an empty text cannot blank a text out";
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
    const auto key = [](int k) { return "key." + std::to_string(k % 64); };
    const auto setAll = [&](const std::string& round) {
        for (int k = 0; k < 64; ++k)
            loc->setString(key(k).c_str(), ("text " + key(k) + " #" + round).c_str());
    };
    setAll("start");
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::atomic<long> hits{0};
    std::thread writer([&] {
        for (int round = 0; !stop; ++round) {
            setAll(std::to_string(round));
            if (round % 3 == 2)
                loc->clear();
        }
    });
    std::vector<std::thread> readers;
    for (int r = 0; r < 3; ++r) {
        readers.emplace_back([&, r] {
            for (int i = 0; i < 20000; ++i) {
                const std::string k = key(i * 7 + r);
                const std::string got = loc->getString(k.c_str(), "default")->toUTF8();
                hits += got != "default";
                wrong += got != "default" && got.rfind("text " + k + " #", 0) != 0;
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
