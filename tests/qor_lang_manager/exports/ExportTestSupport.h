#pragma once
// What the tests of the exported functions share: UTF-16 text in and out of the C interface,
// results freed the way a host must free them, and language files written to disk. Files are
// written by the test program's own copy of the language classes; everything under test is
// reached through qor_lang2.h only.

#include "qor_lang2.h"

#include "../LanguageTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

namespace export_test {

using lang_test::languageWriter;
using lang_test::Strings;
using lang_test::writeLanguageFile;
static_assert(sizeof(QOR_LANG2_CHAR) == sizeof(char16_t));

// Text for the interface: a literal or a string that outlives the call.
inline const auto w = [](std::u16string_view text) -> const QOR_LANG2_CHAR* {
    return reinterpret_cast<const QOR_LANG2_CHAR*>(text.data());
};
inline const auto u16 = [](std::string_view ascii) -> std::u16string {
    return std::u16string(ascii.begin(), ascii.end());
};
// For failure messages.
inline const auto utf8 = [](const std::u16string& text) -> std::string {
    return kore::CString::fromUTF16(text)->toUTF8();
};

// A string the library returned, copied and then given back to the library; nullopt for null.
using Text = std::optional<std::u16string>;
inline Text take(QOR_LANG2_CHAR* returned)
{
    if (!returned)
        return std::nullopt;
    Text text(reinterpret_cast<const char16_t*>(returned));
    QOR_LANG2_freeWideString(returned);
    return text;
}

struct FileHandleDeleter {
    void operator()(void* handle) const { QOR_LANG2_freeQorLangFile(handle); }
};
using FileHandle = std::unique_ptr<void, FileHandleDeleter>;
inline const auto languageFile = [](const std::u16string& appId, int32_t index) -> FileHandle {
    return FileHandle(QOR_LANG2_getLanguageFile(w(appId), index));
};

inline const auto currentLanguage = []() -> Text { return take(QOR_LANG2_getCurrentLanguage()); };
inline const auto setLanguage = [](const std::u16string& tag) -> int32_t {
    return QOR_LANG2_setCurrentLanguage(w(tag));
};
inline const auto localString = [](const std::u16string& key, const std::u16string& defaultText) -> Text {
    return take(QOR_LANG2_getLocalString(w(key), w(defaultText)));
};

// The "file" URI text of a folder, ending in "/".
inline std::u16string folderUri(const std::filesystem::path& folder)
{
    std::u16string uri = kore::CURI::fromLocalPath(folder.u16string().c_str())->toString()->toU16();
    return uri.empty() || uri.back() != u'/' ? uri + u'/' : uri;
}
inline const auto addFolder = [](const std::filesystem::path& folder, const std::u16string& appId) -> int32_t {
    return QOR_LANG2_add(w(folder.u16string()), nullptr, w(appId));
};

// `appId` + "-" + `tag` + ".qorlang" in `folder`, as the library looks for it.
inline void writeLanguageFile(const std::filesystem::path& folder, const std::u16string& appId,
                              const std::u16string& tag, const Strings& strings = {})
{
    writeLanguageFile(folder / (appId + u"-" + tag + u".qorlang"), languageWriter(tag, appId, strings));
}
inline void writeBytes(const std::filesystem::path& file, std::string_view bytes)
{
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The running test's name, as an id or key prefix that no other test uses in this process.
inline std::u16string testName()
{
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    return u16(std::string(info->test_suite_name()) + "." + info->name());
}

// A test of its own in the shared process: a temporary folder and an application id of its own.
class CExportTest : public ::testing::Test {
protected:
    kore_test::CTempFolder m_temp;
    const std::filesystem::path m_folder = m_temp.path();
    const std::u16string m_app = testName();
};

} // namespace export_test
