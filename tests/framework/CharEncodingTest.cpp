// The encodings at their boundaries: first and last sequence of each length, the deliberate
// quirks, truncation, invalid bytes, and the backward and block operations.

#include "framework/CCPCharEncoding.h"
#include "framework/CLatin1CharEncoding.h"
#include "framework/CMethodNotImplementedError.h"
#include "framework/CUTF16CharEncoding.h"
#include "framework/CUTF32CharEncoding.h"
#include "framework/CUTF8CharEncoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

using Bytes = std::vector<uint8_t>;
using CodePoints = std::vector<uint32_t>;
constexpr uint32_t kFail = ICharEncoding::kFail;

const ICharEncoding& utf8() { return *CUTF8CharEncoding::instance(); }
const ICharEncoding& utf16() { return *CUTF16CharEncoding::instance(); }
const ICharEncoding& utf32() { return *CUTF32CharEncoding::instance(); }
const ICharEncoding& latin1() { return *CLatin1CharEncoding::instance(); }
const ICharEncoding& codePage() { return *CCPCharEncoding::instance(); }

Bytes u16(std::initializer_list<uint16_t> units)
{
    Bytes b;
    for (uint16_t u : units) {
        b.push_back(static_cast<uint8_t>(u));
        b.push_back(static_cast<uint8_t>(u >> 8));
    }
    return b;
}

Bytes u32(std::initializer_list<uint32_t> units)
{
    Bytes b;
    for (uint32_t u : units)
        for (int i = 0; i < 4; ++i)
            b.push_back(static_cast<uint8_t>(u >> (8 * i)));
    return b;
}

// Decodes the whole buffer strictly, character after character; nullopt-like empty + false when a
// strict decode fails before the end.
bool decodeStrict(const ICharEncoding& enc, const Bytes& b, CodePoints& out)
{
    const auto len = static_cast<uint32_t>(b.size());
    for (uint32_t off = 0; off < len;) {
        uint32_t cp = 0;
        const uint32_t end = enc.decodeCharStrict(cp, b.data(), len, off);
        if (end == kFail)
            return false;
        EXPECT_EQ(enc.getCharSizeAt(b.data(), len, off), end - off);
        out.push_back(cp);
        off = end;
    }
    return true;
}

CodePoints decodeForwards(const ICharEncoding& enc, const Bytes& b, uint32_t block)
{
    CodePoints all;
    const auto len = static_cast<uint32_t>(b.size());
    uint32_t off = 0;
    for (;;) {
        std::vector<uint32_t> cps(block + 1, 0xDEADBEEF);
        uint32_t count = 99;
        off = enc.decodeChars(cps.data(), block, count, b.data(), len, off, nullptr);
        EXPECT_LE(count, block);
        EXPECT_EQ(cps[block], 0xDEADBEEFu) << "wrote past max";
        all.insert(all.end(), cps.begin(), cps.begin() + count);
        if (count < block)
            return all;
    }
}

CodePoints decodeBackwards(const ICharEncoding& enc, const Bytes& b, uint32_t block)
{
    CodePoints all;
    const auto len = static_cast<uint32_t>(b.size());
    uint32_t off = len;
    for (;;) {
        std::vector<uint32_t> cps(block + 1, 0xDEADBEEF);
        uint32_t count = 99;
        off = enc.decodePrevChars(cps.data(), block, count, b.data(), len, off, nullptr);
        EXPECT_EQ(cps[block], 0xDEADBEEFu) << "wrote past max";
        all.insert(all.end(), cps.begin(), cps.begin() + count);
        if (count < block) {
            std::reverse(all.begin(), all.end());
            return all;
        }
    }
}

enum Strictness { kValid, kInvalid };

// The checker: `bytes` is entirely valid (strict decoding reads exactly `expected`) or not, and
// lenient reading - forwards and backwards, in blocks of 16 and of 1, and counting - yields
// `expected`.
void expectDecodes(const ICharEncoding& enc, const Bytes& bytes, const CodePoints& expected,
                   Strictness strictness)
{
    SCOPED_TRACE(testing::Message() << enc.getName() << " " << testing::PrintToString(bytes));
    CodePoints strict;
    const bool valid = decodeStrict(enc, bytes, strict);
    EXPECT_EQ(valid, strictness == kValid);
    if (valid) {
        EXPECT_EQ(strict, expected);
    }
    EXPECT_EQ(decodeForwards(enc, bytes, 16), expected);
    EXPECT_EQ(decodeForwards(enc, bytes, 1), expected);
    EXPECT_EQ(enc.countChars(bytes.data(), static_cast<uint32_t>(bytes.size()), 0), expected.size());
    if (enc.supportsReverse()) {
        EXPECT_EQ(decodeBackwards(enc, bytes, 16), expected);
        EXPECT_EQ(decodeBackwards(enc, bytes, 1), expected);
    }
}

// Encodes one code point into a roomy buffer; empty when it cannot be encoded.
Bytes encode(const ICharEncoding& enc, uint32_t cp)
{
    Bytes b(16, 0xEE);
    const uint32_t end = enc.encodeChar(cp, b.data(), static_cast<uint32_t>(b.size()), 3);
    EXPECT_GE(end, 3u);
    EXPECT_EQ(end - 3, enc.getEncodedSize(cp)) << std::hex << cp;
    EXPECT_EQ(b[end], 0xEE) << "wrote past the character";
    return Bytes(b.begin() + 3, b.begin() + end);
}

} // namespace

// --- Identity

TEST(CharEncoding, IdentityNamesAndSizes)
{
    struct Row {
        const ICharEncoding& enc;
        uint32_t id;
        const char* name;
        uint32_t maxSize;
    };
    const Row rows[] = {{utf8(), 0x38465455, "UTF-8", 4},
                        {utf16(), 0x36314655, "UTF-16", 4},
                        {utf32(), 0x32334655, "UTF-32", 4},
                        {latin1(), 0x3154414C, "Latin-1", 1}};
    for (const Row& r : rows) {
        EXPECT_EQ(r.enc.getId(), r.id);
        EXPECT_STREQ(r.enc.getName(), r.name);
        EXPECT_EQ(r.enc.getMaxCharSize(), r.maxSize);
        EXPECT_TRUE(r.enc.supportsReverse());
    }
    EXPECT_EQ(codePage().getId(), 0x47504443u);
    EXPECT_STREQ(codePage().getName(), "CodePage");
    EXPECT_GE(codePage().getMaxCharSize(), 1u);
    EXPECT_FALSE(codePage().supportsReverse());
    // The identifier's bytes in memory spell the short name.
    const uint32_t id = utf16().getId();
    EXPECT_EQ(0, std::memcmp(&id, "UF16", 4));
    // One shared instance per class.
    EXPECT_EQ(CUTF8CharEncoding::instance().get(), CUTF8CharEncoding::instance().get());
}

// --- UTF-8

TEST(UTF8Encoding, FirstAndLastSequenceOfEachLength)
{
    expectDecodes(utf8(), {0x00}, {0x0}, kValid);
    expectDecodes(utf8(), {0x7F}, {0x7F}, kValid);
    expectDecodes(utf8(), {0xC2, 0x80}, {0x80}, kValid);
    expectDecodes(utf8(), {0xDF, 0xBF}, {0x7FF}, kValid);
    expectDecodes(utf8(), {0xE1, 0x80, 0x80}, {0x1000}, kValid); // first three-byte form accepted
    expectDecodes(utf8(), {0xEF, 0xBF, 0xBF}, {0xFFFF}, kValid);
    expectDecodes(utf8(), {0xF1, 0x80, 0x80, 0x80}, {0x40000}, kValid); // first four-byte accepted
    expectDecodes(utf8(), {0xF4, 0x8F, 0xBF, 0xBF}, {0x10FFFF}, kValid);
    expectDecodes(utf8(), {0xC3, 0xA9}, {0xE9}, kValid);

    EXPECT_EQ(encode(utf8(), 0x7F), Bytes({0x7F}));
    EXPECT_EQ(encode(utf8(), 0x80), Bytes({0xC2, 0x80}));
    EXPECT_EQ(encode(utf8(), 0x7FF), Bytes({0xDF, 0xBF}));
    EXPECT_EQ(encode(utf8(), 0x800), Bytes({0xE0, 0xA0, 0x80}));
    EXPECT_EQ(encode(utf8(), 0xFFFF), Bytes({0xEF, 0xBF, 0xBF}));
    EXPECT_EQ(encode(utf8(), 0x10000), Bytes({0xF0, 0x90, 0x80, 0x80}));
    EXPECT_EQ(encode(utf8(), 0x10FFFF), Bytes({0xF4, 0x8F, 0xBF, 0xBF}));
    EXPECT_EQ(encode(utf8(), 0x110000), Bytes());
    EXPECT_EQ(encode(utf8(), 0xFFFFFFFF), Bytes());
}

// Leads without payload bits are rejected outright, even where the sequence is well formed (and
// made by the encoder itself); the lenient decoder then skips every byte of it.
TEST(UTF8Encoding, LeadsWithoutPayloadBitsAreRejected)
{
    expectDecodes(utf8(), {0xC0, 0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0xC0, 0xAF}, {}, kInvalid);
    expectDecodes(utf8(), {0xE0, 0xA0, 0x80}, {}, kInvalid);            // U+0800
    expectDecodes(utf8(), {0xE0, 0xA4, 0xB9}, {}, kInvalid);            // U+0939
    expectDecodes(utf8(), {0xE0, 0xBF, 0xBF}, {}, kInvalid);            // U+0FFF
    expectDecodes(utf8(), {0xF0, 0x90, 0x80, 0x80}, {}, kInvalid);      // U+10000
    expectDecodes(utf8(), {0xF0, 0x9F, 0x98, 0x80}, {}, kInvalid);      // U+1F600
    expectDecodes(utf8(), {0xF0, 0xBF, 0xBF, 0xBF}, {}, kInvalid);      // U+3FFFF
    expectDecodes(utf8(), {0x41, 0xE0, 0xA4, 0xB9, 0x42}, {0x41, 0x42}, kInvalid);
    // A round trip through the encoder loses such characters.
    const Bytes devanagari = encode(utf8(), 0x939);
    expectDecodes(utf8(), devanagari, {}, kInvalid);
}

TEST(UTF8Encoding, OverlongC1AndSurrogatesAreAccepted)
{
    expectDecodes(utf8(), {0xC1, 0x81}, {0x41}, kValid);
    expectDecodes(utf8(), {0xC1, 0xBF}, {0x7F}, kValid);
    expectDecodes(utf8(), {0xED, 0xA0, 0x80}, {0xD800}, kValid);
    expectDecodes(utf8(), {0xED, 0xBF, 0xBF}, {0xDFFF}, kValid);
    EXPECT_EQ(encode(utf8(), 0xD800), Bytes({0xED, 0xA0, 0x80}));
}

TEST(UTF8Encoding, ValuesAboveTheUnicodeRangeAndBadLeadsFail)
{
    expectDecodes(utf8(), {0xF4, 0x90, 0x80, 0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0xF7, 0xBF, 0xBF, 0xBF}, {}, kInvalid);
    expectDecodes(utf8(), {0xF8, 0x88, 0x80, 0x80, 0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0xFE}, {}, kInvalid);
    expectDecodes(utf8(), {0xFF}, {}, kInvalid);
    expectDecodes(utf8(), {0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0xBF, 0x41}, {0x41}, kInvalid);
    expectDecodes(utf8(), {0x41, 0xFF, 0x42}, {0x41, 0x42}, kInvalid);
}

TEST(UTF8Encoding, TruncatedAndInterruptedSequences)
{
    expectDecodes(utf8(), {0xC3}, {}, kInvalid);
    expectDecodes(utf8(), {0xE2, 0x82}, {}, kInvalid);
    expectDecodes(utf8(), {0xF1, 0x80, 0x80}, {}, kInvalid);
    expectDecodes(utf8(), {0x41, 0xC3}, {0x41}, kInvalid);
    expectDecodes(utf8(), {0xC3, 0x41}, {0x41}, kInvalid);
    expectDecodes(utf8(), {0xE2, 0x82, 0x41, 0xAC}, {0x41}, kInvalid);
    // A broken sequence does not swallow the valid one behind it.
    expectDecodes(utf8(), {0xE2, 0xE2, 0x82, 0xAC}, {0x20AC}, kInvalid);
    // A character must fit in the given length, whatever the buffer holds beyond it.
    const Bytes euro = {0xE2, 0x82, 0xAC};
    uint32_t cp = 0;
    EXPECT_EQ(utf8().decodeCharStrict(cp, euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().getCharSizeAt(euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().decodeCharStrict(cp, euro.data(), 3, 3), kFail);
}

TEST(UTF8Encoding, EncodeWritesNothingWhenTheCharacterDoesNotFit)
{
    Bytes b(4, 0xEE);
    EXPECT_EQ(utf8().encodeChar(0x20AC, b.data(), 4, 2), 2u);
    EXPECT_EQ(b, Bytes(4, 0xEE));
    EXPECT_EQ(utf8().encodeChar(0x20AC, b.data(), 4, 1), 4u);
    EXPECT_EQ(utf8().encodeChar('x', b.data(), 4, 4), 4u);
    EXPECT_EQ(utf8().encodeChar('x', b.data(), 4, 9), 9u); // offset beyond the end
}

TEST(UTF8Encoding, BackwardOperations)
{
    // A, é, invalid FF, €
    const Bytes b = {0x41, 0xC3, 0xA9, 0xFF, 0xE2, 0x82, 0xAC};
    const auto len = static_cast<uint32_t>(b.size());
    const ICharEncoding& e = utf8();

    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 7), 4u);
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 6), 4u); // inside the euro sign: its start
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 4), 1u); // FF is passed over
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 1), 0u);
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 0), kFail);

    uint32_t cp = 0;
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 7), 4u);
    EXPECT_EQ(cp, 0x20ACu);
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 6), kFail); // does not end at 6
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 4), kFail); // FF
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 3), 1u);
    EXPECT_EQ(cp, 0xE9u);
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 0), kFail);

    cp = 0;
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 6), 1u); // the cut euro sign is skipped
    EXPECT_EQ(cp, 0xE9u);
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 4), 1u);
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 1), 0u);
    EXPECT_EQ(cp, 0x41u);
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 0), kFail);

    uint32_t out[4] = {0, 0, 0, 0xDEADBEEF};
    uint32_t offsets[4] = {0, 0, 0, 0xDEADBEEF};
    uint32_t count = 0;
    EXPECT_EQ(e.decodePrevChars(out, 3, count, b.data(), len, len, offsets), 0u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(CodePoints(out, out + 3), CodePoints({0x20AC, 0xE9, 0x41}));
    EXPECT_EQ(CodePoints(offsets, offsets + 3), CodePoints({4, 1, 0}));
    EXPECT_EQ(out[3], 0xDEADBEEFu);
    EXPECT_EQ(offsets[3], 0xDEADBEEFu);
    EXPECT_EQ(e.decodePrevChars(out, 2, count, b.data(), len, len, offsets), 1u);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(e.decodePrevChars(out, 3, count, b.data(), len, 0, offsets), 0u);
    EXPECT_EQ(count, 0u);
}

// --- UTF-16

TEST(UTF16Encoding, BoundariesAndPairs)
{
    expectDecodes(utf16(), u16({0x0000}), {0x0}, kValid);
    expectDecodes(utf16(), u16({0xD7FF}), {0xD7FF}, kValid);
    expectDecodes(utf16(), u16({0xE000}), {0xE000}, kValid);
    expectDecodes(utf16(), u16({0xFFFF}), {0xFFFF}, kValid);
    expectDecodes(utf16(), u16({0xD800, 0xDC00}), {0x10000}, kValid);
    expectDecodes(utf16(), u16({0xD83D, 0xDE00}), {0x1F600}, kValid);
    expectDecodes(utf16(), u16({0xDBFF, 0xDFFF}), {0x10FFFF}, kValid);

    EXPECT_EQ(encode(utf16(), 0xD7FF), u16({0xD7FF}));
    EXPECT_EQ(encode(utf16(), 0x10000), u16({0xD800, 0xDC00}));
    EXPECT_EQ(encode(utf16(), 0x1F600), u16({0xD83D, 0xDE00}));
    EXPECT_EQ(encode(utf16(), 0x10FFFF), u16({0xDBFF, 0xDFFF}));
    // Surrogate code points and values above U+10FFFF cannot be encoded.
    EXPECT_EQ(encode(utf16(), 0xD800), Bytes());
    EXPECT_EQ(encode(utf16(), 0xDBFF), Bytes());
    EXPECT_EQ(encode(utf16(), 0xDC00), Bytes());
    EXPECT_EQ(encode(utf16(), 0xDFFF), Bytes());
    EXPECT_EQ(encode(utf16(), 0x110000), Bytes());

    Bytes b(4, 0xEE);
    EXPECT_EQ(utf16().encodeChar(0x1F600, b.data(), 4, 2), 2u); // a pair needs 4 bytes
    EXPECT_EQ(b, Bytes(4, 0xEE));
    EXPECT_EQ(utf16().encodeChar('x', b.data(), 3, 2), 2u);
}

TEST(UTF16Encoding, LoneSurrogatesAndPartialUnitsAreSkipped)
{
    expectDecodes(utf16(), u16({0xDE00}), {}, kInvalid);
    expectDecodes(utf16(), u16({0x41, 0xDE00, 0x42}), {0x41, 0x42}, kInvalid);
    expectDecodes(utf16(), u16({0xD83D}), {}, kInvalid);
    expectDecodes(utf16(), u16({0xD83D, 0x41}), {0x41}, kInvalid);
    expectDecodes(utf16(), u16({0x41, 0xD83D}), {0x41}, kInvalid);
    expectDecodes(utf16(), u16({0xD800, 0xD83D, 0xDE00}), {0x1F600}, kInvalid);
    expectDecodes(utf16(), u16({0xDE00, 0xD83D}), {}, kInvalid);
    // An odd trailing byte is no unit.
    expectDecodes(utf16(), {0x41, 0x00, 0x42}, {0x41}, kInvalid);
    expectDecodes(utf16(), {0x3D, 0xD8, 0x00}, {}, kInvalid);
    expectDecodes(utf16(), {0x3D, 0xD8, 0x00, 0xDE, 0x42}, {0x1F600}, kInvalid);
}

TEST(UTF16Encoding, BackwardOperationsKeepPairsTogether)
{
    const Bytes b = u16({0x41, 0xD83D, 0xDE00, 0xDE00, 0x42});
    const auto len = static_cast<uint32_t>(b.size());
    const ICharEncoding& e = utf16();

    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 10), 8u);
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 8), 2u); // the lone DE00 is passed over
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 6), 2u); // the pair, not its low half
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 2), 0u);
    EXPECT_EQ(e.findPrevCharStart(b.data(), len, 0), kFail);

    uint32_t cp = 0;
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 6), 2u);
    EXPECT_EQ(cp, 0x1F600u);
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 8), kFail); // lone low surrogate
    EXPECT_EQ(e.decodePrevCharStrict(cp, b.data(), len, 4), kFail); // a high one cut off
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 8), 2u);
    EXPECT_EQ(cp, 0x1F600u);
    EXPECT_EQ(e.decodePrevChar(cp, b.data(), len, 4), 0u);
    EXPECT_EQ(cp, 0x41u);

    uint32_t out[16];
    uint32_t offsets[16];
    uint32_t count = 0;
    EXPECT_EQ(e.decodePrevChars(out, 16, count, b.data(), len, len, offsets), 0u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(CodePoints(out, out + 3), CodePoints({0x42, 0x1F600, 0x41}));
    EXPECT_EQ(CodePoints(offsets, offsets + 3), CodePoints({8, 2, 0}));

    // An odd end reads from the last whole unit.
    const Bytes odd = {0x41, 0x00, 0x42};
    EXPECT_EQ(e.findPrevCharStart(odd.data(), 3, 3), 0u);
    EXPECT_EQ(e.decodePrevChar(cp, odd.data(), 3, 3), 0u);
    EXPECT_EQ(cp, 0x41u);
}

TEST(UTF16Encoding, TerminatedLengthCountsUnits)
{
    const Bytes b = u16({0x41, 0x100, 0xD83D, 0xDE00, 0x0000, 0x42});
    EXPECT_EQ(utf16().getTerminatedLength(b.data()), 8u);
    const Bytes empty = u16({0});
    EXPECT_EQ(utf16().getTerminatedLength(empty.data()), 0u);
    // A zero byte is not a zero unit.
    const Bytes latin = {0x41, 0x00, 0x00, 0x01, 0x00, 0x00};
    EXPECT_EQ(utf16().getTerminatedLength(latin.data()), 4u);
}

// --- UTF-32

TEST(UTF32Encoding, AnyValueBothWays)
{
    for (uint32_t v : {0u, 0x41u, 0xD800u, 0xDFFFu, 0x10FFFFu, 0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(encode(utf32(), v), u32({v}));
        expectDecodes(utf32(), u32({v}), {v}, kValid);
    }
}

TEST(UTF32Encoding, TrailingPartialUnitIsDropped)
{
    Bytes seven = u32({0x41});
    seven.insert(seven.end(), {0x42, 0x00, 0x00});
    expectDecodes(utf32(), seven, {0x41}, kInvalid);
    const auto len = static_cast<uint32_t>(seven.size());
    EXPECT_EQ(utf32().countChars(seven.data(), len, 0), 1u);
    EXPECT_EQ(utf32().countChars(seven.data(), len, 4), 0u);
    EXPECT_EQ(utf32().countChars(seven.data(), len, 9), 0u);
    EXPECT_EQ(utf32().getCharSizeAt(seven.data(), len, 0), 4u);
    EXPECT_EQ(utf32().getCharSizeAt(seven.data(), len, 4), kFail);
    EXPECT_EQ(utf32().getCharOffset(seven.data(), len, 1), 4u);
    EXPECT_EQ(utf32().getCharOffset(seven.data(), len, 2), kFail);
    EXPECT_EQ(utf32().findCharStart(seven.data(), len, 4), kFail);
    uint32_t cp = 0;
    EXPECT_EQ(utf32().findPrevCharStart(seven.data(), len, len), 0u);
    EXPECT_EQ(utf32().decodePrevCharStrict(cp, seven.data(), len, len), kFail);
    EXPECT_EQ(utf32().decodePrevChar(cp, seven.data(), len, len), 0u);
    EXPECT_EQ(cp, 0x41u);

    Bytes b(7, 0xEE);
    EXPECT_EQ(utf32().encodeChar(0x41, b.data(), 7, 4), 4u);
    EXPECT_EQ(b, Bytes(7, 0xEE));
}

TEST(UTF32Encoding, BackwardAndTerminated)
{
    const Bytes b = u32({0x41, 0xFFFFFFFF, 0x1F600, 0, 0x42});
    const auto len = static_cast<uint32_t>(b.size());
    EXPECT_EQ(utf32().getTerminatedLength(b.data()), 12u);
    uint32_t out[16];
    uint32_t offsets[16];
    uint32_t count = 0;
    EXPECT_EQ(utf32().decodePrevChars(out, 2, count, b.data(), len, len, offsets), 12u);
    EXPECT_EQ(CodePoints(out, out + count), CodePoints({0x42, 0}));
    EXPECT_EQ(CodePoints(offsets, offsets + count), CodePoints({16, 12}));
    uint32_t cp = 0;
    EXPECT_EQ(utf32().decodePrevCharStrict(cp, b.data(), len, 12), 8u);
    EXPECT_EQ(cp, 0x1F600u);
    EXPECT_EQ(utf32().findPrevCharStart(b.data(), len, 6), 4u);
}

// --- Latin-1

TEST(Latin1Encoding, EveryByteIsItsCodePoint)
{
    Bytes all(256);
    CodePoints cps(256);
    for (uint32_t i = 0; i < 256; ++i) {
        all[i] = static_cast<uint8_t>(i);
        cps[i] = i;
        EXPECT_EQ(encode(latin1(), i), Bytes({static_cast<uint8_t>(i)}));
    }
    expectDecodes(latin1(), all, cps, kValid);
}

TEST(Latin1Encoding, WritesAQuestionMarkForEverythingElse)
{
    for (uint32_t cp : {0x100u, 0x20ACu, 0xFFFDu, 0x1F600u, 0xFFFFFFFFu}) {
        EXPECT_EQ(latin1().getEncodedSize(cp), 1u);
        EXPECT_EQ(encode(latin1(), cp), Bytes({'?'})) << std::hex << cp;
    }
    Bytes b(2, 0xEE);
    EXPECT_EQ(latin1().encodeChar('x', b.data(), 2, 2), 2u);
    EXPECT_EQ(b, Bytes(2, 0xEE));
}

TEST(Latin1Encoding, BackwardOperations)
{
    const Bytes b = {0x41, 0xFF, 0x00};
    uint32_t cp = 0;
    EXPECT_EQ(latin1().findPrevCharStart(b.data(), 3, 3), 2u);
    EXPECT_EQ(latin1().decodePrevCharStrict(cp, b.data(), 3, 2), 1u);
    EXPECT_EQ(cp, 0xFFu);
    EXPECT_EQ(latin1().decodePrevChar(cp, b.data(), 3, 1), 0u);
    EXPECT_EQ(cp, 0x41u);
    EXPECT_EQ(latin1().decodePrevChar(cp, b.data(), 3, 0), kFail);
}

// --- Every encoding

// Character offsets: n = count is the end of the text, count + 1 fails.
TEST(CharEncoding, CharOffsetAtAndBeyondTheEnd)
{
    struct Row {
        const ICharEncoding& enc;
        Bytes bytes;
        uint32_t count;
    };
    const Row rows[] = {
        {utf8(), {0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC}, 3},
        {utf16(), u16({0x41, 0xD83D, 0xDE00, 0x42}), 3},
        {utf32(), u32({0x41, 0x1F600, 0x42}), 3},
        {latin1(), {0x41, 0xE9, 0x42}, 3},
        {codePage(), {0x41, 0xE9, 0x42}, 3},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.enc.getName());
        const auto len = static_cast<uint32_t>(r.bytes.size());
        EXPECT_EQ(r.enc.countChars(r.bytes.data(), len, 0), r.count);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), len, 0), 0u);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), len, r.count), len);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), len, r.count + 1), kFail);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), len, 0xFFFFFFFF), kFail);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), 0, 0), 0u);
        EXPECT_EQ(r.enc.getCharOffset(r.bytes.data(), 0, 1), kFail);
        EXPECT_EQ(r.enc.countChars(r.bytes.data(), len, len), 0u);
        EXPECT_EQ(r.enc.countChars(r.bytes.data(), len, len + 5), 0u);
    }
    // Invalid bytes are skipped on the way.
    const Bytes b = {0xFF, 0x41, 0xFF, 0xFF, 0xC3, 0xA9, 0xFF};
    EXPECT_EQ(utf8().countChars(b.data(), 7, 0), 2u);
    EXPECT_EQ(utf8().getCharOffset(b.data(), 7, 1), 2u);
    EXPECT_EQ(utf8().getCharOffset(b.data(), 7, 2), 6u);
    EXPECT_EQ(utf8().getCharOffset(b.data(), 7, 3), kFail);
    EXPECT_EQ(utf8().findCharStart(b.data(), 7, 2), 4u);
    EXPECT_EQ(utf8().findCharStart(b.data(), 7, 6), kFail);
    EXPECT_EQ(utf8().findCharStart(b.data(), 7, 7), kFail);
}

// Blocks of up to 16 characters per call; the offsets array says where each character was looked
// for, so that a reader can go back to a character's position.
TEST(CharEncoding, BlockDecodingWithOffsets)
{
    Bytes b;
    for (int i = 0; i < 20; ++i)
        b.push_back(static_cast<uint8_t>('a' + i));
    b.insert(b.begin() + 17, {0xFF, 0xFE});  // invalid bytes before the 18th character
    b.insert(b.begin() + 3, {0xC3, 0xA9});   // é as the fourth character
    const auto len = static_cast<uint32_t>(b.size());

    uint32_t out[17];
    uint32_t offsets[17];
    std::fill(std::begin(out), std::end(out), 0xDEADBEEF);
    std::fill(std::begin(offsets), std::end(offsets), 0xDEADBEEF);
    uint32_t count = 0;
    const uint32_t next = utf8().decodeChars(out, 16, count, b.data(), len, 0, offsets);
    EXPECT_EQ(count, 16u);
    EXPECT_EQ(next, 17u);
    EXPECT_EQ(out[3], 0xE9u);
    EXPECT_EQ(offsets[3], 3u);
    EXPECT_EQ(offsets[4], 5u);
    EXPECT_EQ(offsets[15], 16u);
    EXPECT_EQ(out[16], 0xDEADBEEFu);
    EXPECT_EQ(offsets[16], 0xDEADBEEFu);

    const uint32_t end = utf8().decodeChars(out, 16, count, b.data(), len, next, offsets);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(end, len);
    EXPECT_EQ(out[0], static_cast<uint32_t>('a' + 15));
    EXPECT_EQ(offsets[0], 17u);
    EXPECT_EQ(out[1], static_cast<uint32_t>('a' + 16));
    EXPECT_EQ(offsets[1], 18u); // looked for at the first invalid byte, found two bytes on

    EXPECT_EQ(utf8().decodeChars(out, 16, count, b.data(), len, len, offsets), len);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(utf8().decodeChars(out, 0, count, b.data(), len, 0, nullptr), 0u);
    EXPECT_EQ(count, 0u);
    const Bytes bad = {0xFF, 0xFF};
    EXPECT_EQ(utf8().decodeChars(out, 16, count, bad.data(), 2, 0, nullptr), 0u);
    EXPECT_EQ(count, 0u);
}

// --- Code page

TEST(CodePageEncoding, DecodesOneByteAtATime)
{
    Bytes all(256);
    for (uint32_t i = 0; i < 256; ++i)
        all[i] = static_cast<uint8_t>(i);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 0), 256u);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 200), 56u);
    uint32_t out[16];
    uint32_t count = 0;
    EXPECT_EQ(codePage().decodeChars(out, 16, count, all.data(), 256, 0x41, nullptr), 0x51u);
    EXPECT_EQ(count, 16u);
    EXPECT_EQ(out[0], 0x41u);
    Bytes terminated(all.begin() + 1, all.end());
    terminated.push_back(0);
    EXPECT_EQ(codePage().getTerminatedLength(terminated.data()), 255u);
    for (uint32_t cp = 0; cp < 0x80; ++cp)
        EXPECT_EQ(encode(codePage(), cp), Bytes({static_cast<uint8_t>(cp)}));
}

TEST(CodePageEncoding, CannotEncodeBeyondTheBasicPlane)
{
    for (uint32_t cp : {0x10000u, 0x1F600u, 0x10FFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(codePage().getEncodedSize(cp), 0u);
        Bytes b(8, 0xEE);
        EXPECT_EQ(codePage().encodeChar(cp, b.data(), 8, 3), 3u);
        EXPECT_EQ(b, Bytes(8, 0xEE));
    }
}

// With fewer than the maximum character size left, a character that cannot be placed answers 0,
// not the offset; callers tell "full" from "skipped" by that.
TEST(CodePageEncoding, NearTheEndEncodeCharAnswersZero)
{
    Bytes b(4, 0xEE);
    const uint32_t max = codePage().getMaxCharSize();
    ASSERT_LE(max, 4u);
    EXPECT_EQ(codePage().encodeChar('x', b.data(), 4, 4), 0u);
    EXPECT_EQ(codePage().encodeChar('x', b.data(), 2, 2), 0u);
    EXPECT_EQ(codePage().encodeChar('x', b.data(), 4, 3), 4u);
    EXPECT_EQ(b[3], 'x');
    // A character outside the code page, with room to spare, leaves the offset as it was.
    EXPECT_EQ(codePage().encodeChar(0x4E00, b.data(), 4, 1), 1u);
}

TEST(CodePageEncoding, BackwardOperationsThrowMethodNotImplemented)
{
    const Bytes b = {0x41, 0x42};
    uint32_t cp = 0;
    uint32_t out[16];
    uint32_t count = 0;
    EXPECT_THROW(codePage().findPrevCharStart(b.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevCharStrict(cp, b.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevChar(cp, b.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevChars(out, 16, count, b.data(), 2, 2, nullptr),
                 CMethodNotImplementedError);
    try {
        codePage().decodePrevChar(cp, b.data(), 2, 2);
    } catch (const CMethodNotImplementedError& e) {
        EXPECT_NE(e.getDescription()->toUTF8().find("Method not implemented"), std::string::npos);
    }
}

} // namespace kore_test
