#include "framework/containers/CSimpleHashTableTemplateBase.h"

#include "framework/containers/TSimpleHashTable.h"
#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/text/CString.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

namespace kore {

namespace {

// Far beyond any real table, and small enough that the bucket array's size cannot overflow.
constexpr uint32_t kMaxBucketCount = 0x10000000u;

void checkFactor(double value, const char* name)
{
    if (!std::isfinite(value) || value <= 0.0)
        throw CInvalidArgError(nullptr, "TSimpleHashTable::TSimpleHashTable",
                               (std::string(name) + " " + std::to_string(value) + " is not a positive number").c_str(),
                               "TSimpleHashTable");
}

} // namespace

CSimpleHashTableTemplateBase::CSimpleHashTableTemplateBase(double loadFactor, double growthFactor)
    : m_loadFactor(loadFactor), m_growthFactor(growthFactor)
{
    checkFactor(loadFactor, "loadFactor");
    checkFactor(growthFactor, "growthFactor");
}

CSimpleHashTableTemplateBase::~CSimpleHashTableTemplateBase() = default;

void CSimpleHashTableTemplateBase::prepareInsert()
{
    if (static_cast<double>(m_count) + 1.0 >= static_cast<double>(m_bucketCount) * m_loadFactor)
        rehash();
}

void CSimpleHashTableTemplateBase::rehash()
{
    uint32_t newCount = kFirstBucketCount;
    if (m_bucketCount != 0) {
        if (m_bucketCount >= kMaxBucketCount)
            throw COutOfmemoryException();
        const double grown = std::floor(static_cast<double>(m_bucketCount) * m_growthFactor);
        newCount = grown >= static_cast<double>(kMaxBucketCount) ? kMaxBucketCount : static_cast<uint32_t>(grown);
        if (newCount < m_bucketCount + 1)
            newCount = m_bucketCount + 1;
    }
    void** fresh = nullptr;
    try {
        fresh = new void*[newCount]();
    } catch (const std::bad_alloc&) {
        throw COutOfmemoryException();
    }
    // Bucket by bucket from 0 upwards, each chain from its head, every node to the front of its
    // new bucket; the stored hash decides, keys are not hashed again.
    for (uint32_t b = 0; b < m_bucketCount; ++b) {
        void* node = m_buckets[b];
        while (node) {
            void*& next = nextOf(node);
            void* following = next;
            void** head = &fresh[hashOf(node) % newCount];
            next = *head;
            *head = node;
            node = following;
        }
    }
    delete[] m_buckets;
    m_buckets = fresh;
    m_bucketCount = newCount;
}

void CSimpleHashTableTemplateBase::linkFront(void* node, uint32_t hash) noexcept
{
    void** head = bucketFor(hash);
    nextOf(node) = *head;
    *head = node;
    ++m_count;
}

void CSimpleHashTableTemplateBase::unlink(void** link) noexcept
{
    void* node = *link;
    *link = nextOf(node);
    nextOf(node) = nullptr;
    --m_count;
}

void CSimpleHashTableTemplateBase::deleteChains(void** buckets, uint32_t bucketCount) noexcept
{
    for (uint32_t b = 0; b < bucketCount; ++b) {
        void* node = buckets[b];
        while (node) {
            void* following = nextOf(node);
            deleteNode(node);
            node = following;
        }
    }
}

void CSimpleHashTableTemplateBase::clear() noexcept
{
    if (m_count == 0)
        return;
    deleteChains(m_buckets, m_bucketCount);
    std::memset(m_buckets, 0, m_bucketCount * sizeof(void*));
    m_count = 0;
}

void CSimpleHashTableTemplateBase::releaseAll() noexcept
{
    void** buckets = m_buckets;
    const uint32_t bucketCount = m_bucketCount;
    m_buckets = nullptr;
    m_bucketCount = 0;
    m_count = 0;
    if (buckets) {
        deleteChains(buckets, bucketCount);
        delete[] buckets;
    }
}

void throwInvalidHashTableKey()
{
    throw CInvalidArgError(nullptr, "TSimpleHashTable::set", "key (null)", "TSimpleHashTable");
}

// --- String keys

bool TSimpleHashKeyTraits<P<IString>>::equals(const P<IString>& stored, const IString& key)
{
    const IString& s = *stored;
    if (&s == &key)
        return true;
    // Same encoding and same bytes is the same text: the usual case, and a memcmp.
    if (s.getEncoding() == key.getEncoding() && s.getByteLength() == key.getByteLength() &&
        std::memcmp(s.getBuffer(), key.getBuffer(), s.getByteLength()) == 0)
        return true;
    return s.equals(key);
}

void CSimpleHashTableTemplateBase::swapWith(CSimpleHashTableTemplateBase& other) noexcept
{
    std::swap(m_loadFactor, other.m_loadFactor);
    std::swap(m_growthFactor, other.m_growthFactor);
    std::swap(m_buckets, other.m_buckets);
    std::swap(m_bucketCount, other.m_bucketCount);
    std::swap(m_count, other.m_count);
}

} // namespace kore
