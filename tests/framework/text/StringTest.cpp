// CString: storage, conversion between encodings, and the operations, which must give one answer
// whatever the encodings of the strings and whichever argument variant carries the text. Case
// mapping itself is checked character by character in CaseTableTest.cpp.

#include "FrameworkTest.h"

#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CCaseTable.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"
#include "framework/text/UTF8Decoding.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <tuple>

namespace kore_test {
namespace {

constexpr uint32_t kUnknown = IString::kUnknown;
constexpr uint32_t kNotFound = IString::kNotFound;

std::vector<ICharEncoding*> allEncodings()
{
    return {CUTF8CharEncoding::instance().get(), CUTF16CharEncoding::instance().get(),
            CUTF32CharEncoding::instance().get(), CLatin1CharEncoding::instance().get(),
            CCPCharEncoding::instance().get()};
}

// The code points of a string, read forwards by a cursor.
std::u32string cps(const IString& s)
{
    std::u32string out;
    CCharCursor cursor(s);
    for (uint32_t cp = 0; cursor.next(cp);)
        out.push_back(cp);
    return out;
}

// `text` (UTF-16) in `encoding`.
P<IString> in(ICharEncoding& encoding, const char16_t* text)
{
    return CUTF16String(text).convertTo(encoding);
}

// A string's encoding, text (as UTF-8) and storage in one line.
std::string storage(const IString& s)
{
    return s.getEncoding()->getName() + (" " + s.toUTF8()) + ", " + std::to_string(s.getByteLength()) + " bytes, " +
           std::to_string(s.getLength()) + " chars" + (s.isOwned() ? ", owned" : "") +
           (s.isTerminated() ? ", terminated" : "");
}

} // namespace

TEST(StringStorage, CopyBorrowAndAdopt)
{
    // A copy owns its bytes, terminated by the encoded NUL (1, 2 or 4 bytes) inside the allocation.
    const char text[] = "abcdef";
    CUTF8String s(text, 2, kUnknown, CString::kCopy);
    EXPECT_NE(static_cast<const void*>(s.getBuffer()), static_cast<const void*>(text));
    EXPECT_EQ(storage(s), "UTF-8 ab, 2 bytes, 2 chars, owned, terminated");
    EXPECT_EQ(0, std::memcmp(s.getBuffer(), "ab", 3));
    CUTF16String w(u"xyz", 4, kUnknown, CString::kCopy);
    EXPECT_EQ(storage(w), "UTF-16 xy, 4 bytes, 2 chars, owned, terminated");
    EXPECT_EQ(0, std::memcmp(w.getBuffer(), u"xy", 6));
    EXPECT_EQ(0, std::memcmp(CUTF32String(U"xyz", 4, kUnknown, CString::kCopy).getBuffer(), U"x", 8));

    char hello[] = "hello";
    {
        CLatin1String b(hello, 5, kUnknown, CString::kBorrow);
        EXPECT_EQ(static_cast<const void*>(b.getBuffer()), static_cast<void*>(hello));
        EXPECT_EQ(storage(b), "Latin-1 hello, 5 bytes, 5 chars");
        CString copy(b); // a copy of a borrowed string owns its bytes
        EXPECT_NE(copy.getBuffer(), b.getBuffer());
        EXPECT_EQ(storage(copy), "Latin-1 hello, 5 bytes, 5 chars, owned, terminated");
    }
    EXPECT_STREQ(hello, "hello"); // left alone
    // The general constructor keeps the terminated flag as given.
    EXPECT_TRUE(CString(hello, 5, kUnknown, true, *CLatin1CharEncoding::instance(), CString::kBorrow).isTerminated());

    // Adopted buffers are freed with the string: a leak or a double free shows under the sanitizers.
    uint8_t* buffer = CString::allocateBuffer(4);
    std::memcpy(buffer, "ab\xE9", 4);
    CLatin1String adopted(buffer, 3, kUnknown, CString::kAdopt);
    EXPECT_EQ(adopted.getBuffer(), buffer);
    EXPECT_EQ(storage(adopted), "Latin-1 ab\xC3\xA9, 3 bytes, 3 chars, owned");
    uint8_t* measured = CString::allocateBuffer(3);
    std::memcpy(measured, "xy", 3);
    EXPECT_EQ(storage(CString(measured, kUnknown, kUnknown, true, *CUTF8CharEncoding::instance(), CString::kAdopt)),
              "UTF-8 xy, 2 bytes, 2 chars, owned, terminated");

    for (ICharEncoding* enc : allEncodings()) {
        for (auto mode : {CString::kCopy, CString::kAdopt, CString::kBorrow}) {
            CString s(nullptr, 5, 3, false, *enc, mode);
            EXPECT_EQ(s.getByteLength() + s.getLength(), 0u);
            EXPECT_FALSE(s.isOwned() && mode != CString::kCopy);
        }
    }
    EXPECT_EQ(CUTF8String(static_cast<const char*>(nullptr)).getLength(), 0u);
    EXPECT_EQ(CString().compare(""), 0);
    EXPECT_EQ(CString().hash(), CUTF8String("").hash());
    // A count given by the creator is kept; even a wrong one does not make reading go out of bounds.
    EXPECT_EQ(CString("abc", 3, 2, false, *CUTF8CharEncoding::instance(), CString::kBorrow).getLength(), 2u);
    CString wrong("abc", 3, 9, false, *CUTF8CharEncoding::instance(), CString::kBorrow);
    EXPECT_EQ(wrong.getCharAt(5), kNotFound);
    EXPECT_EQ(wrong.findLast("c"), 2u);
    EXPECT_EQ(wrong.slice(9)->getByteLength() + wrong.slice(4)->getByteLength(), 0u);
    // Invalid bytes are not counted, compared or hashed.
    CUTF8String invalid("A\xFF"
                        "B",
                        3);
    EXPECT_EQ(cps(invalid), U"AB");
    EXPECT_EQ(invalid.getCharAt(1), U'B');
    EXPECT_TRUE(invalid.equals("AB"));
    EXPECT_EQ(invalid.hash(), CUTF8String("AB").hash());
}

// Each typed string fixes its encoding. With a typed pointer the length counts code units, kUnknown
// measures up to the NUL and then the string is terminated; the (buffer, byte length, ...) form
// counts bytes.
TEST(TypedString, EncodingLengthInUnitsBytesOrMeasuredAndConversion)
{
    EXPECT_EQ(storage(CUTF8String("abc", kUnknown)), "UTF-8 abc, 3 bytes, 3 chars, owned, terminated");
    const char16_t wide[] = u"h\u00E9\U0001F600";
    EXPECT_EQ(storage(CUTF16String(wide, kUnknown, kUnknown, CString::kBorrow)),
              "UTF-16 h\xC3\xA9\xF0\x9F\x98\x80, 8 bytes, 3 chars, terminated");
    EXPECT_EQ(storage(CUTF16String(wide, 8, kUnknown, CString::kBorrow)),
              "UTF-16 h\xC3\xA9\xF0\x9F\x98\x80, 8 bytes, 3 chars");
    EXPECT_EQ(storage(CUTF32String(U"ab", kUnknown)), "UTF-32 ab, 8 bytes, 2 chars, owned, terminated");
    EXPECT_EQ(CUTF16String(u"abcd", 2).toU16(), u"ab");
    EXPECT_EQ(CUTF16String(u"abcd", 2, kUnknown, CString::kCopy).toU16(), u"a");
    EXPECT_EQ(CUTF32String(std::u32string_view(U"abc", 2)).toU16(), u"ab");
    EXPECT_EQ(CUTF8String(std::string_view("a\0b", 3)).getLength(), 3u); // embedded NUL kept
    EXPECT_EQ(storage(CCPString("a")), "CodePage a, 1 bytes, 1 chars, owned, terminated");
    EXPECT_EQ(storage(CLatin1String("\xE9")), "Latin-1 \xC3\xA9, 1 bytes, 1 chars, owned, terminated");
    // wchar_t text: UTF-16 where wchar_t has 16 bits, UTF-32 where it has 32.
    CWCharString w(L"h\u00E9\U0001F600");
    const std::string wText = " h\xC3\xA9\xF0\x9F\x98\x80, ";
    EXPECT_EQ(storage(w), sizeof(wchar_t) == 2 ? "UTF-16" + wText + "8 bytes, 3 chars, owned, terminated"
                                               : "UTF-32" + wText + "12 bytes, 3 chars, owned, terminated");
    EXPECT_EQ(std::wstring(w.c_str()), L"h\u00E9\U0001F600");
    EXPECT_EQ(CWCharString(CUTF8String("x\xC3\xA9")).toU16(), u"x\u00E9");
    // Conversion.
    // UTF-8 writes proper UTF-8 but does not read back leads E0 and F0 (what each target reads back
    // the operations property checks).
    P<IString> utf8 = CUTF16String(u"A\u00E9\u20AC\U0001F600\u0939").convertTo(*CUTF8CharEncoding::instance());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(utf8->getBuffer()), utf8->getByteLength()),
              "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xE0\xA4\xB9");
    // UTF-32 holds anything; its lone surrogates and out-of-range values reach UTF-16 and UTF-8
    // only as far as those can carry them.
    const char32_t odd[] = {0x41, 0xD800, 0x110000, 0x42, 0};
    CUTF32String u(odd);
    EXPECT_EQ(storage(CUTF16String(u)), "UTF-16 AB, 4 bytes, 2 chars, owned, terminated");
    EXPECT_EQ(storage(CUTF8String(u)), "UTF-8 A\xED\xA0\x80"
                                       "B, 5 bytes, 3 chars, owned, terminated");
    // Text that must arrive whole (a file name) is refused when it is not well-formed UTF-8 (that
    // well-formed text keeps every character the property below checks); leniently, a bad byte is
    // skipped and the rest kept.
    for (const char* bad : {"a\xFF", "\xE0\xA4", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE0\x80\x80"})
        EXPECT_EQ(CString::tryFromUTF8(bad), nullptr) << bad;
    EXPECT_EQ(CString::fromUTF8("\xE0\xA4\xB9\xFF!")->toU16(), u"\u0939!");
    EXPECT_EQ(encodeUTF8(u"\xD800\U0001F600\xDC00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD"); // lone halves
}

// Random texts over an alphabet of case pairs, characters that are no case variants, and
// characters of every size (some that UTF-8 does not read back, some that Latin-1 cannot hold),
// in any two encodings: every operation answers as the same operation on their code points (cases
// mapped when ignoring case). Needles are mostly pieces of the text, some with their case changed.
// Results of comparisons are exactly -1, 0 or 1; counting does not overlap; joining or replacing
// loses no character.
TEST(StringOperations, AgreeWithTheSameWorkOnTheirCodePoints)
{
    const std::u32string alphabet = U"aAbB\u00E9\u00C9\u00DF\u00FF\u0178\u0131IKk\u212A\u017Fs\u03A3\u03C3\u03C2"
                                    U"\u0939\u0E17\u4E00\uFF01\U0001F600\U00010400\U00010428\U00100000";
    const auto fold = [](std::u32string t) {
        std::transform(t.begin(), t.end(), t.begin(), [](char32_t c) { return CCaseTable::map(c); });
        return t;
    };
    const auto pos = [](size_t at) { return at == std::u32string::npos ? kNotFound : static_cast<uint32_t>(at); };
    std::mt19937 random(5);
    const auto pick = [&](size_t n) { return static_cast<uint32_t>(random() % n); };
    const auto text = [&](uint32_t max) {
        std::u32string t;
        for (uint32_t n = pick(max + 1); n-- > 0;)
            t += alphabet[pick(alphabet.size())];
        return t;
    };
    const std::vector<ICharEncoding*> encodings = allEncodings();
    const auto in32 = [&](const std::u32string& t) {
        return CUTF32String(std::u32string_view(t)).convertTo(*encodings[pick(encodings.size())]);
    };
    for (int round = 0; round < 4000; ++round) {
        const P<IString> x = in32(text(pick(8) ? 12 : 80)); // longer texts span blocks of the cursor
        const std::u32string a = cps(*x);
        std::u32string b = pick(4) == 0 ? text(3) : a.substr(pick(a.size() + 1), pick(5));
        for (char32_t& c : b) // a case variant now and then
            for (char32_t v : alphabet)
                if (CCaseTable::map(v) == CCaseTable::map(c) && pick(3) == 0)
                    c = v;
        const P<IString> y = in32(b), z = in32(text(3));
        b = cps(*y);
        SCOPED_TRACE(x->getEncoding()->getName() + (" " + x->toUTF8()) + " / " + y->getEncoding()->getName() + " " +
                     y->toUTF8() + " / " + z->toUTF8());
        // By index forwards, where reading walks on from the last place, and then backwards.
        ASSERT_EQ(x->getLength(), a.size());
        for (uint32_t i = 0; i <= a.size(); ++i)
            ASSERT_EQ(x->getCharAt(i), i < a.size() ? uint32_t{a[i]} : kNotFound) << i;
        for (uint32_t i = static_cast<uint32_t>(a.size()); i-- > 0;)
            ASSERT_EQ(x->getCharAt(i), a[i]) << i;
        std::vector<size_t> got, expected;
        for (uint32_t at = 0; (at = x->find(y, at)) != kNotFound && at <= a.size(); ++at)
            got.push_back(at);
        for (size_t at = 0; (at = a.find(b, at)) != std::u32string::npos; ++at)
            expected.push_back(at);
        EXPECT_EQ(got, expected) << "every match";
        for (bool ignoreCase : {false, true}) {
            const std::u32string h = ignoreCase ? fold(a) : a, n = ignoreCase ? fold(b) : b;
            const uint32_t from = pick(3) ? pick(a.size() + 2) : kUnknown, limit = pick(2) ? pick(5) : kUnknown;
            const bool prefix = pick(2);
            EXPECT_EQ(x->findString(*y, from, ignoreCase), pos(h.find(n, from))) << from;
            EXPECT_TRUE(!x->getEncoding()->supportsReverse() ||
                        x->findLastString(*y, from, ignoreCase) == pos(h.rfind(n, from)))
                << "last from " << from;
            uint32_t count = 0;
            for (size_t at = h.find(n); !n.empty() && at != h.npos; at = h.find(n, at + n.size()))
                ++count;
            EXPECT_EQ(x->countString(*y, ignoreCase), count);
            EXPECT_EQ(x->startsWithString(*y, ignoreCase), h.starts_with(n));
            EXPECT_EQ(x->endsWithString(*y, ignoreCase), h.ends_with(n));
            const std::u32string hl = h.substr(0, limit), nl = n.substr(0, limit);
            const int order = prefix && hl.starts_with(nl) ? 0 : hl.compare(nl) < 0 ? -1 : hl.compare(nl) > 0;
            EXPECT_EQ(x->compareString(*y, ignoreCase, limit, prefix), order) << limit << (prefix ? " prefix" : "");
        }
        EXPECT_EQ(x->equals(y), a == b);
        EXPECT_TRUE(a != b || x->hash() == y->hash());
        const uint32_t start = pick(a.size() + 2), count = pick(3) ? pick(5) : kUnknown;
        EXPECT_EQ(cps(*x->slice(start, count)), start > a.size() ? U"" : a.substr(start, count))
            << start << " " << count;
        P<IString> rest = x;
        for (size_t i = 0; i < a.size(); i += 7, rest = rest->slice(7))
            ASSERT_EQ(cps(*rest), a.substr(i)) << "a slice of a slice from " << i;
        EXPECT_EQ(cps(*x->concat(y)), a + b);
        // Converted into any encoding: exactly what that encoding carries (the code page's share
        // is the host's), owned, terminated, counted, and the same once more.
        ICharEncoding& to = *encodings[pick(encodings.size())];
        const P<IString> converted = x->convertTo(to);
        std::u32string carried = a;
        if (to.getId() == CLatin1CharEncoding::kId)
            std::replace_if(
                carried.begin(), carried.end(), [](char32_t c) { return c > 0xFF; }, U'?');
        if (to.getId() == CUTF8CharEncoding::kId)
            std::erase_if(carried,
                          [](char32_t c) { return (c >= 0x800 && c < 0x1000) || (c >= 0x10000 && c < 0x40000); });
        EXPECT_TRUE(to.getId() == CCPCharEncoding::kId || cps(*converted) == carried) << to.getName();
        EXPECT_EQ(converted->getEncoding(), &to);
        EXPECT_TRUE(converted->isOwned() && converted->isTerminated());
        EXPECT_EQ(converted->getLength(), to.countChars(converted->getBuffer(), converted->getByteLength(), 0));
        EXPECT_EQ(cps(*converted->convertTo(to)), cps(*converted));
        const std::string utf8 = x->toUTF8(); // from UTF-8 back, every character kept
        EXPECT_EQ(cps(*CString::fromUTF8(utf8)), a);
        EXPECT_EQ(cps(*CString::tryFromUTF8(utf8)), a);
        EXPECT_EQ(CString::fromUTF8(utf8)->toUTF8(), utf8);
        EXPECT_EQ(encodeUTF8(x->toU16()), utf8);
        std::u32string replaced = a;
        const std::u32string with = cps(*z);
        for (size_t at = 0; !b.empty() && (at = replaced.find(b, at)) != std::u32string::npos; at += with.size())
            replaced.replace(at, b.size(), with);
        EXPECT_EQ(cps(*x->replaceAll(y, z)), replaced);
    }
    EXPECT_EQ(CUTF8String("\xC3\xA9").compareTo(CLatin1String("\xE9")), 0);
    EXPECT_TRUE(CLatin1String("\xC9L\xC8VE").equalsIgnoreCase(u"\u00E9l\u00E8ve"));
    EXPECT_NE(CUTF8String("AB").hash(), CUTF8String("BA").hash());
    EXPECT_NE(CUTF8String("a").hash(), CUTF8String("A").hash());
}

TEST(StringSearch, PositionsAreCharactersAndEveryArgumentVariantGivesTheSameAnswers)
{
    // Multi-byte characters and an invalid byte before the match.
    CUTF8String s("\xC3\xA9\xE2\x82\xAC\xFFx\xC3\xA9x", 10);
    EXPECT_EQ(std::tuple(s.getLength(), s.find('x'), s.findLast('x'), s.find(u'\u00E9', 1), s.find(U'\u20AC')),
              std::tuple(5u, 2u, 4u, 3u, 1u));
    CUTF16String t(u"\U0001F600a\U0001F600a");
    // A lone surrogate unit is searched for as its code point, not as empty text.
    EXPECT_EQ(t.find(u'\xD83D'), kNotFound);
    EXPECT_EQ(t.count(u'\xD83D'), 0u);
    EXPECT_FALSE(t.startsWith(u'\xD83D'));
    EXPECT_EQ(CUTF8String("a\xED\xA0\x80", 4).find(u'\xD800'), 1u);
    EXPECT_THROW(CCPString("a").findLast("a"), CMethodNotImplementedError); // reads backwards
    // Every argument variant carries the same text to the same implementation.
    auto ask = [](const IString& s, const CStringArg& a) {
        return std::tuple{s.find(a),     s.getEncoding()->supportsReverse() ? s.findLast(a) : 0,
                          s.count(a),    s.startsWith(a),
                          s.endsWith(a), s.equals(a),
                          s.compare(a)};
    };
    // Narrow text is Latin-1, wide text UTF-16 (or UTF-32 where wchar_t has 32 bits).
    const P<IString> le8 = in(*CUTF8CharEncoding::instance(), u"l\u00E9");
    const P<IString> le1 = in(*CLatin1CharEncoding::instance(), u"l\u00E9");
    // clang-format off
    const CStringArg le[] = {le8, *le1, "l\xE9", {"l\xE9x", 2}, latin1("l\xE9"), latin1("l\xE9x", 2),
                             u"l\u00E9", {u"l\u00E9x", 2}, U"l\u00E9", {U"l\u00E9x", 2}, L"l\u00E9", {L"l\u00E9x", 2}};
    // clang-format on
    const CStringArg e[] = {CStringArg('\xE9'), CStringArg(u'\u00E9'), CStringArg(U'\u00E9'), CStringArg(L'\u00E9')};
    for (ICharEncoding* enc : allEncodings()) {
        for (const char16_t* hay : {u"hell\u00E9", u"l\u00E9l\u00E9", u"l\u00E9", u"\u00E9", u"l", u""}) {
            P<IString> s = in(*enc, hay);
            SCOPED_TRACE(enc->getName() + (" " + s->toUTF8()));
            for (const CStringArg& a : le)
                EXPECT_EQ(ask(*s, a), ask(*s, CUTF16String(u"l\u00E9")));
            const auto one = ask(*s, CUTF16String(u"\u00E9"));
            for (const CStringArg& a : e)
                EXPECT_EQ(ask(*s, a), one);
            EXPECT_EQ(std::tuple(s->find('\xE9'), s->find(u'\u00E9'), s->find(U'\u00E9'), s->find(L'\u00E9')),
                      std::tuple(std::get<0>(one), std::get<0>(one), std::get<0>(one), std::get<0>(one)));
            EXPECT_EQ(std::tuple(s->count(L'\u00E9'), s->startsWith(L'\u00E9'), s->endsWith('\xE9')),
                      std::tuple(std::get<2>(one), std::get<3>(one), std::get<4>(one)));
        }
    }
    // A null text reads as empty; unit lengths whose bytes do not fit 32 bits are refused.
    CUTF8String abc("abc");
    P<IString> none;
    EXPECT_TRUE(CUTF8String("").equals(none));
    EXPECT_EQ(abc.find(none), 0u);
    EXPECT_EQ(abc.compare(static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(abc.compare(static_cast<const char16_t*>(nullptr)), 1);
    EXPECT_EQ(abc.concat(none)->toUTF8(), "abc");
    // Measured text ends in its NUL; text of a given length need not.
    EXPECT_EQ(std::pair(CStringArg(u"ab")->isTerminated(), CStringArg(u"abc", 2)->isTerminated()),
              std::pair(true, false));
    EXPECT_THROW(CStringArg(u"ab", 0x80000000u), CException);
    EXPECT_THROW(CStringArg(U"ab", 0x40000000u), CException);
}

TEST(StringSlice, KeepsItsParentAliveAndResultsTakeAnEncodingThatHoldsThem)
{
    P<CUTF8String> parent = make<CUTF8String>("h\xC3\xA9llo w\xC3\xB6rld");
    const int32_t before = parent->getRefCount();
    P<IString> world = parent->slice(6);
    EXPECT_GT(parent->getRefCount(), before);
    const uint8_t* bytes = parent->getBuffer();
    parent.reset();
    EXPECT_EQ(world->getBuffer(), bytes + 7); // no copy
    EXPECT_EQ(storage(*world), "UTF-8 w\xC3\xB6rld, 6 bytes, 5 chars");
    P<IString> inner = world->slice(1, 3);
    world.reset();
    EXPECT_EQ(inner->toU16(), u"\u00F6rl");
    // A slice of a slice holds the owner of the text, not a chain of slices whose release would
    // recurse once per link: slicing a long text one character at a time ends without a crash.
    P<IString> rest = CString::fromUTF16(std::u16string(300000, u'x'));
    while (rest->getLength() != 0)
        rest = rest->slice(1);
    // The result keeps the left encoding when it can hold anything, or both share it; else UTF-16.
    EXPECT_EQ(storage(*CLatin1String("x-y").replaceAll("-", u"\u20AC")),
              "UTF-16 x\xE2\x82\xACy, 6 bytes, 3 chars, owned, terminated");
    EXPECT_EQ(storage(*CUTF8String("ab").concat(u"\u00E9")), "UTF-8 ab\xC3\xA9, 4 bytes, 3 chars, owned, terminated");
    EXPECT_EQ(storage(*CLatin1String("ab").concat(CLatin1String("\xE9"))),
              "Latin-1 ab\xC3\xA9, 3 bytes, 3 chars, owned, terminated");
    EXPECT_EQ(storage(*CLatin1String("\xE9").concat(u"\u4E00")),
              "UTF-16 \xC3\xA9\xE4\xB8\x80, 4 bytes, 2 chars, owned, terminated");
    EXPECT_EQ(CString().concat("")->getLength(), 0u);
    EXPECT_TRUE(CUTF8String("A\xFF", 2).concat("B")->equals("AB"));
}

// The cursor reads plain UTF-16 units and ASCII bytes straight from the buffer and decodes the
// rest; whatever the mix of both, of invalid bytes and of start offsets, it must read what the
// encoding reads one character at a time, forwards and backwards, and getCharAt must agree.
TEST(StringCursor, ReadsWhatTheEncodingReadsOverRandomBytes)
{
    std::mt19937 random(16);
    // Bytes that are plain units, surrogates, multi-byte leads, continuations and odd tails.
    const uint8_t pool[] = {'a',  '~',  0x00, 0x7F, 0x80, 0xBF, 0xC3, 0xA9,
                            0xCE, 0xE0, 0xE2, 0xF0, 0xD8, 0xDC, 0xDF, 0xFF};
    for (ICharEncoding* enc : allEncodings()) {
        for (int round = 0; round < 400; ++round) {
            SCOPED_TRACE(testing::Message() << enc->getName() << " round " << round);
            std::vector<uint8_t> bytes(random() % 40);
            for (uint8_t& b : bytes)
                b = pool[random() % sizeof pool];
            const auto len = static_cast<uint32_t>(bytes.size());
            const uint32_t start = len == 0 ? 0 : static_cast<uint32_t>(random() % len);
            std::u32string want, got, back;
            for (uint32_t off = start, cp = 0;
                 (off = enc->decodeChar(cp, bytes.data(), len, off)) != ICharEncoding::kFail;)
                want.push_back(cp);
            const CString s(bytes.data(), len, kUnknown, false, *enc, CString::kCopy);
            CCharCursor cursor(s, start);
            for (uint32_t cp = 0; cursor.next(cp);)
                got.push_back(cp);
            ASSERT_EQ(got, want);
            if (start != 0)
                continue;
            ASSERT_EQ(s.getLength(), want.size());
            for (uint32_t i = 0; i < want.size(); ++i)
                ASSERT_EQ(s.getCharAt(i), want[i]) << i;
            if (!enc->supportsReverse())
                continue;
            CCharCursor reverse(s);
            for (uint32_t cp = 0; reverse.prev(cp);)
                back.insert(back.begin(), cp);
            ASSERT_EQ(back, want);
        }
    }
}

} // namespace kore_test
