// The encodings against lenient reading as it is defined - strict decoding tried at each unit,
// whatever fails skipped - so that one table of byte sequences checks every forward, backward and
// block operation at every offset; then encoding, identity and the code page's own rules.

#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace kore_test {

using namespace kore;

namespace {

using Bytes = std::vector<uint8_t>;
using CodePoints = std::vector<uint32_t>;
constexpr uint32_t kFail = ICharEncoding::kFail;
constexpr uint32_t kMark = 0xDEADBEEF;

const ICharEncoding& utf8()
{
    return *CUTF8CharEncoding::instance();
}
const ICharEncoding& utf16()
{
    return *CUTF16CharEncoding::instance();
}
const ICharEncoding& utf32()
{
    return *CUTF32CharEncoding::instance();
}
const ICharEncoding& latin1()
{
    return *CLatin1CharEncoding::instance();
}
const ICharEncoding& codePage()
{
    return *CCPCharEncoding::instance();
}

template <class Units>
Bytes units(const Units& list)
{
    Bytes b;
    for (auto u : list)
        for (size_t i = 0; i < sizeof(u); ++i)
            b.push_back(static_cast<uint8_t>(u >> (8 * i)));
    return b;
}
Bytes u16(std::initializer_list<uint16_t> list)
{
    return units(list);
}
Bytes u32(std::initializer_list<uint32_t> list)
{
    return units(list);
}
Bytes bytesBelow(uint32_t end)
{
    Bytes b(end);
    std::iota(b.begin(), b.end(), uint8_t{0});
    return b;
}

struct Char {
    uint32_t start, end, cp;
};

// Reads the buffer in blocks, forwards or backwards, and checks each block against `chars`: the
// code points; the offsets (forwards where a character was looked for, that is just after the one
// before; backwards its start); the offset returned; nothing written past `block`.
void expectBlocks(const ICharEncoding& enc, const Bytes& b, const std::vector<Char>& chars, uint32_t block, bool back)
{
    const auto len = static_cast<uint32_t>(b.size());
    size_t done = 0;
    for (uint32_t off = back ? len : 0, count = block; count == block;) {
        CodePoints cps(block + 1, kMark), offsets(block + 1, kMark);
        const uint32_t from = off;
        off = back ? enc.decodePrevChars(cps.data(), block, count, b.data(), len, off, offsets.data())
                   : enc.decodeChars(cps.data(), block, count, b.data(), len, off, offsets.data());
        ASSERT_LE(done + count, chars.size()) << "block " << block;
        EXPECT_EQ(cps[block], kMark);
        EXPECT_EQ(offsets[block], kMark);
        for (uint32_t i = 0; i < count; ++i, ++done) {
            const Char& c = chars[back ? chars.size() - 1 - done : done];
            EXPECT_EQ(cps[i], c.cp) << "block " << block;
            EXPECT_EQ(offsets[i], back ? c.start : done ? chars[done - 1].end : 0) << "block " << block;
        }
        const Char* last = count == 0 ? nullptr : &chars[back ? chars.size() - done : done - 1];
        EXPECT_EQ(off, !last ? from : back ? last->start : last->end) << "block " << block;
    }
    EXPECT_EQ(done, chars.size()) << "block " << block;
}

enum Strictness { kValid, kInvalid };

// `b` reads as `expected`, strictly from end to end (kValid) or only leniently (kInvalid), and every
// operation agrees with that reading at every unit offset and a little beyond the end.
void expectDecodes(const ICharEncoding& enc, const Bytes& b, const CodePoints& expected, Strictness strictness)
{
    SCOPED_TRACE(testing::Message() << enc.getName() << " " << testing::PrintToString(b));
    const auto len = static_cast<uint32_t>(b.size());
    const uint32_t unit = enc.getId() == CUTF16CharEncoding::kId ? 2 : enc.getId() == CUTF32CharEncoding::kId ? 4 : 1;
    std::vector<Char> chars;
    CodePoints cps;
    bool valid = true;
    for (uint32_t off = 0, cp = 0, end = 0; off < len; off = end == kFail ? off + unit : end) {
        end = enc.decodeCharStrict(cp, b.data(), len, off);
        valid = valid && end != kFail;
        if (end != kFail) {
            chars.push_back({off, end, cp});
            cps.push_back(cp);
        }
    }
    EXPECT_EQ(cps, expected);
    EXPECT_EQ(valid, strictness == kValid);
    for (uint32_t block : {1u, 3u, 16u}) {
        expectBlocks(enc, b, chars, block, false);
        if (enc.supportsReverse())
            expectBlocks(enc, b, chars, block, true);
    }
    for (uint32_t n = 0; n <= chars.size() + 1; ++n)
        EXPECT_EQ(enc.getCharOffset(b.data(), len, n), n == 0 ? 0 : n <= chars.size() ? chars[n - 1].end : kFail);
    EXPECT_EQ(enc.getCharOffset(b.data(), len, kFail), kFail);
    for (uint32_t off = 0; off <= len + 4; ++off) {
        if (off % unit != 0 && off != len)
            continue;
        // The first character that starts at or after `off`, the last one before it, the last
        // one that ends by it, and how many start at or after it.
        const Char *next = nullptr, *before = nullptr, *ended = nullptr;
        uint32_t after = 0;
        for (const Char& c : chars) {
            if (c.start < off)
                before = &c;
            else if (!next)
                next = &c;
            after += c.start >= off;
            if (c.end <= off)
                ended = &c;
        }
        uint32_t cp = kMark;
        EXPECT_EQ(enc.countChars(b.data(), len, off), after) << "at " << off;
        EXPECT_EQ(enc.findCharStart(b.data(), len, off), next ? next->start : kFail) << "at " << off;
        EXPECT_EQ(enc.getCharSizeAt(b.data(), len, off), next && next->start == off ? next->end - off : kFail);
        EXPECT_EQ(enc.decodeChar(cp, b.data(), len, off), next ? next->end : kFail) << "at " << off;
        EXPECT_EQ(cp, next ? next->cp : cp);
        if (off > len || !enc.supportsReverse())
            continue;
        EXPECT_EQ(enc.findPrevCharStart(b.data(), len, off), before ? before->start : kFail) << "at " << off;
        EXPECT_EQ(enc.decodePrevChar(cp, b.data(), len, off), ended ? ended->start : kFail) << "at " << off;
        EXPECT_EQ(cp, ended ? ended->cp : cp);
        const bool endsHere = ended && ended->end == off;
        EXPECT_EQ(enc.decodePrevCharStrict(cp, b.data(), len, off), endsHere ? ended->start : kFail) << "at " << off;
        EXPECT_EQ(cp, endsHere ? ended->cp : cp);
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

struct Decoding {
    Bytes bytes;
    CodePoints expected;
    Strictness strictness;
};
struct Encoding {
    uint32_t cp;
    Bytes bytes;
};

// Every buffer, and the empty one, read by expectDecodes; every code point encoded as given.
void expectCodec(const ICharEncoding& enc, std::initializer_list<Decoding> decodings,
                 std::initializer_list<Encoding> encodings)
{
    expectDecodes(enc, {}, {}, kValid);
    for (const Decoding& d : decodings)
        expectDecodes(enc, d.bytes, d.expected, d.strictness);
    for (const Encoding& e : encodings)
        EXPECT_EQ(encode(enc, e.cp), e.bytes) << enc.getName() << std::hex << " U+" << e.cp;
}

} // namespace

TEST(UTF8Encoding, DecodesAndEncodesAsDefined)
{
    // More than a block of 16 characters, with é and invalid bytes in the second block.
    const std::string letters = "abc\xC3\xA9"
                                "defghijklmnopq\xFF\xFE"
                                "rst";
    const std::u16string letterCps = u"abc\u00E9defghijklmnopqrst";
    expectCodec(utf8(),
                {// The first and last sequence of each length; overlong C1 leads and surrogates.
                 {{0x00, 0x7F, 0xC2, 0x80, 0xDF, 0xBF, 0xE1, 0x80, 0x80, 0xEF,
                   0xBF, 0xBF, 0xF1, 0x80, 0x80, 0x80, 0xF4, 0x8F, 0xBF, 0xBF},
                  {0x0, 0x7F, 0x80, 0x7FF, 0x1000, 0xFFFF, 0x40000, 0x10FFFF},
                  kValid},
                 {{0xC1, 0x81, 0xC1, 0xBF, 0xED, 0xA0, 0x80, 0xED, 0xBF, 0xBF}, {0x41, 0x7F, 0xD800, 0xDFFF}, kValid},
                 // Leads without payload bits (C0, E0, F0) are rejected even where the sequence is
                 // well formed (U+0800-U+0FFF, U+10000-U+3FFFF); every byte is skipped.
                 {{0xC0, 0x80}, {}, kInvalid},
                 {{0xE0, 0xA0, 0x80}, {}, kInvalid},
                 {{0xE0, 0xBF, 0xBF}, {}, kInvalid},
                 {{0xF0, 0x90, 0x80, 0x80}, {}, kInvalid},
                 {{0xF0, 0xBF, 0xBF, 0xBF}, {}, kInvalid},
                 {{0x41, 0xE0, 0xA4, 0xB9, 0xF0, 0x9F, 0x98, 0x80, 0x42}, {0x41, 0x42}, kInvalid},
                 // Above U+10FFFF, five-byte and FE leads, stray continuation and FF bytes.
                 {{0xF4, 0x90, 0x80, 0x80}, {}, kInvalid},
                 {{0xF7, 0xBF, 0xBF, 0xBF}, {}, kInvalid},
                 {{0xF8, 0x88, 0x80, 0x80, 0x80}, {}, kInvalid},
                 {{0xFE}, {}, kInvalid},
                 {{0xBF, 0x41}, {0x41}, kInvalid},
                 {{0x41, 0xFF, 0x42}, {0x41, 0x42}, kInvalid},
                 // Truncated and interrupted; a broken sequence does not swallow the valid one behind it.
                 {{0xE2, 0x82}, {}, kInvalid},
                 {{0xF1, 0x80, 0x80}, {}, kInvalid},
                 {{0x41, 0xC3}, {0x41}, kInvalid},
                 {{0xC3, 0x41}, {0x41}, kInvalid},
                 {{0xE2, 0x82, 0x41, 0xAC}, {0x41}, kInvalid},
                 {{0xE2, 0xE2, 0x82, 0xAC}, {0x20AC}, kInvalid},
                 {{0x41, 0xC3, 0xA9, 0xFF, 0xE2, 0x82, 0xAC}, {0x41, 0xE9, 0x20AC}, kInvalid},
                 {Bytes(letters.begin(), letters.end()), CodePoints(letterCps.begin(), letterCps.end()), kInvalid}},
                {{0x7F, {0x7F}},
                 {0x80, {0xC2, 0x80}},
                 {0x7FF, {0xDF, 0xBF}},
                 {0x800, {0xE0, 0xA0, 0x80}},
                 {0xFFFF, {0xEF, 0xBF, 0xBF}},
                 {0x10000, {0xF0, 0x90, 0x80, 0x80}},
                 {0x10FFFF, {0xF4, 0x8F, 0xBF, 0xBF}},
                 {0xD800, {0xED, 0xA0, 0x80}},
                 {0x110000, {}},
                 {0xFFFFFFFF, {}}});
    // A character must fit in the given length, whatever the buffer holds beyond it.
    const Bytes euro = {0xE2, 0x82, 0xAC};
    uint32_t cp = 0, count = 99, out[1];
    EXPECT_EQ(utf8().decodeCharStrict(cp, euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().getCharSizeAt(euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().decodeChars(out, 0, count, euro.data(), 3, 0, nullptr), 0u);
    EXPECT_EQ(count, 0u);
}

TEST(UTF16Encoding, DecodesAndEncodesAsDefined)
{
    expectCodec(utf16(),
                {// The units around the surrogates, pairs, lone surrogates, odd trailing bytes.
                 {u16({0x0000, 0xD7FF, 0xE000, 0xFFFF, 0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}),
                  {0x0, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x1F600, 0x10FFFF},
                  kValid},
                 {u16({0x41, 0xDE00, 0x42}), {0x41, 0x42}, kInvalid},
                 {u16({0x41, 0xD83D}), {0x41}, kInvalid},
                 {u16({0xD83D, 0x41}), {0x41}, kInvalid},
                 {u16({0xDE00, 0xD83D}), {}, kInvalid},
                 {u16({0xD800, 0xD83D, 0xDE00}), {0x1F600}, kInvalid},
                 {u16({0x41, 0xD83D, 0xDE00, 0xDE00, 0x42}), {0x41, 0x1F600, 0x42}, kInvalid},
                 {{0x41, 0x00, 0x42}, {0x41}, kInvalid},
                 {{0x3D, 0xD8, 0x00}, {}, kInvalid},
                 {{0x3D, 0xD8, 0x00, 0xDE, 0x42}, {0x1F600}, kInvalid}},
                {{0xD7FF, u16({0xD7FF})},
                 {0x10000, u16({0xD800, 0xDC00})},
                 {0x1F600, u16({0xD83D, 0xDE00})},
                 {0x10FFFF, u16({0xDBFF, 0xDFFF})},
                 {0xD800, {}},
                 {0xDBFF, {}},
                 {0xDC00, {}},
                 {0xDFFF, {}},
                 {0x110000, {}}});
}

// UTF-32 takes any value both ways and drops a trailing partial unit; in Latin-1 every byte is
// its code point and everything else is written as a question mark; the code page has at least
// ASCII and nothing beyond the Basic Multilingual Plane.
TEST(CharEncoding, UTF32Latin1AndCodePageDecodeAndEncodeAsDefined)
{
    const CodePoints anyValue = {0x41, 0xFFFFFFFF, 0x1F600, 0, 0xD800, 0xDFFF, 0x110000, 0x80000000, 0x10FFFF};
    Bytes partialUnit = u32({0x41});
    partialUnit.insert(partialUnit.end(), {0x42, 0x00, 0x00});
    expectCodec(utf32(), {{units(anyValue), anyValue, kValid}, {partialUnit, {0x41}, kInvalid}}, {});
    const Bytes all = bytesBelow(256);
    expectCodec(latin1(), {{all, CodePoints(all.begin(), all.end()), kValid}},
                {{0x100, {'?'}}, {0x20AC, {'?'}}, {0xFFFFFFFF, {'?'}}});
    expectCodec(codePage(), {{bytesBelow(128), CodePoints(all.begin(), all.begin() + 128), kValid}},
                {{0x10000, {}}, {0x10FFFF, {}}, {0xFFFFFFFF, {}}});
    for (uint32_t v : anyValue)
        EXPECT_EQ(encode(utf32(), v), u32({v}));
    for (uint32_t cp = 0; cp < 256; ++cp)
        EXPECT_EQ(encode(latin1(), cp), Bytes({static_cast<uint8_t>(cp)}));
    for (uint32_t cp = 0; cp < 0x80; ++cp)
        EXPECT_EQ(encode(codePage(), cp), Bytes({static_cast<uint8_t>(cp)}));
}

// A character that does not fit writes nothing and leaves the offset, except on the code page:
// with fewer than its maximum character size left it answers 0, so callers tell "full" from
// "skipped".
TEST(CharEncoding, CharacterThatDoesNotFit)
{
    const struct {
        const ICharEncoding& enc;
        uint32_t cp, len, off, want;
    } rows[] = {
        {utf8(), 0x20AC, 4, 2, 2},  {utf8(), 0x20AC, 4, 1, 4},   {utf8(), 'x', 4, 4, 4},
        {utf8(), 'x', 4, 9, 9},     {utf16(), 0x1F600, 4, 2, 2}, {utf16(), 'x', 3, 2, 2},
        {utf32(), 0x41, 7, 4, 4},   {latin1(), 'x', 2, 2, 2},    {codePage(), 'x', 4, 4, 0},
        {codePage(), 'x', 2, 2, 0}, {codePage(), 'x', 4, 3, 4},  {codePage(), 0x4E00, 4, 1, 1},
    };
    for (const auto& r : rows) {
        Bytes b(16, 0xEE);
        EXPECT_EQ(r.enc.encodeChar(r.cp, b.data(), r.len, r.off), r.want) << r.enc.getName() << " " << r.off;
        Bytes expected(16, 0xEE);
        if (r.want > r.off) {
            const Bytes e = encode(r.enc, r.cp);
            std::copy(e.begin(), e.end(), expected.begin() + r.off);
        }
        EXPECT_EQ(b, expected);
    }
}

TEST(CharEncoding, IdentityNamesAndSizes)
{
    // The identifier's bytes in memory spell a short name; the code page's size is its runtime's.
    const struct {
        const ICharEncoding& enc;
        const char *id, *name;
        uint32_t maxSize;
    } rows[] = {{utf8(), "UTF8", "UTF-8", 4},
                {utf16(), "UF16", "UTF-16", 4},
                {utf32(), "UF32", "UTF-32", 4},
                {latin1(), "LAT1", "Latin-1", 1},
                {codePage(), "CDPG", "CodePage", 0}};
    for (const auto& r : rows) {
        const uint32_t id = r.enc.getId();
        EXPECT_EQ(0, std::memcmp(&id, r.id, 4)) << r.name;
        EXPECT_STREQ(r.enc.getName(), r.name);
        EXPECT_EQ(r.enc.supportsReverse(), r.maxSize != 0) << r.name;
        EXPECT_TRUE(r.maxSize == 0 || r.enc.getMaxCharSize() == r.maxSize) << r.name;
    }
    EXPECT_GE(codePage().getMaxCharSize(), 1u);
    EXPECT_EQ(CUTF8CharEncoding::instance().get(), CUTF8CharEncoding::instance().get());
}

TEST(CharEncoding, TerminatedLengthCountsUnitsUpToAZeroUnit)
{
    Bytes from1 = bytesBelow(256);
    from1.push_back(0);
    const struct {
        const ICharEncoding& enc;
        Bytes bytes;
        uint32_t length;
    } rows[] = {{utf16(), u16({0x41, 0x100, 0xD83D, 0xDE00, 0, 0x42}), 8},
                {utf16(), u16({0}), 0},
                {utf16(), {0x41, 0x00, 0x00, 0x01, 0x00, 0x00}, 4}, // a zero byte is not a zero unit
                {utf32(), u32({0x41, 0xFFFFFFFF, 0x1F600, 0, 0x42}), 12},
                {codePage(), Bytes(from1.begin() + 1, from1.end()), 255}};
    for (const auto& r : rows)
        EXPECT_EQ(r.enc.getTerminatedLength(r.bytes.data()), r.length) << r.enc.getName();
}

// One byte is one character, whatever it decodes to; backward reading is not supported.
TEST(CodePageEncoding, OneByteACharacterAndForwardsOnly)
{
    const Bytes all = bytesBelow(256);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 0), 256u);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 200), 56u);
    EXPECT_EQ(codePage().getCharOffset(all.data(), 256, 256), 256u);
    uint32_t cp = 0, count = 0, out[16];
    EXPECT_THROW(codePage().findPrevCharStart(all.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevCharStrict(cp, all.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevChars(out, 16, count, all.data(), 2, 2, nullptr), CMethodNotImplementedError);
    try {
        codePage().decodePrevChar(cp, all.data(), 2, 2);
        ADD_FAILURE() << "no CMethodNotImplementedError";
    } catch (const CMethodNotImplementedError& e) {
        EXPECT_NE(e.getDescription()->toUTF8().find("Method not implemented"), std::string::npos);
    }
}

} // namespace kore_test
