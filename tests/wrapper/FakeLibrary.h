#pragma once
// A stand-in for the library behind qor_lang2.h that keeps books on what it hands out: every
// string buffer and file handle it returns, and what it is given back. The wrapper's ownership
// is checked against these books; the real library could not tell a leak from a late free.

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace fake_lib {

struct Books {
    std::set<const void*> liveStrings; // returned and not yet given back
    std::set<void*> liveHandles;
    std::size_t stringsReturned = 0;
    std::size_t badFrees = 0; // a second free, or of something never returned
    std::vector<std::u16string> lastArguments; // the text arguments of the last call, in order
    bool outOfMemory = false; // answer null where only exhaustion may
};

// Cleared for each test.
Books& books();

} // namespace fake_lib
