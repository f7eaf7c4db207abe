// Replays every seed and every input that once found a fault through the body of its fuzz
// target, so that the ordinary builds (gcc, AddressSanitizer, Windows) keep them fixed.
#include "FuzzTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

class FuzzReplay : public testing::TestWithParam<qor_fuzz::FuzzTarget> {};

TEST_P(FuzzReplay, EverySavedInputRunsCleanly)
{
    std::vector<std::filesystem::path> files;
    std::error_code absent; // a target without regressions
    for (const char* kind : {"corpus", "regressions"})
        for (const auto& entry : std::filesystem::directory_iterator(
                 std::filesystem::path(QOR_FUZZ_DATA_DIR) / kind / GetParam().name, absent))
            if (entry.is_regular_file())
                files.push_back(entry.path());
    ASSERT_FALSE(files.empty()) << "no seeds for " << GetParam().name;
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        SCOPED_TRACE(file.string());
        std::ifstream in(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        GetParam().run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay, testing::ValuesIn(qor_fuzz::kFuzzTargets),
                         [](const testing::TestParamInfo<qor_fuzz::FuzzTarget>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
