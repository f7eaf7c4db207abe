#include "framework/io/CDiskStream.h"

#include "framework/errors/CEndOfStreamError.h"
#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/errors/CReadOnlyError.h"
#include "framework/errors/CStreamClosedError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/errors/LocalizedText.h"
#include "framework/io/IURI.h"
#include "framework/text/CString.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>

namespace kore {

CDiskStream::CDiskStream(const IURI& uri, uint32_t mode) : m_uri(const_cast<IURI*>(&uri)), m_mode(mode)
{
    if (mode != kRead && mode != kWrite && mode != kReadWrite)
        throw CInvalidArgError(nullptr, "CDiskStream::CDiskStream", "mode", "CDiskStream");
    if (!uri.isFile())
        throw CURITypeNotSupportedError(&uri);
    const P<IString> path = uri.getLocalPath();
    platform::NativeError error;
    m_file = platform::openNativeFile(*path, mode, error);
    if (!m_file)
        platform::throwFileError(&uri, error, "kore.CDiskStream.OpenFailed",
                                 "The file '%FILE%' could not be opened: %DESC%");
    m_buffer.reset(new uint8_t[kBufferSize]);
    int64_t size = 0;
    if (!m_file->getSize(size, error))
        throwStreamError("kore.CDiskStream.SizeFailed", "The size of '%URI%' is not known: %DESC%", error);
    m_length = size;
}

CDiskStream::~CDiskStream()
{
    try {
        close();
    } catch (...) {
        // A destructor cannot report; close() explicitly to see a failed last write.
    }
}

P<IURI> CDiskStream::getURI() const
{
    return m_uri;
}

bool CDiskStream::castQuery(const std::type_info& target, const IBase*& redirect,
                            const CCastCandidate*& candidates) const
{
    const bool both = target == typeid(IIOStream) || target == typeid(ISeekableIOStream);
    const bool output = both || target == typeid(IOutStream) || target == typeid(ISeekableOutStream);
    const bool input = both || target == typeid(IInStream) || target == typeid(ISeekableInStream);
    if ((output && !(m_mode & kWrite)) || (input && !(m_mode & kRead)))
        return false;
    return CObject::castQuery(target, redirect, candidates);
}

void CDiskStream::checkOpen() const
{
    if (!m_file)
        throw CStreamClosedError(m_uri.get());
}

void CDiskStream::checkReadable(const void* buffer, uint32_t count, const char* method) const
{
    checkOpen();
    if (!(m_mode & kRead))
        throw CInvalidObjectStateError(this, "opened for writing only");
    if (count > 0 && !buffer)
        throw CInvalidArgError(this, method, "buffer");
}

void CDiskStream::throwStreamError(const char* key, const char* englishDefault,
                                   const platform::NativeError& error) const
{
    throw CStreamError(m_uri.get(), "Stream error",
                       getLocalizedText(key, englishDefault)
                           ->replaceAll("%URI%", CURIError::uriText(m_uri.get()))
                           ->replaceAll("%DESC%", CString::fromUTF8(error.message)));
}

uint32_t CDiskStream::systemRead(int64_t offset, void* buffer, uint32_t count)
{
    platform::NativeError error;
    uint32_t done = 0;
    ++m_systemReads;
    if (!m_file->readAt(offset, buffer, count, done, error))
        throwStreamError("kore.CDiskStream.ReadFailed", "Reading '%URI%' failed: %DESC%", error);
    return done;
}

void CDiskStream::systemWrite(int64_t offset, const void* buffer, uint32_t count)
{
    platform::NativeError error;
    ++m_systemWrites;
    if (!m_file->writeAt(offset, buffer, count, error))
        throwStreamError("kore.CDiskStream.WriteFailed", "Writing '%URI%' failed: %DESC%", error);
}

void CDiskStream::flushBuffer()
{
    if (!m_dirty)
        return;
    // Stays dirty if the write fails, so that a later flush tries again.
    systemWrite(m_bufferStart + m_dirtyBegin, m_buffer.get() + m_dirtyBegin, m_dirtyEnd - m_dirtyBegin);
    m_dirty = false;
}

void CDiskStream::refreshLength()
{
    platform::NativeError error;
    int64_t size = 0;
    if (!m_file->getSize(size, error))
        throwStreamError("kore.CDiskStream.SizeFailed", "The size of '%URI%' is not known: %DESC%", error);
    m_length = std::max(m_length, size);
}

uint32_t CDiskStream::readAvailable(uint8_t* out, uint32_t count)
{
    uint32_t done = 0;
    while (done < count) {
        if (m_position >= m_bufferStart && m_position - m_bufferStart < m_bufferLength) {
            const auto offset = static_cast<uint32_t>(m_position - m_bufferStart);
            const uint32_t n = std::min(count - done, m_bufferLength - offset);
            std::memcpy(out + done, m_buffer.get() + offset, n);
            done += n;
            m_position += n;
            continue;
        }
        // The file must hold every change before it is read behind the buffer's back.
        flushBuffer();
        const uint32_t remaining = count - done;
        if (remaining >= kBufferSize) {
            const uint32_t n = systemRead(m_position, out + done, remaining);
            if (n == 0)
                break;
            done += n;
            m_position += n;
            continue;
        }
        m_bufferStart = m_position;
        m_bufferLength = 0;
        m_bufferLength = systemRead(m_position, m_buffer.get(), kBufferSize);
        if (m_bufferLength == 0)
            break;
    }
    // Another writer may have made the file longer; a read that found nothing (at or behind the
    // end) says nothing about the length.
    if (done > 0)
        m_length = std::max(m_length, m_position);
    return done;
}

uint32_t CDiskStream::readSome(void* buffer, uint32_t count)
{
    checkReadable(buffer, count, "CDiskStream::readSome");
    if (count == 0)
        return 0;
    return readAvailable(static_cast<uint8_t*>(buffer), count);
}

uint32_t CDiskStream::read(void* buffer, uint32_t count)
{
    checkReadable(buffer, count, "CDiskStream::read");
    if (count == 0)
        return 0;
    if (m_position > m_length || count > m_length - m_position) {
        refreshLength();
        if (m_position > m_length || count > m_length - m_position)
            throw CEndOfStreamError(m_uri.get());
    }
    const int64_t start = m_position;
    if (readAvailable(static_cast<uint8_t*>(buffer), count) < count) {
        // The file became shorter under this stream.
        m_position = start;
        throw CEndOfStreamError(m_uri.get());
    }
    return count;
}

uint32_t CDiskStream::write(const void* buffer, uint32_t count)
{
    checkOpen();
    if (!(m_mode & kWrite))
        throw CReadOnlyError(*CURIError::uriText(m_uri.get()));
    if (count > 0 && !buffer)
        throw CInvalidArgError(this, "CDiskStream::write", "buffer");
    if (count == 0)
        return 0;
    if (m_position > std::numeric_limits<int64_t>::max() - count)
        throw CInvalidArgError(this, "CDiskStream::write", "count");
    const auto* in = static_cast<const uint8_t*>(buffer);

    if (count >= kBufferSize) {
        flushBuffer();
        systemWrite(m_position, in, count);
        // A buffered copy of the range just written is stale now.
        if (m_position < m_bufferStart + m_bufferLength && m_bufferStart < m_position + count)
            m_bufferLength = 0;
        m_position += count;
        m_length = std::max(m_length, m_position);
        return count;
    }

    uint32_t done = 0;
    while (done < count) {
        // The buffer takes the write when it continues or overlaps the bytes it holds.
        const bool inWindow = m_position >= m_bufferStart && m_position - m_bufferStart <= m_bufferLength &&
                              m_position - m_bufferStart < kBufferSize;
        if (!inWindow) {
            flushBuffer();
            m_bufferStart = m_position;
            m_bufferLength = 0;
        }
        const auto offset = static_cast<uint32_t>(m_position - m_bufferStart);
        const uint32_t n = std::min(count - done, kBufferSize - offset);
        std::memcpy(m_buffer.get() + offset, in + done, n);
        m_dirtyBegin = m_dirty ? std::min(m_dirtyBegin, offset) : offset;
        m_dirtyEnd = m_dirty ? std::max(m_dirtyEnd, offset + n) : offset + n;
        m_dirty = true;
        m_bufferLength = std::max(m_bufferLength, offset + n);
        done += n;
        m_position += n;
    }
    m_length = std::max(m_length, m_position);
    return count;
}

void CDiskStream::flush()
{
    checkOpen();
    flushBuffer();
}

void CDiskStream::seek(int64_t position)
{
    checkOpen();
    if (position < 0)
        throw CInvalidArgError(this, "CDiskStream::seek", "position");
    m_position = position;
}

void CDiskStream::close()
{
    if (!m_file)
        return;
    std::exception_ptr failure;
    try {
        flushBuffer();
    } catch (...) {
        failure = std::current_exception();
    }
    platform::NativeError error;
    const bool closed = m_file->close(error);
    m_file.reset();
    m_buffer.reset();
    m_dirty = false;
    m_bufferLength = 0;
    if (failure)
        std::rethrow_exception(failure);
    if (!closed)
        throwStreamError("kore.CDiskStream.CloseFailed", "Closing '%URI%' failed: %DESC%", error);
}

} // namespace kore
