#pragma once
// The bodies of the fuzz targets. Each takes any bytes and must end without a crash, a sanitizer
// report or a leak; failures the code reports as exceptions are answers, not findings. The
// libFuzzer programs (FuzzMain.cpp) and the replay test call the same functions.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <ostream>

namespace qor_fuzz {

// Each target by the name of its seed folder and its body: a language file written into a folder
// and read through the exported functions; a container in memory, walked, nested and changed;
// bytes in the five encodings; a format text filled with typed arguments; URI texts and local
// paths; JSON text printed and parsed again; translators' files read by the qorlang tool.
// clang-format off
#define QOR_FUZZ_TARGETS(X)                                                                                    \
    X(language_file, fuzzLanguageFile) X(chunk_file, fuzzChunkFile) X(encodings, fuzzEncodings)               \
    X(string_format, fuzzStringFormat) X(uri, fuzzURI) X(json, fuzzJson)                                      \
    X(qorlang_po, fuzzPo) X(qorlang_xliff, fuzzXliff) X(qorlang_ts, fuzzTs) X(qorlang_json, fuzzI18next)
// clang-format on
#define QOR_FUZZ_DECLARE(name, body) void body(const uint8_t* data, size_t size);
QOR_FUZZ_TARGETS(QOR_FUZZ_DECLARE)

// A property the body checks: a violation stops the run the way a crash does, so that the fuzzer
// keeps the input.
inline void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}
// Runs a step whose failures the code reports as exceptions: those are answers, not findings.
template <class F>
void tolerate(F&& step)
{
    try {
        step();
    } catch (const std::exception&) {
    }
}

struct FuzzTarget {
    const char* name;
    void (*run)(const uint8_t* data, size_t size);
};
// CTest names carry the printed parameter: the name, not the bytes of two pointers.
inline void PrintTo(const FuzzTarget& target, std::ostream* out)
{
    *out << target.name;
}

#define QOR_FUZZ_ENTRY_OF(name, body) {#name, body},
inline constexpr FuzzTarget kFuzzTargets[] = {QOR_FUZZ_TARGETS(QOR_FUZZ_ENTRY_OF)};

} // namespace qor_fuzz
