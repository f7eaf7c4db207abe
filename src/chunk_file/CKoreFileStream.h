#pragma once
// The container's adapter onto a framework stream (normally a file opened through the stream
// manager). Seeking, writing and reading go to whichever framework interface the stream offers;
// a stream that cannot be shortened makes every removal of bytes end in an exception.

#include "chunk_file/CBaseStream.h"
#include "framework/io/IInStream.h"
#include "framework/io/IOutStream.h"
#include "framework/io/ISeekable.h"
#include "framework/io/IStream.h"
#include "framework/io/IURI.h"
#include "framework/objects/P.h"

namespace chf {

class CKoreFileStream : public CBaseStream {
public:
    // Opens `location` through the framework's stream manager in `mode` (1 = read, 2 = write,
    // 3 = read-write). The framework's errors (file not found, access denied, ...) pass through.
    CKoreFileStream(const kore::IURI& location, uint32_t mode);
    // Adapts a stream that is already open.
    explicit CKoreFileStream(kore::P<kore::IStream> stream);

    int64_t getPosition() override;
    int64_t getLength() override;
    void setPosition(int64_t position) override;
    int64_t write(const void* buffer, int32_t count) override;
    // Reads nothing, silently, when the stream offers no input.
    int64_t read(void* buffer, int32_t count) override;

    // The last reference flushes the framework stream first and rethrows a failed flush once the
    // adapter is gone, like a chunk stream's size write-back: a destructor could only swallow it.
    uint32_t release() override;

    // Framework streams cannot be shortened.
    void truncate(int64_t newLength) override;
    // Writes zeros at the end; growing by more than 4 GiB - 1 at once is refused.
    void extend(int64_t newLength) override;
    [[noreturn]] virtual void raiseUnsupported();

protected:
    ~CKoreFileStream() override = default;

private:
    void findInterfaces();

    kore::P<kore::IStream> m_stream;
    // What the stream offers, asked once: the order of the questions decides which one serves.
    kore::ISeekable* m_seekable = nullptr;
    kore::IOutStream* m_output = nullptr;
    kore::IInStream* m_input = nullptr;
};

} // namespace chf
