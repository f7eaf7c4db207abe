#include "framework/values/CFileValueStore.h"

#include "framework/errors/CException.h"
#include "framework/errors/CFileError.h"
#include "framework/io/FileSystemSupport.h"
#include "framework/io/IInStream.h"
#include "framework/io/IOutStream.h"
#include "framework/io/IStreamManager.h"
#include "framework/objects/Cast.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <algorithm>
#include <atomic>
#include <random>

namespace kore {

namespace {

// Distinct temporary names for concurrent writers, in this process and in others.
uint64_t nextTemporaryNumber()
{
    static const uint64_t seed = [] {
        std::random_device random;
        return (static_cast<uint64_t>(random()) << 32) ^ random();
    }();
    static std::atomic<uint64_t> counter{0};
    return seed + counter.fetch_add(1);
}

} // namespace

CFileValueStore::CFileValueStore(const IURI& uri) : m_uri(const_cast<IURI*>(&uri)), m_values(make<CValueList>())
{
}

void CFileValueStore::load()
{
    const P<IStream> stream = IStreamManager::instance()->openURI(*m_uri, IStreamManager::kRead);
    IInStream* in = cast<IInStream>(stream);
    std::string bytes;
    char block[65536];
    while (const uint32_t count = in->readSome(block, sizeof block))
        bytes.append(block, count);
    stream->close();

    auto fresh = make<CValueList>();
    try {
        decode(bytes, *fresh);
    } catch (const CException& e) {
        throw CFileError(m_uri.get(),
                         *localizedWith("kore.CFileValueStore.LoadFailed",
                                        "The values in '%FILE%' could not be read: %DESC%", "%FILE%", m_uri->toString())
                              ->replaceAll("%DESC%", e.getDescription()));
    }
    m_values->swap(*fresh);
}

void CFileValueStore::store()
{
    const std::string bytes = encode(*m_values);
    const P<IString> target = m_uri->getLocalPath();
    const P<IString> temporary =
        target->concat(formatString(".%llx.tmp", static_cast<unsigned long long>(nextTemporaryNumber())));
    P<IStream> stream = IStreamManager::instance()->openPath(*temporary, IStreamManager::kWrite);
    try {
        IOutStream* out = cast<IOutStream>(stream);
        for (size_t done = 0; done < bytes.size();) {
            const auto count = static_cast<uint32_t>(std::min<size_t>(bytes.size() - done, 1u << 30));
            out->write(bytes.data() + done, count);
            done += count;
        }
        stream->close();
        platform::NativeError error;
        if (!platform::replaceNativeFile(*temporary, *target, error))
            platform::throwFileError(m_uri.get(), error, "kore.CFileValueStore.ReplaceFailed",
                                     "The file '%FILE%' could not be replaced: %DESC%");
    } catch (...) {
        stream = nullptr;
        platform::NativeError ignored;
        platform::removeNativeFile(*temporary, ignored);
        throw;
    }
}

} // namespace kore
