// libFuzzer's entry point for one target; the build names the target's body in QOR_FUZZ_ENTRY.
#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    qor_fuzz::QOR_FUZZ_ENTRY(data, size);
    return 0;
}
