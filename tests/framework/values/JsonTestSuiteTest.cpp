// The public JSON parsing test suite, when it lies beside the project (QOR_TESTDATA_DIR): every
// y_ file parses, every n_ file fails with CJsonParserError, and i_ files do either, never
// anything else. Accepted files print text that prints the same once parsed again, unless the
// printer had to write a control character raw.
#include "FrameworkTest.h"
#include "TempFolder.h"

#include "framework/errors/CJsonParserError.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"

#include <algorithm>
#include <filesystem>

namespace kore_test {

TEST(JsonTestSuite, EveryFileAsItsNameSays)
{
    const std::filesystem::path folder = pathFromUTF8(QOR_TESTDATA_DIR) / "JSONTestSuite" / "test_parsing";
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        GTEST_SKIP() << "no test suite at " << utf8FromPath(folder);

    size_t counts[3] = {};
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = utf8FromPath(entry.path().filename());
        const char kind = name[0];
        if (name.size() < 2 || name[1] != '_' || (kind != 'y' && kind != 'n' && kind != 'i'))
            continue;
        SCOPED_TRACE(name);
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        ++counts[kind == 'y' ? 0 : kind == 'n' ? 1 : 2];

        P<IBase> tree;
        try {
            tree = make<CJsonParser>()->parseUTF8(content);
        } catch (const CJsonParserError& e) {
            EXPECT_NE(kind, 'y') << e.getDescription()->toUTF8();
            continue;
        }
        EXPECT_NE(kind, 'n');
        const std::u16string once = make<CJsonPrinter>()->print(tree.get())->toU16();
        const bool rawControl = std::any_of(once.begin(), once.end(), [](char16_t c) { return c < 0x20; });
        const auto again = [&] {
            return make<CJsonParser>()->parse({once.data(), static_cast<uint32_t>(once.size())});
        };
        if (rawControl)
            EXPECT_THROW(again(), CJsonParserError);
        else
            EXPECT_EQ(make<CJsonPrinter>()->print(again().get())->toU16(), once);
    }
    EXPECT_GT(counts[0], 0u);
    EXPECT_GT(counts[1], 0u);
}

} // namespace kore_test
