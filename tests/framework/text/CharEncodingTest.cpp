// The encodings against lenient reading as it is defined - strict decoding tried at each unit,
// whatever fails skipped - so that one table of byte sequences checks every forward, backward and
// block operation at every offset; then a round trip against a model of what each encoding can
// carry, identity and the code page's own rules.

#include "FrameworkTest.h"

#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"

#include <cstring>
#include <functional>
#include <numeric>
#include <random>

namespace kore_test {
namespace {

using Bytes = std::vector<uint8_t>;
using CodePoints = std::vector<uint32_t>;
constexpr uint32_t kFail = ICharEncoding::kFail;
constexpr uint32_t kMark = 0xDEADBEEF;

const auto utf8 = []() -> const ICharEncoding& { return *CUTF8CharEncoding::instance(); };
const auto utf16 = []() -> const ICharEncoding& { return *CUTF16CharEncoding::instance(); };
const auto utf32 = []() -> const ICharEncoding& { return *CUTF32CharEncoding::instance(); };
const auto latin1 = []() -> const ICharEncoding& { return *CLatin1CharEncoding::instance(); };
const auto codePage = []() -> const ICharEncoding& { return *CCPCharEncoding::instance(); };

// Little-endian units of the given width.
template <class Units>
Bytes units(const Units& list)
{
    Bytes b;
    for (auto u : list)
        for (size_t i = 0; i < sizeof(u); ++i)
            b.push_back(static_cast<uint8_t>(u >> (8 * i)));
    return b;
}
const auto u16 = [](std::initializer_list<uint16_t> list) { return units(list); };
const auto u32 = [](std::initializer_list<uint32_t> list) { return units(list); };
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
    SCOPED_TRACE(testing::Message() << "block " << block << (back ? " backwards" : ""));
    const auto len = static_cast<uint32_t>(b.size());
    size_t done = 0;
    for (uint32_t off = back ? len : 0, count = block; count == block;) {
        CodePoints cps(block + 1, kMark), offsets(block + 1, kMark);
        const uint32_t from = off;
        off = back ? enc.decodePrevChars(cps.data(), block, count, b.data(), len, off, offsets.data())
                   : enc.decodeChars(cps.data(), block, count, b.data(), len, off, offsets.data());
        ASSERT_LE(done + count, chars.size());
        EXPECT_EQ(cps[block], kMark);
        EXPECT_EQ(offsets[block], kMark);
        for (uint32_t i = 0; i < count; ++i, ++done) {
            const Char& c = chars[back ? chars.size() - 1 - done : done];
            EXPECT_EQ(cps[i], c.cp);
            EXPECT_EQ(offsets[i], back ? c.start : done ? chars[done - 1].end : 0);
        }
        const Char* last = count == 0 ? nullptr : &chars[back ? chars.size() - done : done - 1];
        EXPECT_EQ(off, !last ? from : back ? last->start : last->end);
    }
    EXPECT_EQ(done, chars.size());
}

// `b` reads as `expected`, strictly from end to end (`valid`) or only leniently, and every
// operation agrees with that reading at every unit offset and a little beyond the end.
void expectDecodes(const ICharEncoding& enc, const Bytes& b, const CodePoints& expected, bool valid)
{
    SCOPED_TRACE(testing::Message() << enc.getName() << " " << testing::PrintToString(b));
    const auto len = static_cast<uint32_t>(b.size());
    const uint32_t unit = enc.getId() == CUTF16CharEncoding::kId ? 2 : enc.getId() == CUTF32CharEncoding::kId ? 4 : 1;
    std::vector<Char> chars;
    CodePoints cps;
    bool strict = true;
    for (uint32_t off = 0, cp = 0, end = 0; off < len; off = end == kFail ? off + unit : end) {
        end = enc.decodeCharStrict(cp, b.data(), len, off);
        strict = strict && end != kFail;
        if (end != kFail) {
            chars.push_back({off, end, cp});
            cps.push_back(cp);
        }
    }
    EXPECT_EQ(cps, expected);
    EXPECT_EQ(strict, valid);
    for (uint32_t block : {1u, 3u, 16u})
        for (bool back : {false, true})
            if (!back || enc.supportsReverse())
                expectBlocks(enc, b, chars, block, back);
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
        SCOPED_TRACE(testing::Message() << "at " << off);
        uint32_t cp = kMark;
        EXPECT_EQ(enc.countChars(b.data(), len, off), after);
        EXPECT_EQ(enc.findCharStart(b.data(), len, off), next ? next->start : kFail);
        EXPECT_EQ(enc.getCharSizeAt(b.data(), len, off), next && next->start == off ? next->end - off : kFail);
        EXPECT_EQ(enc.decodeChar(cp, b.data(), len, off), next ? next->end : kFail);
        EXPECT_EQ(cp, next ? next->cp : cp);
        if (off > len || !enc.supportsReverse())
            continue;
        EXPECT_EQ(enc.findPrevCharStart(b.data(), len, off), before ? before->start : kFail);
        EXPECT_EQ(enc.decodePrevChar(cp, b.data(), len, off), ended ? ended->start : kFail);
        EXPECT_EQ(cp, ended ? ended->cp : cp);
        const bool endsHere = ended && ended->end == off;
        EXPECT_EQ(enc.decodePrevCharStrict(cp, b.data(), len, off), endsHere ? ended->start : kFail);
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
    bool valid;
};
constexpr bool kValid = true, kInvalid = false;

// Every buffer, and the empty one, read by expectDecodes.
void expectDecodings(const ICharEncoding& enc, std::initializer_list<Decoding> decodings)
{
    expectDecodes(enc, {}, {}, kValid);
    for (const Decoding& d : decodings)
        expectDecodes(enc, d.bytes, d.expected, d.valid);
}

} // namespace

TEST(CharEncoding, EveryEncodingDecodesAsDefined)
{
    expectDecodings(
        utf8(),
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
         {{0xF0, 0x90, 0x80, 0x80}, {}, kInvalid},
         // Above U+10FFFF, five-byte and FE leads, stray continuation and FF bytes.
         {{0xF4, 0x90, 0x80, 0x80}, {}, kInvalid},
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
         {{0x41, 0xC3, 0xA9, 0xFF, 0xE2, 0x82, 0xAC}, {0x41, 0xE9, 0x20AC}, kInvalid}});
    // The writer still writes what the reader refuses, as the standard has it.
    EXPECT_EQ(encode(utf8(), 0x800), Bytes({0xE0, 0xA0, 0x80}));
    EXPECT_EQ(encode(utf8(), 0x10000), Bytes({0xF0, 0x90, 0x80, 0x80}));
    // A character must fit in the given length, whatever the buffer holds beyond it.
    const Bytes euro = {0xE2, 0x82, 0xAC};
    uint32_t cp = 0, count = 99, out[1];
    EXPECT_EQ(utf8().decodeCharStrict(cp, euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().getCharSizeAt(euro.data(), 2, 0), kFail);
    EXPECT_EQ(utf8().decodeChars(out, 0, count, euro.data(), 3, 0, nullptr), 0u);
    EXPECT_EQ(count, 0u);
    // UTF-16: the units around the surrogates, pairs, lone surrogates, odd trailing bytes. UTF-32
    // takes any value and drops a trailing partial unit; in Latin-1 every byte is its code point;
    // the code page has at least ASCII.
    expectDecodings(utf16(), {{u16({0x0000, 0xD7FF, 0xE000, 0xFFFF, 0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}),
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
                              {{0x3D, 0xD8, 0x00, 0xDE, 0x42}, {0x1F600}, kInvalid}});
    const CodePoints anyValue = {0x41, 0xFFFFFFFF, 0x1F600, 0, 0xD800, 0xDFFF, 0x110000, 0x80000000, 0x10FFFF};
    Bytes partialUnit = u32({0x41});
    partialUnit.insert(partialUnit.end(), {0x42, 0x00, 0x00});
    expectDecodings(utf32(), {{units(anyValue), anyValue, kValid}, {partialUnit, {0x41}, kInvalid}});
    const Bytes all = bytesBelow(256);
    expectDecodings(latin1(), {{all, CodePoints(all.begin(), all.end()), kValid}});
    expectDecodings(codePage(), {{bytesBelow(128), CodePoints(all.begin(), all.begin() + 128), kValid}});
}

// Every code point around a boundary of some encoding and random ones of every magnitude (fixed
// seed), each encoded alone into its expected size, then all of them read back as one buffer: the
// writer and every reading operation agree with a model of what each encoding carries.
TEST(CharEncoding, RoundTripsAgreeWithAModelOfEachEncoding)
{
    CodePoints samples = {0x7FF,  0x800,  0xFFF,   0x1000,  0xD7FF,  0xD800,   0xDBFF,   0xDC00,     0xDFFF,
                          0xE000, 0xFFFF, 0x10000, 0x3FFFF, 0x40000, 0x10FFFF, 0x110000, 0x80000000, 0xFFFFFFFF};
    for (uint32_t cp = 0; cp <= 0x100; ++cp)
        samples.push_back(cp);
    std::mt19937 random(20);
    for (int i = 0; i < 300; ++i)
        samples.push_back(static_cast<uint32_t>(random()) >> (random() % 32));
    const auto surrogate = [](uint32_t cp) { return cp >= 0xD800 && cp <= 0xDFFF; };
    // The encoded size (0: not encodable; kFail: the host's code page decides) and what reading
    // gives back (-1: skipped).
    const struct {
        const ICharEncoding& enc;
        std::function<uint32_t(uint32_t)> size;
        std::function<int64_t(uint32_t)> readBack;
    } models[] = {
        {utf8(),
         [](uint32_t cp) {
             return cp < 0x80 ? 1u : cp < 0x800 ? 2u : cp < 0x10000 ? 3u : cp <= 0x10FFFF ? 4u : 0u;
         },
         [](uint32_t cp) {
             return (cp >= 0x800 && cp < 0x1000) || (cp >= 0x10000 && cp < 0x40000) ? -1 : int64_t{cp};
         }},
        {utf16(), [&](uint32_t cp) { return surrogate(cp) || cp > 0x10FFFF ? 0u
                                            : cp < 0x10000                 ? 2u
                                                                           : 4u; },
         [](uint32_t cp) { return int64_t{cp}; }},
        {utf32(), [](uint32_t) { return 4u; }, [](uint32_t cp) { return int64_t{cp}; }},
        {latin1(), [](uint32_t) { return 1u; }, [](uint32_t cp) { return int64_t{cp > 0xFF ? '?' : cp}; }},
        {codePage(), [](uint32_t cp) { return cp < 0x80     ? 1u
                                              : cp > 0xFFFF ? 0u
                                                            : kFail; },
         [](uint32_t cp) { return int64_t{cp}; }},
    };
    for (const auto& m : models) {
        Bytes all;
        CodePoints back;
        bool valid = true;
        for (uint32_t cp : samples) {
            const uint32_t size = m.size(cp);
            if (size == kFail)
                continue;
            const Bytes b = encode(m.enc, cp);
            ASSERT_EQ(b.size(), size) << m.enc.getName() << std::hex << " U+" << cp;
            all.insert(all.end(), b.begin(), b.end());
            if (size != 0 && m.readBack(cp) >= 0)
                back.push_back(static_cast<uint32_t>(m.readBack(cp)));
            valid = valid && (size == 0 || m.readBack(cp) >= 0);
        }
        expectDecodes(m.enc, all, back, valid);
    }
}

// A character that does not fit writes nothing and leaves the offset, except on the code page:
// with fewer than its maximum character size left it answers 0, so callers tell "full" from
// "skipped".
TEST(CharEncoding, WhatDoesNotFitIdentityTerminatedLengthAndTheCodePagesRules)
{
    const struct {
        const ICharEncoding& enc;
        uint32_t cp, len, off, want;
    } fits[] = {
        {utf8(), 0x20AC, 4, 2, 2},     {utf8(), 0x20AC, 4, 1, 4},   {utf8(), 'x', 4, 4, 4},
        {utf8(), 'x', 4, 9, 9},        {utf16(), 0x1F600, 4, 2, 2}, {utf16(), 'x', 3, 2, 2},
        {utf32(), 0x41, 7, 4, 4},      {latin1(), 'x', 2, 2, 2},    {codePage(), 'x', 4, 4, 0},
        {codePage(), 'x', 2, 2, 0},    {codePage(), 'x', 4, 3, 4},  {codePage(), 0x4E00, 4, 1, 1},
        {codePage(), 0xFFFF, 4, 4, 0},
    };
    for (const auto& r : fits) {
        Bytes b(16, 0xEE);
        EXPECT_EQ(r.enc.encodeChar(r.cp, b.data(), r.len, r.off), r.want) << r.enc.getName() << " " << r.off;
        Bytes expected(16, 0xEE);
        if (r.want > r.off) {
            const Bytes e = encode(r.enc, r.cp);
            std::copy(e.begin(), e.end(), expected.begin() + r.off);
        }
        EXPECT_EQ(b, expected);
    }
    // The identifier's bytes in memory spell a short name; the code page's size is its runtime's.
    // A terminated length counts units up to a zero unit.
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

    Bytes from1 = bytesBelow(256);
    from1.push_back(0);
    const struct {
        const ICharEncoding& enc;
        Bytes bytes;
        uint32_t length;
    } terminated[] = {{utf16(), u16({0x41, 0x100, 0xD83D, 0xDE00, 0, 0x42}), 8},
                      {utf16(), u16({0}), 0},
                      {utf16(), {0x41, 0x00, 0x00, 0x01, 0x00, 0x00}, 4}, // a zero byte is not a zero unit
                      {utf32(), u32({0x41, 0xFFFFFFFF, 0x1F600, 0, 0x42}), 12},
                      {codePage(), Bytes(from1.begin() + 1, from1.end()), 255}};
    for (const auto& r : terminated)
        EXPECT_EQ(r.enc.getTerminatedLength(r.bytes.data()), r.length) << r.enc.getName();
    // The code page: one byte is one character, whatever it decodes to; backward reading is not
    // supported.
    const Bytes all = bytesBelow(256);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 0), 256u);
    EXPECT_EQ(codePage().countChars(all.data(), 256, 200), 56u);
    EXPECT_EQ(codePage().getCharOffset(all.data(), 256, 256), 256u);
    uint32_t cp = 0, count = 0, out[16];
    EXPECT_THROW(codePage().findPrevCharStart(all.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevCharStrict(cp, all.data(), 2, 2), CMethodNotImplementedError);
    EXPECT_THROW(codePage().decodePrevChars(out, 16, count, all.data(), 2, 2, nullptr), CMethodNotImplementedError);
    const auto backwards = [&] { codePage().decodePrevChar(cp, all.data(), 2, 2); };
    EXPECT_NE(descriptionOf<CMethodNotImplementedError>(backwards).find("Method not implemented"), std::string::npos);
}

} // namespace kore_test
