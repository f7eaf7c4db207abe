#pragma once
// The bodies of the fuzz targets. Each takes any bytes and must end without a crash, a sanitizer
// report or a leak; failures the code reports as exceptions are answers, not findings. The
// libFuzzer programs (FuzzMain.cpp) and the replay test call the same functions.

#include <cstddef>
#include <cstdint>
#include <exception>

namespace qor_fuzz {

// A language file written into a folder and read through the exported functions.
void fuzzLanguageFile(const uint8_t* data, size_t size);
// A container in memory: walked, nested, and changed by inserting and removing space.
void fuzzChunkFile(const uint8_t* data, size_t size);
// Bytes decoded, converted, compared and searched in the five encodings.
void fuzzEncodings(const uint8_t* data, size_t size);
// A format text filled with typed arguments.
void fuzzStringFormat(const uint8_t* data, size_t size);
// URI texts and local paths parsed, printed and resolved.
void fuzzURI(const uint8_t* data, size_t size);
// JSON text parsed, printed and parsed again.
void fuzzJson(const uint8_t* data, size_t size);
// Translators' files read by the qorlang tool.
void fuzzI18next(const uint8_t* data, size_t size);
void fuzzPo(const uint8_t* data, size_t size);
void fuzzXliff(const uint8_t* data, size_t size);
void fuzzTs(const uint8_t* data, size_t size);

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

inline constexpr FuzzTarget kFuzzTargets[] = {
    {"language_file", fuzzLanguageFile},
    {"chunk_file", fuzzChunkFile},
    {"encodings", fuzzEncodings},
    {"string_format", fuzzStringFormat},
    {"uri", fuzzURI},
    {"json", fuzzJson},
    {"qorlang_po", fuzzPo},
    {"qorlang_xliff", fuzzXliff},
    {"qorlang_ts", fuzzTs},
    {"qorlang_json", fuzzI18next},
};

} // namespace qor_fuzz
