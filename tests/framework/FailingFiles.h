#pragma once
// Files that fail on purpose. While a CFailingFiles lives, every file the process opens goes
// through it: it counts each open, read, write and size query (the disk stream's seek to the end)
// of every file and fails the n-th one as the system would (an I/O error). It also counts writes
// attempted on files opened for reading only, which must never happen. One at a time, one thread.

#include "framework/io/FileSystemSupport.h"

#include <cstdint>
#include <memory>

namespace kore_test {

class CFailingFiles {
public:
    // `failAt` 0 only counts.
    explicit CFailingFiles(int64_t failAt)
    {
        state() = State{failAt};
        m_previous = kore::platform::setNativeFileOpener(&open);
    }
    ~CFailingFiles() { kore::platform::setNativeFileOpener(m_previous); }
    CFailingFiles(const CFailingFiles&) = delete;
    CFailingFiles& operator=(const CFailingFiles&) = delete;

    int64_t operations() const { return state().operations; }
    bool failed() const { return state().failed; }
    int64_t writesToReadOnlyFiles() const { return state().readOnlyWrites; }
    int64_t writableOpens() const { return state().writableOpens; }
    // "open", "read", "write" or "size": what the failed operation was.
    const char* failedKind() const { return state().failedKind; }

private:
    using NativeError = kore::platform::NativeError;

    struct State {
        int64_t failAt = 0;
        int64_t operations = 0;
        bool failed = false;
        int64_t readOnlyWrites = 0;
        int64_t writableOpens = 0;
        const char* failedKind = "";
    };
    static State& state()
    {
        static State s;
        return s;
    }
    // True when this operation is the one to fail; the error is then set.
    static bool fails(const char* kind, NativeError& error)
    {
        State& s = state();
        if (++s.operations != s.failAt)
            return false;
        s.failed = true;
        s.failedKind = kind;
        error = NativeError{kore::platform::NativeErrorKind::kOther, 5, "injected failure"};
        return true;
    }

    class CFile final : public kore::platform::INativeFile {
    public:
        CFile(std::unique_ptr<INativeFile> inner, uint32_t mode) : m_inner(std::move(inner)), m_mode(mode) {}
        bool readAt(int64_t offset, void* buffer, uint32_t count, uint32_t& done, NativeError& error) override
        {
            return !fails("read", error) && m_inner->readAt(offset, buffer, count, done, error);
        }
        bool writeAt(int64_t offset, const void* buffer, uint32_t count, NativeError& error) override
        {
            if (m_mode == kore::platform::kNativeRead)
                ++state().readOnlyWrites;
            return !fails("write", error) && m_inner->writeAt(offset, buffer, count, error);
        }
        bool getSize(int64_t& size, NativeError& error) override
        {
            return !fails("size", error) && m_inner->getSize(size, error);
        }
        bool close(NativeError& error) override { return m_inner->close(error); }

    private:
        std::unique_ptr<INativeFile> m_inner;
        uint32_t m_mode;
    };

    static std::unique_ptr<kore::platform::INativeFile> open(const kore::IString& path, uint32_t mode,
                                                             NativeError& error)
    {
        if (mode != kore::platform::kNativeRead)
            ++state().writableOpens;
        auto inner = fails("open", error) ? nullptr : kore::platform::openSystemFile(path, mode, error);
        return inner ? std::make_unique<CFile>(std::move(inner), mode) : nullptr;
    }

    kore::platform::NativeFileOpener m_previous = nullptr;
};

} // namespace kore_test
