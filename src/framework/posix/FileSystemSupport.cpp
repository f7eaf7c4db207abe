// POSIX file access: open/pread/pwrite on descriptors, opendir/readdir for folders.
#include "framework/io/FileSystemSupport.h"

#include "framework/text/IString.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace kore::platform {

namespace {

NativeError errorFrom(int code)
{
    NativeError error;
    error.code = static_cast<uint32_t>(code);
    // Thread-safe, unlike strerror.
    error.message = std::error_code(code, std::generic_category()).message();
    switch (code) {
    case ENOENT:
    case ENOTDIR: error.kind = NativeErrorKind::kNotFound; break;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY: error.kind = NativeErrorKind::kAccessDenied; break;
    default: error.kind = NativeErrorKind::kOther; break;
    }
    return error;
}

class CPosixFile final : public INativeFile {
public:
    explicit CPosixFile(int fd) : m_fd(fd) {}
    ~CPosixFile() override
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    bool readAt(int64_t offset, void* buffer, uint32_t count, uint32_t& done, NativeError& error) override
    {
        ssize_t n;
        do
            n = ::pread(m_fd, buffer, count, static_cast<off_t>(offset));
        while (n < 0 && errno == EINTR);
        if (n < 0) {
            error = errorFrom(errno);
            return false;
        }
        done = static_cast<uint32_t>(n);
        return true;
    }

    bool writeAt(int64_t offset, const void* buffer, uint32_t count, NativeError& error) override
    {
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        while (count > 0) {
            const ssize_t n = ::pwrite(m_fd, bytes, count, static_cast<off_t>(offset));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                error = errorFrom(n < 0 ? errno : ENOSPC);
                return false;
            }
            bytes += n;
            offset += n;
            count -= static_cast<uint32_t>(n);
        }
        return true;
    }

    bool getSize(int64_t& size, NativeError& error) override
    {
        struct stat st {};
        if (::fstat(m_fd, &st) != 0) {
            error = errorFrom(errno);
            return false;
        }
        size = static_cast<int64_t>(st.st_size);
        return true;
    }

    bool close(NativeError& error) override
    {
        const int fd = m_fd;
        m_fd = -1;
        // After EINTR the descriptor is gone on Linux; retrying could close someone else's.
        if (::close(fd) != 0 && errno != EINTR) {
            error = errorFrom(errno);
            return false;
        }
        return true;
    }

private:
    int m_fd;
};

} // namespace

bool usesWindowsPaths()
{
    return false;
}

bool fileNamesIgnoreCase()
{
    return false;
}

std::unique_ptr<INativeFile> openSystemFile(const IString& path, uint32_t mode, NativeError& error)
{
    const std::string native = path.toUTF8();
    int flags = O_CLOEXEC;
    if (mode == kNativeWrite)
        flags |= O_WRONLY | O_CREAT | O_TRUNC;
    else if (mode == kNativeReadWrite)
        flags |= O_RDWR | O_CREAT;
    else
        flags |= O_RDONLY;
    int fd;
    do
        fd = ::open(native.c_str(), flags, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        error = errorFrom(errno);
        return nullptr;
    }
    // A folder opens for reading here, but not on Windows: refuse it the same way everywhere.
    struct stat st {};
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(fd);
        error = errorFrom(EISDIR);
        return nullptr;
    }
    return std::make_unique<CPosixFile>(fd);
}

bool listNativeFolder(const IString& path, std::vector<NativeFolderEntry>& entries, NativeError& error)
{
    const std::string native = path.toUTF8();
    // Closed however the listing ends: adding an entry can throw when memory runs out.
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(native.c_str()), &::closedir);
    DIR* const dir = open.get();
    if (!dir) {
        error = errorFrom(errno);
        return false;
    }
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir);
        if (!entry)
            break;
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        bool folder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK) {
            // Links count as what they point to, as junctions do on Windows.
            struct stat st {};
            folder = ::fstatat(::dirfd(dir), entry->d_name, &st, 0) == 0 && S_ISDIR(st.st_mode);
        }
        entries.push_back({name, folder});
    }
    const int code = errno;
    if (code != 0) {
        error = errorFrom(code);
        return false;
    }
    return true;
}

bool replaceNativeFile(const IString& from, const IString& to, NativeError& error)
{
    const std::string source = from.toUTF8();
    // The data first, so that a crash after the rename cannot leave an empty file behind.
    const int fd = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 || ::fsync(fd) != 0) {
        error = errorFrom(errno);
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    ::close(fd);
    if (::rename(source.c_str(), to.toUTF8().c_str()) != 0) {
        error = errorFrom(errno);
        return false;
    }
    return true;
}

bool removeNativeFile(const IString& path, NativeError& error)
{
    if (::unlink(path.toUTF8().c_str()) != 0) {
        error = errorFrom(errno);
        return false;
    }
    return true;
}

} // namespace kore::platform
