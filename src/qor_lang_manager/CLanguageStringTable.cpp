#include "qor_lang_manager/CLanguageStringTable.h"

namespace qor_lang {

CLanguageStringTable::CLanguageStringTable() : m_buckets(kInitialBuckets, nullptr) {}

CLanguageStringTable::~CLanguageStringTable()
{
    clear();
}

uint32_t CLanguageStringTable::hashKey(const CountedString& key)
{
    uint32_t h = 0;
    if (!key)
        return h;
    for (char16_t c : *key) {
        // The right shift is arithmetic on the signed value, as the file format defines it.
        const auto shifted = static_cast<uint32_t>(static_cast<int32_t>(h) >> 2);
        h ^= (h << 5) + shifted + c;
    }
    return h;
}

void CLanguageStringTable::insert(CLanguageStringEntry entry)
{
    if (m_buckets.empty())
        m_buckets.assign(kInitialBuckets, nullptr);
    const uint32_t hash = hashKey(entry.key);
    Node*& head = m_buckets[hash % m_buckets.size()];
    head = new Node{std::move(entry), hash, head};
    ++m_count;
    if (static_cast<double>(m_count) > 0.8 * static_cast<double>(m_buckets.size()))
        grow();
}

void CLanguageStringTable::grow()
{
    std::vector<Node*> buckets(m_buckets.size() * 2, nullptr);
    // Each moved node goes to the head of its new chain, so nodes that land together reverse.
    for (Node* node : m_buckets) {
        while (node) {
            Node* next = node->next;
            Node*& head = buckets[node->hash % buckets.size()];
            node->next = head;
            head = node;
            node = next;
        }
    }
    m_buckets.swap(buckets);
}

void CLanguageStringTable::clear()
{
    for (Node*& head : m_buckets) {
        while (head) {
            Node* next = head->next;
            delete head;
            head = next;
        }
    }
    m_count = 0;
}

void CLanguageStringTable::release()
{
    clear();
    std::vector<Node*>().swap(m_buckets);
}

const CLanguageStringEntry* CLanguageStringTable::find(const std::u16string& key) const
{
    if (m_buckets.empty())
        return nullptr;
    const CountedString wanted(key);
    for (const Node* node = m_buckets[hashKey(wanted) % m_buckets.size()]; node; node = node->next) {
        if (node->entry.key.value_or(std::u16string()) == key)
            return &node->entry;
    }
    return nullptr;
}

void CLanguageStringTable::forEach(const std::function<void(const CLanguageStringEntry&)>& visit) const
{
    for (const Node* head : m_buckets) {
        for (const Node* node = head; node; node = node->next)
            visit(node->entry);
    }
}

} // namespace qor_lang
