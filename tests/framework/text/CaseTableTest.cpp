#include "framework/text/CCaseTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <unordered_map>

namespace kore_test {

using kore::CCaseTable;

namespace {

// Every code point that the table maps elsewhere, from the flat list its generator derived from
// the Unicode data; the mappings it lists as left out (their delta does not fit) are not in it.
std::unordered_map<uint32_t, uint32_t> expectedMaps()
{
    std::unordered_map<uint32_t, uint32_t> maps;
#define KORE_CASE_RUN(first, last, step, delta)                                                                        \
    for (int64_t cp = first; cp <= last; cp += step)                                                                   \
        maps.emplace(static_cast<uint32_t>(cp), static_cast<uint32_t>(cp + (delta)));
#define KORE_CASE_LEFT_OUT(from, to)
#include "CaseTableExpected.inc"
#undef KORE_CASE_RUN
#undef KORE_CASE_LEFT_OUT
    return maps;
}

} // namespace

// The packed two-level table against the flat list its generator derived from the Unicode data,
// for every code point up to the end of the table and a little beyond; mapping twice changes
// nothing (the target of a class is its own image).
TEST(CaseTable, AgreesWithTheGeneratedListForEveryCodePoint)
{
    const std::unordered_map<uint32_t, uint32_t> maps = expectedMaps();
    ASSERT_GT(maps.size(), 1000u);
    uint32_t mismatches = 0;
    for (uint32_t cp = 0; cp < 0x20000; ++cp) {
        const auto it = maps.find(cp);
        const uint32_t want = it == maps.end() ? cp : it->second;
        const uint32_t got = CCaseTable::map(cp);
        if ((got != want || CCaseTable::map(got) != got) && ++mismatches <= 10)
            ADD_FAILURE() << std::hex << "U+" << cp << " maps to " << got << ", expected " << want;
    }
    EXPECT_EQ(mismatches, 0u);
    // Beyond the table, negative values included, everything is its own image.
    for (uint32_t cp : {0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu})
        EXPECT_EQ(CCaseTable::map(cp), cp) << std::hex << cp;

    // Independent of the generator: what a reader of the Unicode charts expects.
    // Latin, the last upper case outside Latin-1: A a, Z z, À à, Þ þ, Ÿ ÿ. KELVIN SIGN, LONG S,
    // ANGSTROM SIGN, OHM SIGN, MICRO SIGN, capital sharp s. Greek sigma, final sigma; Cyrillic А а,
    // Я я, Ё ё; DŽ Dž dž (upper, title and lower case). Deseret beyond the Basic Multilingual Plane,
    // Adlam (the last cased script), the Cherokee pairs that fit (to the small letter), Georgian
    // Mtavruli to Mkhedruli. Turkish dotted capital I and dotless small i (no simple folding),
    // Cherokee capitals and small letters (38864 code points apart, too far for the table) and
    // characters without case are their own image.
    const uint32_t cases[][3] = {
        {0x0041, 0x0061, 0x0061},    {0x005A, 0x007A, 0x007A},    {0x00C0, 0x00E0, 0x00E0}, {0x00DE, 0x00FE, 0x00FE},
        {0x0178, 0x00FF, 0x00FF},    {0x212A, 0x006B, 0x006B},    {0x212A, 0x004B, 0x006B}, {0x017F, 0x0073, 0x0073},
        {0x017F, 0x0053, 0x0073},    {0x212B, 0x00C5, 0x00E5},    {0x2126, 0x03C9, 0x03C9}, {0x00B5, 0x039C, 0x03BC},
        {0x1E9E, 0x00DF, 0x00DF},    {0x03A3, 0x03C3, 0x03C3},    {0x03C2, 0x03C3, 0x03C3}, {0x03C2, 0x03A3, 0x03C3},
        {0x0410, 0x0430, 0x0430},    {0x042F, 0x044F, 0x044F},    {0x0401, 0x0451, 0x0451}, {0x01C4, 0x01C5, 0x01C6},
        {0x10400, 0x10428, 0x10428}, {0x1E900, 0x1E922, 0x1E922}, {0x13F0, 0x13F8, 0x13F8}, {0x1C90, 0x10D0, 0x10D0},
        {0x0130, 0x0130, 0x0130},    {0x0131, 0x0131, 0x0131},    {0x13A0, 0x13A0, 0x13A0}, {0xAB70, 0xAB70, 0xAB70},
        {0x00D7, 0x00D7, 0x00D7},    {0x4E00, 0x4E00, 0x4E00}};
    for (const auto& c : cases)
        EXPECT_EQ(std::pair(CCaseTable::map(c[0]), CCaseTable::map(c[1])), std::pair(c[2], c[2])) << std::hex << c[0];
}

} // namespace kore_test
