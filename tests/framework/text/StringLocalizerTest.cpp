#include "FrameworkTest.h"

#include "framework/errors/CFileNotFoundError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/text/CStringLocalizer.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <map>
#include <random>
#include <thread>

namespace {

using namespace kore_test;

std::string text(const P<IString>& s)
{
    return s ? s->toUTF8() : "<null>";
}

P<CTextTable> table(std::initializer_list<std::pair<std::u16string, std::u16string>> entries)
{
    CTextTable::CBuilder builder;
    for (const auto& [key, value] : entries)
        builder.addCopy(key.data(), uint32_t(key.size()), value.data(), uint32_t(value.size()), 0);
    return builder.build();
}

// What a host gets: a copy made by the copier, here into a std::u16string.
std::u16string copied(const CStringLocalizer& loc, const char16_t* key, const char16_t* defaultText)
{
    thread_local std::u16string out;
    const char16_t* made = loc.copyString(key, defaultText, [](const void* units, size_t count) {
        out.assign(count, u'\0');
        std::memcpy(out.data(), units, 2 * count);
        return out.data();
    });
    return made ? out : u"<null>";
}

// Own texts answer first (setString before the tables, the later table before the earlier), then
// the fallback, then the default, unchanged (placeholders are left for the caller); an empty text
// counts as missing. Keys and texts are copies; keys of any encoding meet and are case-sensitive.
TEST(StringLocalizer, OwnTextsThenTheFallbackThenTheDefaultAndNoFallbackCycles)
{
    auto loc = make<CStringLocalizer>(), fallback = make<CStringLocalizer>();
    char16_t key[] = u"kore.X.Desc";
    wchar_t value[] = L"Die Datei '%FILE%' fehlt.";
    loc->setString(key, value);
    key[0] = u'X';
    value[0] = L'X';
    for (const auto& [k, v] : {std::pair{"both", "fallback text"},
                               {"only.fallback", "from fallback"},
                               {"empty.here", "fallback fills in"},
                               {"kore.x.desc", "other case"}})
        fallback->setString(k, v);
    loc->setString("both", "own text");
    loc->setString("empty.here", "");
    loc->setFallback(fallback.get());
    EXPECT_EQ(fallback->getRefCount(), 2);
    std::u16string caller = u"borrowed default";
    const P<IString> fallbackText = loc->getString("missing", caller.c_str());
    caller.assign(caller.size(), u'#');
    EXPECT_EQ(text(fallbackText), "borrowed default");
    EXPECT_EQ(text(loc->getString(CString::fromUTF8("kore.X.Desc"), "d")), "Die Datei '%FILE%' fehlt.");
    const auto expect = [&](const std::vector<std::pair<const char16_t*, const char16_t*>>& cases) {
        for (const auto& [k, expected] : cases) {
            EXPECT_EQ(copied(*loc, k, u"d"), expected);
            EXPECT_EQ(text(loc->getString(k, "d")), text(CString::fromUTF16(expected)));
        }
    };
    expect({{u"kore.X.Desc", u"Die Datei '%FILE%' fehlt."},
            {u"kore.x.desc", u"other case"},
            {u"both", u"own text"},
            {u"only.fallback", u"from fallback"},
            {u"empty.here", u"fallback fills in"},
            {u"nowhere", u"d"}});

    const P<CTextTable> first = table({{u"both", u"first"}, {u"empty.here", u"first"}, {u"first", u"1"}});
    const P<CTextTable> second = table({{u"both", u"second"}, {u"empty.here", u""}, {u"\xD800", u"lone"}});
    loc->setTexts({first, second});
    EXPECT_EQ(first->getRefCount(), 2) << "the localizer shares the tables it was given";
    // An empty text counts as missing even over a full one; setTexts replaces what setString set;
    // unpaired surrogates are units like any other.
    expect({{u"both", u"second"},
            {u"first", u"1"},
            {u"empty.here", u"fallback fills in"},
            {u"only.fallback", u"from fallback"},
            {u"kore.X.Desc", u"d"},
            {u"\xD800", u"lone"}});
    EXPECT_EQ(copied(*loc, nullptr, nullptr), u"") << "null reads as empty";
    loc->setString("both", "set later");
    EXPECT_EQ(copied(*loc, u"both", u"d"), u"set later") << "setString answers before the tables";
    loc->setTexts({});
    EXPECT_EQ(first->getRefCount(), 1) << "replaced tables are freed at once when nobody reads";

    loc->clear();
    EXPECT_EQ(text(loc->getString("both", "d")), "fallback text") << "clear keeps the fallback";
    auto other = make<CStringLocalizer>();
    loc->setFallback(other.get());
    EXPECT_EQ(fallback->getRefCount(), 1);
    loc->setFallback(nullptr);
    EXPECT_EQ(other->getRefCount(), 1);
    EXPECT_EQ(text(loc->getString("both", "d")), "d");
    loc->setString("both", "set");
    loc->setString("both", "");
    EXPECT_EQ(text(loc->getString("both", "d")), "d") << "an empty text cannot blank a text out";

    // A chain of fallbacks that leads back to where it starts would recurse on every miss until the
    // stack overflows (and keep every member alive): the link that closes it is refused, whatever
    // the length of the ring, and the chain stays as it was.
    for (size_t ring = 1; ring <= 4; ++ring) {
        std::vector<P<CStringLocalizer>> chain;
        for (size_t i = 0; i < ring; ++i)
            if (chain.push_back(make<CStringLocalizer>()); i > 0)
                chain[i - 1]->setFallback(chain[i].get());
        chain.back()->setString("last", "from the end");
        EXPECT_THROW(chain.back()->setFallback(chain.front().get()), CInvalidArgError) << ring;
        EXPECT_EQ(chain.back()->getFallback(), nullptr) << ring;
        EXPECT_EQ(text(chain.front()->getString("missing", "d")), "d") << ring;
        EXPECT_EQ(text(chain.front()->getString("last", "d")), "from the end") << ring;
        for (auto& loc : chain)
            loc->setFallback(nullptr);
    }
}

// A reader stopped inside its look-up (in the copier, reading the old text) holds a switch back
// until it has copied; look-ups that start later are not held and already see the new text.
TEST(StringLocalizer, ASwitchWaitsWhileAReaderStillCopiesTheOldText)
{
    static std::atomic<int> stage; // 1: the reader is inside its look-up; 2: it may copy
    static std::u16string held;
    stage = 0;
    auto loc = make<CStringLocalizer>();
    loc->setTexts({table({{u"k", u"old"}})});
    std::thread reader([&] {
        loc->copyString(u"k", u"d", [](const void* units, size_t count) -> char16_t* {
            stage = 1;
            while (stage != 2)
                std::this_thread::yield();
            held.assign(static_cast<const char16_t*>(units), count);
            return held.data();
        });
    });
    while (stage != 1)
        std::this_thread::yield();
    std::atomic<bool> switched{false};
    std::thread writer([&] {
        loc->setTexts({table({{u"k", u"new"}})});
        switched = true;
    });
    while (copied(*loc, u"k", u"d") != u"new")
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(switched) << "the old text was freed under a reader";
    stage = 2;
    reader.join();
    writer.join();
    EXPECT_TRUE(switched);
    EXPECT_EQ(held, u"old");
}

// setString against a map: new keys (the table grows), the same few keys again and again (the
// replaced texts are reclaimed), empty texts, and clear now and then.
TEST(StringLocalizer, SetStringAgreesWithAMap)
{
    auto loc = make<CStringLocalizer>();
    std::map<std::string, std::string> model;
    std::mt19937 random(7);
    for (int step = 0; step < 40000; ++step) {
        const uint32_t r = random();
        if (r % 9973 == 0) {
            loc->clear();
            model.clear();
            continue;
        }
        const std::string key = "key." + std::to_string(r % 8 == 0 ? r % 5 : r % 6000);
        const std::string value = r % 13 == 0 ? "" : "text " + std::to_string(step);
        loc->setString(key.c_str(), value.c_str());
        model[key] = value;
    }
    for (int k = 0; k < 6000; ++k) {
        const std::string key = "key." + std::to_string(k);
        const auto found = model.find(key);
        const std::string want = found == model.end() || found->second.empty() ? "d" : found->second;
        ASSERT_EQ(text(loc->getString(key.c_str(), "d")), want) << key;
    }
}

TEST(GlobalLocalizer, ErrorsBuiltAfterASetUseTheNewText)
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
    CStringLocalizer::instance()->clear(); // the process-wide localizer is shared by every test
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
