#include "chunk_file/CKoreFileStream.h"

#include "framework/io/IIOStream.h"
#include "framework/io/ISeekableIOStream.h"
#include "framework/io/ISeekableInStream.h"
#include "framework/io/ISeekableOutStream.h"
#include "framework/io/IStreamManager.h"
#include "framework/objects/Cast.h"

#include <algorithm>
#include <exception>
#include <memory>

namespace chf {

using kore::tryCast;

CKoreFileStream::CKoreFileStream(const kore::IURI& location, uint32_t mode)
    : m_stream(kore::IStreamManager::instance()->openURI(location, mode))
{
    findInterfaces();
}

CKoreFileStream::CKoreFileStream(kore::P<kore::IStream> stream) : m_stream(std::move(stream))
{
    if (!m_stream)
        throw std::exception();
    findInterfaces();
}

void CKoreFileStream::findInterfaces()
{
    const kore::IBase* s = m_stream.get();
    if (auto* in = tryCast<kore::ISeekableInStream>(s))
        m_seekable = in;
    else if (auto* io = tryCast<kore::ISeekableIOStream>(s))
        m_seekable = io;
    else if (auto* out = tryCast<kore::ISeekableOutStream>(s))
        m_seekable = out;
    if (auto* io = tryCast<kore::IIOStream>(s))
        m_output = io;
    else
        m_output = tryCast<kore::IOutStream>(s);
    m_input = tryCast<kore::IInStream>(s);
}

uint32_t CKoreFileStream::release()
{
    if (getRefCount() > 1 || !m_output)
        return CBaseStream::release();
    std::exception_ptr failure;
    try {
        m_output->flush();
    } catch (...) {
        failure = std::current_exception();
    }
    CBaseStream::release();
    if (failure)
        std::rethrow_exception(failure);
    return 0;
}

int64_t CKoreFileStream::getPosition()
{
    return m_stream->getPosition();
}

int64_t CKoreFileStream::getLength()
{
    return m_stream->getLength();
}

void CKoreFileStream::setPosition(int64_t position)
{
    if (!m_seekable)
        raiseUnsupported();
    m_seekable->seek(position);
}

int64_t CKoreFileStream::write(const void* buffer, int32_t count)
{
    if (!m_output || count < 0)
        raiseUnsupported();
    return m_output->write(buffer, static_cast<uint32_t>(count));
}

int64_t CKoreFileStream::read(void* buffer, int32_t count)
{
    // Without input nothing happens at all, whatever the count.
    if (!m_input)
        return 0;
    if (count < 0)
        raiseUnsupported();
    return m_input->read(buffer, static_cast<uint32_t>(count));
}

void CKoreFileStream::truncate(int64_t)
{
    raiseUnsupported();
}

void CKoreFileStream::extend(int64_t newLength)
{
    const int64_t position = getPosition();
    const int64_t oldLength = getLength();
    const int64_t growth = newLength - oldLength;
    if (growth > 0xFFFFFFFFLL)
        throw std::exception();
    if (growth > 0) {
        // Zeros in pieces: the same bytes as one large block, without allocating gigabytes.
        const auto piece = static_cast<uint32_t>(std::min<int64_t>(growth, kShiftBufferSize));
        std::unique_ptr<uint8_t[]> zeros(new uint8_t[piece]());
        setPosition(oldLength);
        for (int64_t left = growth; left > 0;) {
            const auto n = static_cast<int32_t>(std::min<int64_t>(left, piece));
            write(zeros.get(), n);
            left -= n;
        }
    }
    if (getLength() != newLength)
        raiseUnsupported();
    setPosition(position);
}

void CKoreFileStream::raiseUnsupported()
{
    throw std::exception();
}

} // namespace chf
