// CString: storage, conversion between encodings, and the operations, which must give one answer
// whatever the encodings of the strings and whichever argument variant carries the text.

#include "framework/CCPCharEncoding.h"
#include "framework/CLatin1CharEncoding.h"
#include "framework/CMethodNotImplementedError.h"
#include "framework/CString.h"
#include "framework/CUTF16CharEncoding.h"
#include "framework/CUTF32CharEncoding.h"
#include "framework/CUTF8CharEncoding.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

constexpr uint32_t kUnknown = IString::kUnknown;
constexpr uint32_t kNotFound = IString::kNotFound;

std::vector<ICharEncoding*> allEncodings()
{
    return {CUTF8CharEncoding::instance().get(), CUTF16CharEncoding::instance().get(),
            CUTF32CharEncoding::instance().get(), CLatin1CharEncoding::instance().get(),
            CCPCharEncoding::instance().get()};
}

// The code points of a string, read forwards.
std::vector<uint32_t> codePoints(const IString& s)
{
    std::vector<uint32_t> out;
    for (uint32_t i = 0; i < s.getLength(); ++i)
        out.push_back(s.getCharAt(i));
    return out;
}

// `text` (UTF-16) in `encoding`.
P<IString> in(ICharEncoding& encoding, const char16_t* text)
{
    return CUTF16String(text).convertTo(encoding);
}

} // namespace

// --- Storage

TEST(StringStorage, CopyOwnsATerminatedCopy)
{
    const char text[] = "abcdef";
    CUTF8String s(text, 2, kUnknown, CString::kCopy);
    EXPECT_NE(static_cast<const void*>(s.getBuffer()), static_cast<const void*>(text));
    EXPECT_EQ(s.getByteLength(), 2u);
    EXPECT_EQ(s.getLength(), 2u);
    EXPECT_TRUE(s.isOwned());
    EXPECT_TRUE(s.isTerminated());
    EXPECT_EQ(s.getBuffer()[2], 0); // the terminator lies inside the allocation
    EXPECT_EQ(s.toUTF8(), "ab");

    // The terminator is the encoded NUL: 2 bytes in UTF-16, 4 in UTF-32.
    const char16_t wide[] = u"xyz";
    CUTF16String w(wide, 4, kUnknown, CString::kCopy);
    EXPECT_EQ(w.getByteLength(), 4u);
    EXPECT_EQ(w.getBuffer()[4], 0);
    EXPECT_EQ(w.getBuffer()[5], 0);
    EXPECT_EQ(w.getLength(), 2u);
    const char32_t wider[] = U"xyz";
    CUTF32String ww(wider, 4, kUnknown, CString::kCopy);
    for (uint32_t i = 4; i < 8; ++i)
        EXPECT_EQ(ww.getBuffer()[i], 0);
}

TEST(StringStorage, UnknownByteLengthIsMeasuredUpToTheNul)
{
    CUTF8String s("abc", kUnknown);
    EXPECT_EQ(s.getByteLength(), 3u);
    EXPECT_TRUE(s.isTerminated());
    const char16_t wide[] = u"h\u00E9\U0001F600";
    CUTF16String w(wide, kUnknown, kUnknown, CString::kBorrow);
    EXPECT_EQ(w.getByteLength(), 8u);
    EXPECT_EQ(w.getLength(), 3u);
    EXPECT_TRUE(w.isTerminated()); // typed strings: terminated exactly when measured
    EXPECT_FALSE(CUTF16String(wide, 8, kUnknown, CString::kBorrow).isTerminated());
    CUTF32String u(U"ab", kUnknown);
    EXPECT_EQ(u.getByteLength(), 8u);
}

TEST(StringStorage, BorrowRefersToTheCallersBuffer)
{
    char text[] = "hello";
    {
        CLatin1String s(text, 5, kUnknown, CString::kBorrow);
        EXPECT_EQ(static_cast<const void*>(s.getBuffer()), static_cast<void*>(text));
        EXPECT_FALSE(s.isOwned());
        EXPECT_FALSE(s.isTerminated());
        EXPECT_EQ(s.getLength(), 5u);
        // A copy of a borrowed string owns its bytes.
        CString copy(s);
        EXPECT_NE(copy.getBuffer(), s.getBuffer());
        EXPECT_TRUE(copy.isOwned());
        EXPECT_TRUE(copy.isTerminated());
        EXPECT_TRUE(copy.equals(s));
    }
    EXPECT_STREQ(text, "hello"); // left alone
    // The general constructor keeps the terminated flag as given.
    CString flagged(text, 5, kUnknown, true, *CLatin1CharEncoding::instance(), CString::kBorrow);
    EXPECT_TRUE(flagged.isTerminated());
}

TEST(StringStorage, AdoptTakesOverTheBuffer)
{
    uint8_t* buffer = CString::allocateBuffer(4);
    std::memcpy(buffer, "ab\xE9", 4);
    auto s = make<CLatin1String>(buffer, 3, kUnknown, CString::kAdopt);
    EXPECT_EQ(s->getBuffer(), buffer);
    EXPECT_TRUE(s->isOwned());
    EXPECT_FALSE(s->isTerminated());
    EXPECT_EQ(s->toU16(), u"ab\u00E9");
    s.reset(); // frees the buffer: a leak or a double free shows under the sanitizers

    uint8_t* measured = CString::allocateBuffer(3);
    std::memcpy(measured, "xy", 3);
    CString t(measured, kUnknown, kUnknown, true, *CUTF8CharEncoding::instance(), CString::kAdopt);
    EXPECT_EQ(t.getByteLength(), 2u);
}

TEST(StringStorage, NullAndEmpty)
{
    for (ICharEncoding* enc : allEncodings()) {
        for (auto mode : {CString::kCopy, CString::kAdopt, CString::kBorrow}) {
            CString s(nullptr, 5, 3, false, *enc, mode);
            EXPECT_EQ(s.getByteLength(), 0u);
            EXPECT_EQ(s.getLength(), 0u);
            EXPECT_FALSE(s.isOwned() && mode != CString::kCopy);
        }
    }
    EXPECT_EQ(CString::empty()->getLength(), 0u);
    EXPECT_EQ(CUTF8String(static_cast<const char*>(nullptr)).getLength(), 0u);
    EXPECT_EQ(CString().compare(""), 0);
    EXPECT_EQ(CString().hash(), CUTF8String("").hash());
}

TEST(StringStorage, ACountGivenByTheCreatorIsKept)
{
    CUTF8String s("abc", 3, 3);
    EXPECT_EQ(s.getLength(), 3u);
    CString t("abc", 3, 2, false, *CUTF8CharEncoding::instance(), CString::kBorrow);
    EXPECT_EQ(t.getLength(), 2u);
    // Even a wrong one does not make the operations read out of bounds.
    CString wrong("abc", 3, 9, false, *CUTF8CharEncoding::instance(), CString::kBorrow);
    EXPECT_EQ(wrong.getCharAt(5), kNotFound);
    EXPECT_EQ(wrong.findLast("c"), 2u);
    EXPECT_EQ(wrong.slice(9)->getByteLength(), 0u);
    EXPECT_EQ(wrong.slice(4)->getByteLength(), 0u);
}

TEST(StringStorage, InvalidBytesAreNotCounted)
{
    CUTF8String s("A\xFF" "B", 3);
    EXPECT_EQ(s.getLength(), 2u);
    EXPECT_EQ(codePoints(s), std::vector<uint32_t>({'A', 'B'}));
    EXPECT_TRUE(s.equals("AB"));
    EXPECT_EQ(s.getCharAt(1), static_cast<uint32_t>('B'));
    EXPECT_EQ(s.getCharAt(2), kNotFound);
}

// --- Typed strings

TEST(TypedString, EachFixesItsEncoding)
{
    EXPECT_EQ(CUTF8String("a").getEncoding()->getId(), CUTF8CharEncoding::kId);
    EXPECT_EQ(CUTF16String(u"a").getEncoding()->getId(), CUTF16CharEncoding::kId);
    EXPECT_EQ(CUTF32String(U"a").getEncoding()->getId(), CUTF32CharEncoding::kId);
    EXPECT_EQ(CLatin1String("a").getEncoding()->getId(), CLatin1CharEncoding::kId);
    EXPECT_EQ(CCPString("a").getEncoding()->getId(), CCPCharEncoding::kId);
    // wchar_t text: UTF-16 where wchar_t has 16 bits, UTF-32 where it has 32.
    CWCharString w(L"h\u00E9\U0001F600");
    EXPECT_EQ(w.getEncoding()->getId(),
              sizeof(wchar_t) == 2 ? CUTF16CharEncoding::kId : CUTF32CharEncoding::kId);
    EXPECT_EQ(w.getLength(), 3u);
    EXPECT_EQ(w.getByteLength(), sizeof(wchar_t) == 2 ? 8u : 12u);
    EXPECT_EQ(w.toU16(), u"h\u00E9\U0001F600");
    EXPECT_EQ(std::wstring(w.c_str()), L"h\u00E9\U0001F600");
    EXPECT_EQ(CWCharString(CUTF8String("x\xC3\xA9")).toU16(), u"x\u00E9");
}

TEST(TypedString, UnitLengthsAndStringViews)
{
    // With a typed pointer the length counts code units; the (buffer, byte length, ...) form
    // counts bytes.
    EXPECT_EQ(CUTF16String(u"abcd", 2).toU16(), u"ab");
    EXPECT_EQ(CUTF16String(u"abcd", 2, kUnknown, CString::kCopy).toU16(), u"a");
    EXPECT_EQ(CUTF32String(std::u32string_view(U"abc", 2)).toU16(), u"ab");
    EXPECT_EQ(CUTF8String(std::string_view("a\0b", 3)).getLength(), 3u); // embedded NUL kept
    EXPECT_EQ(CString::fromUTF8("\xE2\x82\xAC")->toU16(), u"\u20AC");
    EXPECT_EQ(CString::fromUTF16(u"\u20AC")->toUTF8(), "\xE2\x82\xAC");
}

// --- Conversion

// A text with something for each encoding to lose, converted from each encoding into each.
TEST(StringConversion, BetweenAnyTwoEncodings)
{
    const char16_t* text = u"A\u00E9\u20AC\u4E00\U0001F600";
    // What each target keeps of it: Latin-1 writes '?', the code page (Windows-1252 or the
    // platform's) drops what it cannot hold, UTF-8 cannot read back U+1F600 (lead F0).
    for (ICharEncoding* from : allEncodings()) {
        P<IString> source = in(*from, text);
        for (ICharEncoding* to : allEncodings()) {
            SCOPED_TRACE(std::string(from->getName()) + " -> " + to->getName());
            P<IString> converted = source->convertTo(*to);
            EXPECT_EQ(converted->getEncoding(), to);
            EXPECT_TRUE(converted->isOwned());
            EXPECT_TRUE(converted->isTerminated());
            EXPECT_EQ(converted->getLength(), to->countChars(converted->getBuffer(),
                                                             converted->getByteLength(), 0));
            // Converting once more into the source's own encoding changes nothing.
            EXPECT_EQ(codePoints(*converted->convertTo(*to)), codePoints(*converted));
            // What survives is a subsequence of the source, Latin-1's '?' aside.
            const auto src = codePoints(*source);
            const auto dst = codePoints(*converted);
            size_t i = 0;
            for (uint32_t cp : dst) {
                while (i < src.size() && src[i] != cp &&
                       !(to->getId() == CLatin1CharEncoding::kId && cp == '?' && src[i] > 0xFF))
                    ++i;
                ASSERT_LT(i, src.size()) << std::hex << cp;
                ++i;
            }
        }
    }
}

TEST(StringConversion, WhatEachTargetKeeps)
{
    P<IString> source = make<CUTF16String>(u"A\u00E9\u20AC\U0001F600\u0939");
    EXPECT_EQ(codePoints(*source->convertTo(*CLatin1CharEncoding::instance())),
              std::vector<uint32_t>({'A', 0xE9, '?', '?', '?'}));
    EXPECT_EQ(codePoints(*source->convertTo(*CUTF32CharEncoding::instance())),
              std::vector<uint32_t>({'A', 0xE9, 0x20AC, 0x1F600, 0x939}));
    // UTF-8 writes proper UTF-8 but does not read back leads E0 and F0.
    P<IString> utf8 = source->convertTo(*CUTF8CharEncoding::instance());
    EXPECT_EQ(utf8->getByteLength(), 1u + 2 + 3 + 4 + 3);
    EXPECT_EQ(utf8->toUTF8(), "A\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(utf8->getLength(), 3u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(utf8->getBuffer()), 13),
              "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xE0\xA4\xB9");

    // UTF-32 holds anything, so its lone surrogates and out-of-range values reach UTF-16 and
    // UTF-8 only as far as those can carry them.
    const char32_t odd[] = {0x41, 0xD800, 0x110000, 0x42, 0};
    CUTF32String u(odd);
    EXPECT_EQ(u.getLength(), 4u);
    EXPECT_EQ(CUTF16String(u).toU16(), u"AB");
    EXPECT_EQ(CUTF16String(u).getLength(), 2u);
    CUTF8String u8(u);
    EXPECT_EQ(u8.getByteLength(), 5u); // ED A0 80 for the surrogate
    EXPECT_EQ(codePoints(u8), std::vector<uint32_t>({0x41, 0xD800, 0x42}));
}

TEST(StringConversion, EuroSignToLatin1AndTheCodePage)
{
    CUTF16String euro(u"\u20AC");
    CLatin1String latin(euro);
    EXPECT_EQ(latin.getByteLength(), 1u);
    EXPECT_EQ(latin.getBuffer()[0], '?');
    EXPECT_EQ(latin.getLength(), 1u);
    // The code page either has the euro sign or drops it.
    CCPString cp(euro);
    ICharEncoding& page = *CCPCharEncoding::instance();
    if (page.getEncodedSize(0x20AC) == 0) {
        EXPECT_EQ(cp.getByteLength(), 0u);
        EXPECT_EQ(cp.getLength(), 0u);
    } else {
        EXPECT_EQ(cp.getLength(), 1u);
        EXPECT_EQ(cp.getCharAt(0), 0x20ACu);
    }
}

// --- Comparison

TEST(StringCompare, ByCodePointAcrossEncodings)
{
    for (ICharEncoding* a : allEncodings()) {
        for (ICharEncoding* b : allEncodings()) {
            SCOPED_TRACE(std::string(a->getName()) + " vs " + b->getName());
            P<IString> abc = in(*a, u"abc");
            EXPECT_EQ(abc->compare(in(*b, u"abc")), 0);
            EXPECT_TRUE(abc->equals(in(*b, u"abc")));
            EXPECT_LT(abc->compare(in(*b, u"abd")), 0);
            EXPECT_LT(abc->compare(in(*b, u"abcd")), 0);
            EXPECT_GT(in(*a, u"abd")->compare(in(*b, u"abcd")), 0);
            EXPECT_GT(in(*a, u"abcd")->compare(abc), 0);
            EXPECT_EQ(in(*a, u"abcd")->compare(in(*b, u"abc"), kUnknown, true), 0);
            EXPECT_GT(in(*a, u"abc")->compare(in(*b, u""), kUnknown, false), 0);
            EXPECT_LT(in(*a, u"")->compare(in(*b, u"a")), 0);
            EXPECT_EQ(in(*a, u"abx")->compare(in(*b, u"aby"), 2), 0);
            EXPECT_LT(in(*a, u"abx")->compare(in(*b, u"aby"), 3), 0);
            EXPECT_EQ(in(*a, u"x")->compare(in(*b, u"y"), 0), 0);
            EXPECT_EQ(abc->compareIgnoreCase(in(*b, u"ABC")), 0);
            EXPECT_TRUE(in(*a, u"\u00C9t\u00E9")->equalsIgnoreCase(in(*b, u"\u00E9T\u00C9")));
        }
    }
    // Results are -1, 0 or 1, ordered by code point rather than by bytes.
    EXPECT_EQ(CUTF16String(u"\uFF01").compare(CUTF16String(u"\U00010000")), -1);
    EXPECT_EQ(CUTF8String("\xC3\xA9").compare(CUTF32String(U"z")), 1);
    EXPECT_EQ(CUTF8String("\xC3\xA9").compareTo(CLatin1String("\xE9")), 0);
}

TEST(StringCompare, IgnoreCaseWithRealUnicode)
{
    struct Pair {
        const char16_t* a;
        const char16_t* b;
    };
    const Pair equal[] = {
        {u"\u00C0\u00C9\u00CE\u00D5\u00DC\u00DE", u"\u00E0\u00E9\u00EE\u00F5\u00FC\u00FE"},
        {u"\u0178", u"\u00FF"},
        {u"\u039F\u0394\u03A5\u03A3\u03A3\u0395\u03A5\u03A3", u"\u03BF\u03B4\u03C5\u03C3\u03C3\u03B5\u03C5\u03C2"},
        {u"\u041F\u0420\u0418\u0412\u0415\u0422", u"\u043F\u0440\u0438\u0432\u0435\u0442"},
        {u"\u212A", u"k"},
        {u"\u212A", u"K"},
        {u"\u017F", u"S"},
        {u"\u1E9E", u"\u00DF"},
        {u"\U00010400", u"\U00010428"},
    };
    for (const Pair& p : equal) {
        EXPECT_EQ(CUTF16String(p.a).compareIgnoreCase(CUTF16String(p.b)), 0);
        EXPECT_EQ(CUTF32String(CUTF16String(p.b)).compareIgnoreCase(CUTF16String(p.a)), 0);
        EXPECT_NE(CUTF16String(p.a).compare(CUTF16String(p.b)), 0);
    }
    // Latin-1 text against UTF-16 text.
    EXPECT_TRUE(CLatin1String("\xC9L\xC8VE").equalsIgnoreCase(u"\u00E9l\u00E8ve"));
    // Not case variants: different, and ordered by the mapped code points.
    EXPECT_NE(CUTF16String(u"\u0131").compareIgnoreCase(u"I"), 0);
    EXPECT_NE(CUTF16String(u"\u00DF").compareIgnoreCase(u"ss"), 0);
    EXPECT_LT(CUTF16String(u"a").compareIgnoreCase(u"B"), 0);
    EXPECT_GT(CUTF16String(u"\u00C9").compareIgnoreCase(u"e"), 0);
    EXPECT_EQ(CUTF16String(u"ABCD").compareIgnoreCase(u"abc", kUnknown, true), 0);
}

TEST(StringHash, EqualTextHashesEqualInEveryEncoding)
{
    const uint32_t h = CUTF16String(u"Gr\u00FC\u00DFe").hash();
    for (ICharEncoding* enc : allEncodings())
        EXPECT_EQ(in(*enc, u"Gr\u00FC\u00DFe")->hash(), h) << enc->getName();
    EXPECT_EQ(CUTF8String("A\xFF" "B", 3).hash(), CUTF8String("AB").hash());
    EXPECT_NE(CUTF8String("AB").hash(), CUTF8String("BA").hash());
    EXPECT_NE(CUTF8String("a").hash(), CUTF8String("A").hash());
}

// --- Search, counting, prefixes and suffixes

TEST(StringSearch, ForwardsAndBackwards)
{
    for (ICharEncoding* enc : allEncodings()) {
        SCOPED_TRACE(enc->getName());
        P<IString> s = in(*enc, u"abcabcab");
        EXPECT_EQ(s->find("bc"), 1u);
        EXPECT_EQ(s->find("bc", 1), 1u);
        EXPECT_EQ(s->find("bc", 2), 4u);
        EXPECT_EQ(s->find("bc", 5), kNotFound);
        EXPECT_EQ(s->find("ab", 6), 6u);
        EXPECT_EQ(s->find("abx"), kNotFound);
        EXPECT_EQ(s->find(""), 0u);
        EXPECT_EQ(s->find("", 8), 8u);
        EXPECT_EQ(s->find("", 9), kNotFound);
        EXPECT_EQ(s->find("a", kUnknown), kNotFound);
        EXPECT_EQ(s->find("abcabcabc"), kNotFound);
        EXPECT_EQ(s->findIgnoreCase("CA"), 2u);
        EXPECT_EQ(s->count("ab"), 3u);
        EXPECT_EQ(s->count("x"), 0u);
        EXPECT_EQ(s->count(""), 0u);
        EXPECT_EQ(s->countIgnoreCase("BCA"), 2u);
        EXPECT_TRUE(s->startsWith("abca"));
        EXPECT_FALSE(s->startsWith("abcb"));
        EXPECT_TRUE(s->startsWith(""));
        EXPECT_FALSE(s->startsWith("abcabcabx"));
        EXPECT_TRUE(s->startsWithIgnoreCase("ABC"));
        EXPECT_TRUE(s->endsWith("cab"));
        EXPECT_TRUE(s->endsWith(""));
        EXPECT_TRUE(s->endsWith("abcabcab"));
        EXPECT_FALSE(s->endsWith("xabcabcab"));
        EXPECT_FALSE(s->endsWith("ca"));
        EXPECT_TRUE(s->endsWithIgnoreCase("CAB"));
        if (enc->supportsReverse()) {
            EXPECT_EQ(s->findLast("ab"), 6u);
            EXPECT_EQ(s->findLast("ab", 5), 3u);
            EXPECT_EQ(s->findLast("ab", 3), 3u);
            EXPECT_EQ(s->findLast("ab", 0), 0u);
            EXPECT_EQ(s->findLast("bc", 0), kNotFound);
            EXPECT_EQ(s->findLast("x"), kNotFound);
            EXPECT_EQ(s->findLastIgnoreCase("BC"), 4u);
        } else {
            EXPECT_THROW(s->findLast("ab"), CMethodNotImplementedError);
        }
    }
    // Counting does not overlap.
    EXPECT_EQ(CUTF8String("aaaa").count("aa"), 2u);
    EXPECT_EQ(CUTF8String("aaa").findLast("aa"), 1u);
}

TEST(StringSearch, PositionsAreCharactersNotBytes)
{
    // Multi-byte characters, a surrogate pair and an invalid byte before the match.
    CUTF8String s("\xC3\xA9\xE2\x82\xAC\xFFx\xC3\xA9x", 10);
    EXPECT_EQ(s.getLength(), 5u);
    EXPECT_EQ(s.find('x'), 2u);
    EXPECT_EQ(s.findLast('x'), 4u);
    EXPECT_EQ(s.find(u'\u00E9', 1), 3u);
    EXPECT_EQ(s.find(U'\u20AC'), 1u);
    CUTF16String t(u"\U0001F600a\U0001F600a");
    EXPECT_EQ(t.find(u"a"), 1u);
    EXPECT_EQ(t.findLast(U'\U0001F600'), 2u);
    EXPECT_EQ(t.count(U'\U0001F600'), 2u);
    EXPECT_TRUE(t.endsWith(u"\U0001F600a"));
    // A lone surrogate unit is searched for as its code point.
    EXPECT_EQ(t.find(u'\xD83D'), kNotFound);
    EXPECT_EQ(t.count(u'\xD83D'), 0u);
    EXPECT_FALSE(t.startsWith(u'\xD83D'));
    CUTF8String withSurrogate("a\xED\xA0\x80", 4);
    EXPECT_EQ(withSurrogate.find(u'\xD800'), 1u);
}

// Every argument variant carries the same text to the same implementation.
TEST(StringArgument, EveryVariantGivesTheSameAnswers)
{
    struct Answers {
        uint32_t find, findLast, count;
        bool starts, ends, equals;
        int32_t compare;
        bool operator==(const Answers&) const = default;
    };
    auto ask = [](const IString& s, const CStringArg& a) {
        const bool back = s.getEncoding()->supportsReverse();
        return Answers{s.find(a), back ? s.findLast(a) : 0, s.count(a), s.startsWith(a),
                       s.endsWith(a), s.equals(a), s.compare(a)};
    };
    for (ICharEncoding* enc : allEncodings()) {
        SCOPED_TRACE(enc->getName());
        for (const char16_t* hay : {u"hello", u"lol", u"lo", u"l", u""}) {
            P<IString> s = in(*enc, hay);
            const Answers want = ask(*s, CUTF16String(u"lo"));
            EXPECT_EQ(ask(*s, in(*CUTF8CharEncoding::instance(), u"lo")), want);
            EXPECT_EQ(ask(*s, *in(*CLatin1CharEncoding::instance(), u"lo")), want);
            EXPECT_EQ(ask(*s, "lo"), want);
            EXPECT_EQ(ask(*s, {"lox", 2}), want);
            EXPECT_EQ(ask(*s, u"lo"), want);
            EXPECT_EQ(ask(*s, {u"lox", 2}), want);
            EXPECT_EQ(ask(*s, U"lo"), want);
            EXPECT_EQ(ask(*s, {U"lox", 2}), want);
            EXPECT_EQ(ask(*s, L"lo"), want);
            EXPECT_EQ(ask(*s, {L"lox", 2}), want);

            const Answers one = ask(*s, CUTF16String(u"l"));
            EXPECT_EQ(ask(*s, CStringArg('l')), one);
            EXPECT_EQ(ask(*s, CStringArg(u'l')), one);
            EXPECT_EQ(ask(*s, CStringArg(U'l')), one);
            EXPECT_EQ(ask(*s, CStringArg(L'l')), one);
            EXPECT_EQ(s->find('l'), one.find);
            EXPECT_EQ(s->find(u'l'), one.find);
            EXPECT_EQ(s->find(U'l'), one.find);
            EXPECT_EQ(s->find(L'l'), one.find);
            EXPECT_EQ(s->count(L'l'), one.count);
            EXPECT_EQ(s->startsWith(L'l'), one.starts);
            EXPECT_EQ(s->endsWith('l'), one.ends);
        }
    }
    // Narrow text is Latin-1, wide text UTF-16.
    CUTF16String e(u"\u00E9");
    EXPECT_TRUE(e.equals("\xE9"));
    EXPECT_TRUE(e.equals(CStringArg('\xE9')));
    EXPECT_TRUE(e.equals(u"\u00E9"));
    EXPECT_TRUE(e.equals(L"\u00E9"));
}

TEST(StringArgument, NullTextReadsAsEmpty)
{
    CUTF8String s("abc");
    P<IString> none;
    EXPECT_TRUE(CUTF8String("").equals(none));
    EXPECT_EQ(s.find(none), 0u);
    EXPECT_EQ(s.compare(static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(s.compare(static_cast<const char16_t*>(nullptr)), 1);
    EXPECT_EQ(s.concat(none)->toUTF8(), "abc");
}

TEST(StringArgument, LengthsBeyondThirtyTwoBitsOfBytesAreRefused)
{
    const char16_t text[] = u"ab";
    EXPECT_THROW(CStringArg(text, 0x80000000u), CException);
    EXPECT_THROW(CStringArg(U"ab", 0x40000000u), CException);
}

// --- Slices, replacement, concatenation

TEST(StringSlice, KeepsItsParentAlive)
{
    P<CUTF8String> parent = make<CUTF8String>("h\xC3\xA9llo w\xC3\xB6rld");
    const int32_t before = parent->getRefCount();
    P<IString> world = parent->slice(6);
    EXPECT_GT(parent->getRefCount(), before);
    const uint8_t* bytes = parent->getBuffer();
    parent.reset();
    EXPECT_EQ(world->toU16(), u"w\u00F6rld");
    EXPECT_EQ(world->getLength(), 5u);
    EXPECT_EQ(world->getBuffer(), bytes + 7); // no copy
    EXPECT_FALSE(world->isOwned());
    P<IString> inner = world->slice(1, 3);
    world.reset();
    EXPECT_EQ(inner->toU16(), u"\u00F6rl");
}

TEST(StringSlice, ClampsStartAndCount)
{
    for (ICharEncoding* enc : allEncodings()) {
        SCOPED_TRACE(enc->getName());
        P<IString> s = in(*enc, u"abcdef");
        EXPECT_EQ(s->slice(2, 3)->toU16(), u"cde");
        EXPECT_EQ(s->slice(2)->toU16(), u"cdef");
        EXPECT_EQ(s->slice(4, 99)->toU16(), u"ef");
        EXPECT_EQ(s->slice(6)->getLength(), 0u);
        EXPECT_EQ(s->slice(99, 2)->getLength(), 0u);
        EXPECT_EQ(s->slice(0, 0)->getLength(), 0u);
        EXPECT_EQ(s->slice(1, 2)->getLength(), 2u);
    }
}

TEST(StringReplace, ReplaceAllAndConcat)
{
    CUTF8String s("a-b--c");
    EXPECT_EQ(s.replaceAll("-", "+")->toUTF8(), "a+b++c");
    EXPECT_EQ(s.replaceAll("--", u"\u20AC")->toUTF8(), "a-b\xE2\x82\xAC" "c");
    EXPECT_EQ(s.replaceAll("-", "")->toUTF8(), "abc");
    EXPECT_EQ(s.replaceAll("", "x")->toUTF8(), "a-b--c");
    EXPECT_EQ(s.replaceAll("x", "y")->toUTF8(), "a-b--c");
    EXPECT_EQ(CUTF8String("aaa").replaceAll("aa", "b")->toUTF8(), "ba");
    EXPECT_EQ(CUTF8String("A").replaceAll("a", "b")->toUTF8(), "A"); // case-sensitive

    // The result keeps the left encoding when it can hold anything, else becomes UTF-16.
    P<IString> r = CLatin1String("x-y").replaceAll("-", u"\u20AC");
    EXPECT_EQ(r->getEncoding()->getId(), CUTF16CharEncoding::kId);
    EXPECT_EQ(r->toU16(), u"x\u20ACy");
    EXPECT_EQ(r->getLength(), 3u);

    P<IString> c = CUTF8String("ab").concat(u"\u00E9");
    EXPECT_EQ(c->getEncoding()->getId(), CUTF8CharEncoding::kId);
    EXPECT_EQ(c->toU16(), u"ab\u00E9");
    EXPECT_EQ(c->getLength(), 3u);
    P<IString> l = CLatin1String("ab").concat(CLatin1String("\xE9"));
    EXPECT_EQ(l->getEncoding()->getId(), CLatin1CharEncoding::kId);
    P<IString> mixed = CLatin1String("\xE9").concat(u"\u4E00");
    EXPECT_EQ(mixed->getEncoding()->getId(), CUTF16CharEncoding::kId);
    EXPECT_EQ(mixed->toU16(), u"\u00E9\u4E00");
    EXPECT_EQ(CString().concat("")->getLength(), 0u);
    EXPECT_TRUE(CUTF8String("A\xFF", 2).concat("B")->equals("AB"));
}

} // namespace kore_test
