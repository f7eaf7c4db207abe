#pragma once
// The string table of a language file taken literally, as the oracle of the loader's answers:
// chained buckets, 1000 at first, the file format's hash, each new entry at the head of its
// chain, the bucket count doubled once the count passes 0.8 times it (every entry moved, in chain
// order, to the head of its new chain), a "data" chunk emptying the entries but keeping the
// buckets. Handing the entries over bucket by bucket, each chain from its head, to a map that
// keeps the last text of a key gives what a language answers.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace lang_test {

class CStringTableModel {
public:
    static uint32_t hash(const std::u16string& key)
    {
        uint32_t h = 0;
        for (char16_t c : key)
            h ^= (h << 5) + static_cast<uint32_t>(static_cast<int32_t>(h) >> 2) + c;
        return h;
    }

    // A new "data" chunk: the entries go, the buckets stay.
    void beginChunk()
    {
        for (auto& chain : m_buckets)
            chain.clear();
        m_count = 0;
    }

    // A chain's head is the back of its vector.
    void insert(const std::u16string& key, const std::u16string& text)
    {
        const uint32_t h = hash(key);
        m_buckets[h % m_buckets.size()].push_back({key, text, h});
        if (static_cast<double>(++m_count) > 0.8 * static_cast<double>(m_buckets.size())) {
            std::vector<std::vector<Node>> grown(2 * m_buckets.size());
            for (const auto& chain : m_buckets) {
                for (auto node = chain.rbegin(); node != chain.rend(); ++node)
                    grown[node->hash % grown.size()].push_back(*node);
            }
            m_buckets.swap(grown);
        }
    }

    std::map<std::u16string, std::u16string> answers() const
    {
        std::map<std::u16string, std::u16string> out;
        for (const auto& chain : m_buckets) {
            for (auto node = chain.rbegin(); node != chain.rend(); ++node)
                out[node->key] = node->text;
        }
        return out;
    }

private:
    struct Node {
        std::u16string key, text;
        uint32_t hash;
    };
    std::vector<std::vector<Node>> m_buckets = std::vector<std::vector<Node>>(1000);
    int32_t m_count = 0;
};

} // namespace lang_test
