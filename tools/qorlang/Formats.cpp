#include "Formats.h"
#include "Unicode.h"

#include "framework/errors/CParseError.h"
#include "framework/io/FileSystemSupport.h"
#include "framework/text/CString.h"
#include "qor_lang_manager/LanguageId.h"

#include <filesystem>
#include <memory>
#include <random>

namespace qorlang {

namespace fs = std::filesystem;

void fail(std::string_view path, int line, std::string_view message)
{
    std::string text(path);
    if (line > 0)
        text += ":" + std::to_string(line);
    text += ": ";
    text += message;
    const std::u16string utf16 = decodeUtf8(text).value_or(u"(message not valid UTF-8)");
    throw kore::CParseError(kore::CStringArg(utf16.c_str(), static_cast<uint32_t>(utf16.size())));
}

namespace {

fs::path pathOf(const std::string& utf8)
{
    return fs::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size()));
}

std::string lowerExtension(const std::string& path)
{
    const std::string name = fileNameOf(path);
    const size_t dot = name.rfind('.');
    if (dot == std::string::npos)
        return {};
    std::string ext = name.substr(dot);
    for (char& c : ext)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return ext;
}

} // namespace

Format formatOf(const std::string& path)
{
    const std::string ext = lowerExtension(path);
    if (ext == ".po" || ext == ".pot")
        return Format::Po;
    if (ext == ".xlf" || ext == ".xliff")
        return Format::Xliff;
    if (ext == ".ts")
        return Format::Ts;
    if (ext == ".json")
        return Format::Json;
    if (ext == ".txt")
        return Format::Text;
    if (ext == ".qorlang")
        return Format::Qorlang;
    fail(path, 0, "unknown format (the extension must be .po, .pot, .xlf, .xliff, .ts, .json, .txt or .qorlang)");
}

namespace {

kore::P<kore::IString> nativeName(const std::string& path)
{
    return kore::CString::fromUTF16(decodedOrFail(path, 0, path));
}

// "what went wrong: the system's reason; what to do".
[[noreturn]] void failFile(const std::string& path, const std::string& what, const kore::platform::NativeError& error,
                           const std::string& advice)
{
    std::string message = what;
    if (!error.message.empty())
        message += ": " + error.message;
    fail(path, 0, message + "; " + advice);
}

std::string readAdvice(const kore::platform::NativeError& error)
{
    switch (error.kind) {
    case kore::platform::NativeErrorKind::kNotFound: return "check the name and the folder";
    case kore::platform::NativeErrorKind::kAccessDenied: return "check that it is a file you may read, not a folder";
    default: return "check the file and try again";
    }
}

} // namespace

std::string readFileBytes(const std::string& path)
{
    kore::platform::NativeError error;
    std::unique_ptr<kore::platform::INativeFile> file =
        kore::platform::openNativeFile(*nativeName(path), kore::platform::kNativeRead, error);
    if (!file)
        failFile(path, "cannot open the file for reading", error, readAdvice(error));
    std::string bytes;
    char buffer[65536];
    for (uint32_t done = 0;; bytes.append(buffer, done)) {
        if (!file->readAt(static_cast<int64_t>(bytes.size()), buffer, sizeof buffer, done, error))
            failFile(path, "cannot read the file", error, "check the disk or the network share it is on");
        if (done == 0)
            break;
    }
    return bytes;
}

void writeFileAtomically(const std::string& path, std::string_view bytes)
{
    if (isFolder(path))
        fail(path, 0, "is a folder; give the name of the file to write in it");
    const std::string temporary = path + ".tmp" + std::to_string(std::random_device()() % 1000000);
    const kore::P<kore::IString> temporaryName = nativeName(temporary);
    const std::string advice = "check that the folder exists and that you may write in it";
    kore::platform::NativeError error;
    std::unique_ptr<kore::platform::INativeFile> out =
        kore::platform::openNativeFile(*temporaryName, kore::platform::kNativeWrite, error);
    if (!out)
        failFile(path, "cannot create the file", error, advice);
    const bool written = out->writeAt(0, bytes.data(), static_cast<uint32_t>(bytes.size()), error) && out->close(error);
    if (!written) {
        const kore::platform::NativeError reason = error;
        out.reset();
        kore::platform::removeNativeFile(*temporaryName, error);
        failFile(path, "cannot write the file", reason, "check the free space on the disk");
    }
    if (!kore::platform::replaceNativeFile(*temporaryName, *nativeName(path), error)) {
        const kore::platform::NativeError reason = error;
        kore::platform::removeNativeFile(*temporaryName, error);
        failFile(path, "cannot replace the file", reason, advice);
    }
}

bool isFolder(const std::string& path)
{
    std::error_code ignored;
    return fs::is_directory(pathOf(path), ignored);
}

std::string fileNameOf(const std::string& path)
{
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::u16string decodedOrFail(std::string_view path, int line, std::string_view utf8)
{
    auto text = decodeUtf8(utf8);
    if (!text)
        fail(path, line, "not valid UTF-8");
    return std::move(*text);
}

std::optional<uint32_t> versionOf(std::string_view digits)
{
    if (digits.empty() || digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    return static_cast<uint32_t>(std::stoul(std::string(digits)));
}

Catalogue readCatalogue(const std::string& path, QtContext qtContext)
{
    const Format format = formatOf(path); // an unknown extension fails before the file is opened
    return readCatalogueBytes(path, readFileBytes(path), format, qtContext);
}

Catalogue readCatalogueBytes(const std::string& path, const std::string& bytes, QtContext qtContext)
{
    return readCatalogueBytes(path, bytes, formatOf(path), qtContext);
}

Catalogue readCatalogueBytes(const std::string& path, const std::string& bytes, Format format, QtContext qtContext)
{
    switch (format) {
    case Format::Po: return readPo(path, bytes);
    case Format::Xliff: return readXliff(path, bytes);
    case Format::Ts: return readTs(path, bytes, qtContext);
    case Format::Json: return readJson(path, bytes);
    case Format::Text: return readText(path, bytes);
    case Format::Qorlang: return readQorlang(path, std::vector<uint8_t>(bytes.begin(), bytes.end()));
    default: fail(path, 0, "cannot read this format");
    }
}

std::string writeCatalogue(const Catalogue& catalogue, Format format)
{
    switch (format) {
    case Format::Po: return writePo(catalogue);
    case Format::Json: return writeJson(catalogue);
    case Format::Xliff: return writeXliff(catalogue);
    case Format::Ts: return writeTs(catalogue);
    default: fail(catalogue.path, 0, "cannot write this format");
    }
}

std::optional<std::u16string> versionText(std::optional<uint32_t> version)
{
    if (!version)
        return std::nullopt;
    const std::string digits = std::to_string(*version);
    return std::u16string(digits.begin(), digits.end());
}

std::optional<std::u16string> normalisedTag(std::u16string_view written)
{
    // A modifier such as "@latin" names a variant a two-part tag cannot hold; "@euro" a currency.
    if (const size_t at = written.find(u'@'); at != std::u16string_view::npos && written.substr(at) != u"@euro")
        return std::nullopt;
    std::u16string tag(written.substr(0, written.find_first_of(u".@")));
    for (char16_t& c : tag)
        if (c == u'_')
            c = u'-';
    const qor_lang::LanguageId id(tag.c_str(), qor_lang::LanguageTagMode::Tag);
    if (tag.empty() || !id.isValid())
        return std::nullopt;
    return id.getTag();
}

bool looksLikeKey(std::u16string_view source)
{
    size_t parts = 1, partLength = 0;
    for (char16_t c : source) {
        if (c == u'.') {
            if (partLength == 0)
                return false;
            ++parts;
            partLength = 0;
        } else if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_' ||
                   c == u'-') {
            ++partLength;
        } else {
            return false;
        }
    }
    return parts >= 2 && partLength > 0;
}

std::u16string languageFileName(std::u16string_view appId, std::u16string_view tag)
{
    // One left-to-right pass, as the library's replace-all makes it: "a---b" gives "a--b".
    const std::u16string composed = std::u16string(appId) + u"-" + std::u16string(tag) + u".qorlang";
    std::u16string name;
    for (size_t i = 0; i < composed.size(); ++i) {
        name.push_back(composed[i]);
        if (composed[i] == u'-' && i + 1 < composed.size() && composed[i + 1] == u'-')
            ++i;
    }
    return name;
}

} // namespace qorlang
