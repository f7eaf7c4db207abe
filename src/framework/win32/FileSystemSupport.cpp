// Win32 file access: CreateFileW/ReadFile/WriteFile/SetFilePointerEx on handles,
// FindFirstFileW/FindNextFileW for folders. All paths are wide.
#include "framework/io/FileSystemSupport.h"

#include "framework/text/CString.h"
#include "framework/win32/Win32Path.h"

#include <windows.h>

namespace kore::win32 {

std::wstring toWide(const IString& text)
{
    const std::u16string units = text.toU16();
    return std::wstring(units.begin(), units.end());
}

P<IString> fromWide(const wchar_t* text, size_t length)
{
    return make<CWCharString>(text, static_cast<uint32_t>(length));
}

std::string utf8FromWide(const wchar_t* text, size_t length)
{
    return fromWide(text, length)->toUTF8();
}

std::wstring toWin32Path(const IString& path)
{
    std::wstring wide = toWide(path);
    // Below MAX_PATH (less room for a file name appended later) the plain form is kept: it
    // is what users and other tools expect in messages and it allows "." and ".." segments.
    if (wide.size() < 240 || wide.rfind(L"\\\\?\\", 0) == 0)
        return wide;
    if (wide.rfind(L"\\\\", 0) == 0)
        return L"\\\\?\\UNC\\" + wide.substr(2);
    if (wide.size() >= 2 && wide[1] == L':')
        return L"\\\\?\\" + wide;
    return wide;
}

} // namespace kore::win32

namespace kore::platform {

namespace {

NativeError errorFrom(DWORD code)
{
    NativeError error;
    error.code = code;
    wchar_t* text = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (length > 0 && text) {
        DWORD end = length;
        while (end > 0 && (text[end - 1] == L'\r' || text[end - 1] == L'\n' || text[end - 1] == L' '))
            --end;
        error.message = win32::utf8FromWide(text, end);
    } else {
        error.message = "system error " + std::to_string(code);
    }
    if (text)
        LocalFree(text);
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY: error.kind = NativeErrorKind::kNotFound; break;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT: error.kind = NativeErrorKind::kAccessDenied; break;
    default: error.kind = NativeErrorKind::kOther; break;
    }
    return error;
}

class CWin32File final : public INativeFile {
public:
    explicit CWin32File(HANDLE handle) : m_handle(handle) {}
    ~CWin32File() override
    {
        if (m_handle != INVALID_HANDLE_VALUE)
            CloseHandle(m_handle);
    }

    bool readAt(int64_t offset, void* buffer, uint32_t count, uint32_t& done, NativeError& error) override
    {
        if (!seekTo(offset, error))
            return false;
        DWORD n = 0;
        if (!ReadFile(m_handle, buffer, count, &n, nullptr)) {
            const DWORD code = GetLastError();
            if (code != ERROR_HANDLE_EOF) {
                error = errorFrom(code);
                return false;
            }
        }
        done = n;
        return true;
    }

    bool writeAt(int64_t offset, const void* buffer, uint32_t count, NativeError& error) override
    {
        if (!seekTo(offset, error))
            return false;
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        while (count > 0) {
            DWORD n = 0;
            if (!WriteFile(m_handle, bytes, count, &n, nullptr) || n == 0) {
                error = errorFrom(n == 0 ? ERROR_DISK_FULL : GetLastError());
                return false;
            }
            bytes += n;
            count -= n;
        }
        return true;
    }

    bool getSize(int64_t& size, NativeError& error) override
    {
        LARGE_INTEGER value{};
        if (!GetFileSizeEx(m_handle, &value)) {
            error = errorFrom(GetLastError());
            return false;
        }
        size = value.QuadPart;
        return true;
    }

    bool close(NativeError& error) override
    {
        const HANDLE handle = m_handle;
        m_handle = INVALID_HANDLE_VALUE;
        if (!CloseHandle(handle)) {
            error = errorFrom(GetLastError());
            return false;
        }
        return true;
    }

private:
    bool seekTo(int64_t offset, NativeError& error)
    {
        LARGE_INTEGER to{};
        to.QuadPart = offset;
        if (!SetFilePointerEx(m_handle, to, nullptr, FILE_BEGIN)) {
            error = errorFrom(GetLastError());
            return false;
        }
        return true;
    }

    HANDLE m_handle;
};

} // namespace

bool usesWindowsPaths()
{
    return true;
}

bool fileNamesIgnoreCase()
{
    return true;
}

std::unique_ptr<INativeFile> openSystemFile(const IString& path, uint32_t mode, NativeError& error)
{
    DWORD access = GENERIC_READ;
    // Readers let others read, write and delete, as on POSIX; writers let others only read.
    DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    DWORD disposition = OPEN_EXISTING;
    if (mode == kNativeWrite) {
        access = GENERIC_WRITE;
        share = FILE_SHARE_READ;
        disposition = CREATE_ALWAYS;
    } else if (mode == kNativeReadWrite) {
        access = GENERIC_READ | GENERIC_WRITE;
        share = FILE_SHARE_READ;
        disposition = OPEN_ALWAYS;
    }
    const std::wstring native = win32::toWin32Path(path);
    const HANDLE handle =
        CreateFileW(native.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD code = GetLastError();
        // A folder is refused as access denied; make sure it is so whatever the system said.
        const DWORD attributes = GetFileAttributesW(native.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
            error = errorFrom(ERROR_ACCESS_DENIED);
        else
            error = errorFrom(code);
        return nullptr;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        // Devices and pipes behind a path are no files.
        CloseHandle(handle);
        error = errorFrom(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return std::make_unique<CWin32File>(handle);
}

bool listNativeFolder(const IString& path, std::vector<NativeFolderEntry>& entries, NativeError& error)
{
    std::wstring native = win32::toWin32Path(path);
    const DWORD attributes = GetFileAttributesW(native.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        error = errorFrom(GetLastError());
        return false;
    }
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        error = errorFrom(ERROR_DIRECTORY);
        return false;
    }
    if (native.empty() || (native.back() != L'\\' && native.back() != L'/'))
        native += L'\\';
    native += L'*';

    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW(native.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        const DWORD code = GetLastError();
        // The root of an empty drive has no "." to find.
        if (code == ERROR_FILE_NOT_FOUND)
            return true;
        error = errorFrom(code);
        return false;
    }
    // Closed however the listing ends: adding an entry can throw when memory runs out.
    struct CFindGuard {
        HANDLE handle;
        ~CFindGuard() { FindClose(handle); }
    } const guard{find};
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..")
            continue;
        entries.push_back(
            {win32::utf8FromWide(name.data(), name.size()), (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
    } while (FindNextFileW(find, &data));
    const DWORD code = GetLastError();
    if (code != ERROR_NO_MORE_FILES) {
        error = errorFrom(code);
        return false;
    }
    return true;
}

bool replaceNativeFile(const IString& from, const IString& to, NativeError& error)
{
    if (!MoveFileExW(win32::toWin32Path(from).c_str(), win32::toWin32Path(to).c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        error = errorFrom(GetLastError());
        return false;
    }
    return true;
}

bool removeNativeFile(const IString& path, NativeError& error)
{
    if (!DeleteFileW(win32::toWin32Path(path).c_str())) {
        error = errorFrom(GetLastError());
        return false;
    }
    return true;
}

} // namespace kore::platform
