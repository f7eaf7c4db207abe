#pragma once
// The file-system calls that the platform-neutral disk stream and file-system service need;
// win32/ and posix/ each implement them. Paths are native local paths, names are UTF-8.
// Failures come back as a NativeError for the caller to turn into the framework's errors, so
// that the messages and error classes are chosen in one place.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kore {
class IString;
class IURI;
} // namespace kore

namespace kore::platform {

// True where local paths have the Windows form (drive letters, "\").
bool usesWindowsPaths();
// True where the file system ignores letter case in names.
bool fileNamesIgnoreCase();

enum class NativeErrorKind { kNotFound, kAccessDenied, kOther };

struct NativeError {
    NativeErrorKind kind = NativeErrorKind::kOther;
    uint32_t code = 0; // errno or GetLastError()
    std::string message; // the system's text for the code, UTF-8
};

// Open modes, the stream manager's values.
constexpr uint32_t kNativeRead = 1;
constexpr uint32_t kNativeWrite = 2; // creates or truncates
constexpr uint32_t kNativeReadWrite = 3; // opens or creates, keeps the content

// One open file, read and written at explicit offsets.
class INativeFile {
public:
    virtual ~INativeFile() = default;
    // One system read of up to `count` bytes; `done` is 0 at the end of the file.
    virtual bool readAt(int64_t offset, void* buffer, uint32_t count, uint32_t& done, NativeError& error) = 0;
    // Writes all `count` bytes or fails; a gap before `offset` reads as zeros afterwards.
    virtual bool writeAt(int64_t offset, const void* buffer, uint32_t count, NativeError& error) = 0;
    virtual bool getSize(int64_t& size, NativeError& error) = 0;
    // Releases the handle; further calls are not allowed. The destructor closes silently.
    virtual bool close(NativeError& error) = 0;
};

// Null with `error` set when the file cannot be opened. A folder is refused as access denied
// on every platform. Goes through the installed opener, if any (FileSystemSupport.cpp).
std::unique_ptr<INativeFile> openNativeFile(const IString& path, uint32_t mode, NativeError& error);
// The platform's own opening, the same contract (win32/ or posix/).
std::unique_ptr<INativeFile> openSystemFile(const IString& path, uint32_t mode, NativeError& error);

// Replaces how every file of the process is opened, so that tests can hand out files that fail
// on purpose; null restores openSystemFile. Returns the opener installed before. Not for use
// while other threads open files.
using NativeFileOpener = std::unique_ptr<INativeFile> (*)(const IString& path, uint32_t mode, NativeError& error);
NativeFileOpener setNativeFileOpener(NativeFileOpener opener);

struct NativeFolderEntry {
    std::string name; // UTF-8
    bool isFolder = false;
};

// Every entry of a folder except "." and "..", in no particular order. A missing folder, or a
// path that is not a folder, is kNotFound.
bool listNativeFolder(const IString& path, std::vector<NativeFolderEntry>& entries, NativeError& error);

// Puts the file `from` in the place of `to` in one step, replacing `to` if it exists: readers
// see the old or the new file, never a part of one. `from`'s content is on the disk before.
// Both paths lie in one folder.
bool replaceNativeFile(const IString& from, const IString& to, NativeError& error);
// Deletes a file; a missing file is kNotFound.
bool removeNativeFile(const IString& path, NativeError& error);

// Platform-neutral (FileSystemSupport.cpp): throws CFileNotFoundError or CFileAccessDeniedError
// by the error's kind, any other failure as CFileError with the localised text of `key`
// (English `englishDefault`), "%FILE%" replaced by the URI and "%DESC%" by the system's message.
[[noreturn]] void throwFileError(const IURI* uri, const NativeError& error, const char* key,
                                 const char* englishDefault);

} // namespace kore::platform
