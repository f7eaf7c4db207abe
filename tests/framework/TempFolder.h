#pragma once
// What the file tests need: the file services, their errors, and a fresh folder under the
// system's temporary folder for one test, removed with its content afterwards. Set-up goes through the standard library, so that the code under test is not
// also the code that prepares its input.

#include "framework/errors/CFileNotFoundError.h"
#include "framework/errors/CURIFormatError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/CURI.h"
#include "framework/io/IFileEntry.h"
#include "framework/io/IFileEnum.h"
#include "framework/io/IFileSystemManager.h"
#include "framework/io/IInStream.h"
#include "framework/io/IPathes.h"
#include "framework/io/IStreamManager.h"
#include "framework/io/ISystem.h"
#include "framework/io/IURI.h"
#include "framework/text/CString.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kore_test {

inline std::filesystem::path pathFromUTF8(std::string_view utf8)
{
    return std::filesystem::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size()));
}

inline std::string utf8FromPath(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

// The names of the entries of `folder` that match `pattern`, in the enumeration's order; a
// folder's name ends in "/".
inline std::vector<std::string> names(const kore::P<kore::IURI>& folder, const kore::CStringArg& pattern)
{
    std::vector<std::string> out;
    for (auto found = kore::IFileSystemManager::instance()->enumerate(*folder, pattern); found->hasNext();) {
        const kore::P<kore::IFileEntry> entry = found->next();
        out.push_back(entry->getName()->toUTF8() + (entry->isFolder() ? "/" : ""));
    }
    return out;
}

class CTempFolder {
public:
    CTempFolder()
    {
        std::random_device random;
        do
            m_path = std::filesystem::temp_directory_path() / ("qor_streams_test_" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_path));
    }
    ~CTempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path path(std::string_view relativeUTF8) const { return m_path / pathFromUTF8(relativeUTF8); }
    std::string utf8(std::string_view relativeUTF8 = {}) const
    {
        return utf8FromPath(relativeUTF8.empty() ? m_path : path(relativeUTF8));
    }

    // The folder's URI, through the path service.
    kore::P<kore::IURI> uri(std::string_view relativeUTF8 = {}) const
    {
        return kore::IPathes::instance()->folderPathToURI(kore::CString::fromUTF8(utf8(relativeUTF8)));
    }

    void makeFolder(std::string_view relativeUTF8) const { std::filesystem::create_directories(path(relativeUTF8)); }

    void writeFile(std::string_view relativeUTF8, std::string_view content) const
    {
        std::ofstream out(path(relativeUTF8), std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
    }

    std::string readFile(std::string_view relativeUTF8) const
    {
        std::ifstream in(path(relativeUTF8), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::filesystem::path m_path;
};

} // namespace kore_test
