#pragma once

#include "framework/io/FileSystemSupport.h"
#include "framework/io/ISeekableIOStream.h"
#include "framework/objects/CObject.h"

#include <memory>

namespace kore {

// A buffered stream over a local file. Reads and writes go through one buffer of kBufferSize
// bytes, so that many small reads or writes cost few system calls; a read or write of at least
// a buffer's size goes to the file directly. The stream answers only to the interfaces its mode
// allows: a stream opened for reading refuses the cast to IOutStream and its relatives, one
// opened for writing the cast to IInStream and its relatives.
class CDiskStream : public CObject, public ISeekableIOStream {
public:
    static constexpr uint32_t kBufferSize = 64 * 1024;

    static constexpr uint32_t kRead = platform::kNativeRead;
    static constexpr uint32_t kWrite = platform::kNativeWrite;
    static constexpr uint32_t kReadWrite = platform::kNativeReadWrite;

    // Opens the file of a "file" URI. Throws CFileNotFoundError, CFileAccessDeniedError (also
    // for a folder), CFileError for other failures, CURITypeNotSupportedError for a URI that
    // names no local file, and CInvalidArgError for an unknown mode.
    CDiskStream(const IURI& uri, uint32_t mode);
    ~CDiskStream() override;

    int64_t getPosition() const override { return m_position; }
    // The length as this stream sees it, its own unflushed writes included.
    int64_t getLength() const override { return m_length; }
    P<IURI> getURI() const override;
    void close() override;
    uint32_t read(void* buffer, uint32_t count) override;
    uint32_t readSome(void* buffer, uint32_t count) override;
    uint32_t write(const void* buffer, uint32_t count) override;
    void flush() override;
    void seek(int64_t position) override;

    bool castQuery(const std::type_info& target, const IBase*& redirect,
                   const CCastCandidate*& candidates) const override;

    uint32_t getMode() const { return m_mode; }
    // System calls made so far, to observe the buffering.
    uint64_t getSystemReadCount() const { return m_systemReads; }
    uint64_t getSystemWriteCount() const { return m_systemWrites; }

private:
    void checkOpen() const;
    void checkReadable(const void* buffer, uint32_t count, const char* method) const;
    uint32_t readAvailable(uint8_t* out, uint32_t count);
    uint32_t systemRead(int64_t offset, void* buffer, uint32_t count);
    void systemWrite(int64_t offset, const void* buffer, uint32_t count);
    void flushBuffer();
    void refreshLength();
    [[noreturn]] void throwStreamError(const char* key, const char* englishDefault,
                                       const platform::NativeError& error) const;

    P<IURI> m_uri;
    uint32_t m_mode;
    std::unique_ptr<platform::INativeFile> m_file;
    std::unique_ptr<uint8_t[]> m_buffer;
    // The buffer holds the file's bytes [m_bufferStart, m_bufferStart + m_bufferLength), with
    // [m_dirtyBegin, m_dirtyEnd) of them changed and not yet written when m_dirty is set.
    int64_t m_bufferStart = 0;
    uint32_t m_bufferLength = 0;
    uint32_t m_dirtyBegin = 0;
    uint32_t m_dirtyEnd = 0;
    bool m_dirty = false;
    int64_t m_position = 0;
    int64_t m_length = 0;
    uint64_t m_systemReads = 0;
    uint64_t m_systemWrites = 0;
};

} // namespace kore
