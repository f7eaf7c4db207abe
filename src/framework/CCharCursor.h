#pragma once
// Reads the characters of a string in blocks of 16 code points, one virtual call per block,
// forwards or backwards. Invalid bytes are skipped, as every reading of a string does.

#include "framework/ICharEncoding.h"
#include "framework/IString.h"

namespace kore {

class CCharCursor {
public:
    static constexpr uint32_t kBlock = 16;

    // Forwards from byte offset `start`.
    explicit CCharCursor(const IString& s, uint32_t start = 0)
        : m_buf(s.getBuffer()), m_len(s.getByteLength()), m_enc(s.getEncoding()), m_off(start)
    {
    }

    bool next(uint32_t& cp)
    {
        return take(cp, [this] {
            return m_enc->decodeChars(m_block, kBlock, m_count, m_buf, m_len, m_off, nullptr);
        });
    }

    // Backwards from the end; call only on a fresh cursor.
    bool prev(uint32_t& cp)
    {
        if (!m_backwards) {
            m_backwards = true;
            m_off = m_len;
        }
        return take(cp, [this] {
            return m_enc->decodePrevChars(m_block, kBlock, m_count, m_buf, m_len, m_off, nullptr);
        });
    }

private:
    const uint8_t* m_buf;
    uint32_t m_len;
    const ICharEncoding* m_enc;
    uint32_t m_off;
    uint32_t m_block[kBlock];
    uint32_t m_count = 0;
    uint32_t m_index = 0;
    bool m_done = false;
    bool m_backwards = false;

    // The next code point of the block, refilling it through `decodeBlock` when it is used up.
    template <class DecodeBlock>
    bool take(uint32_t& cp, const DecodeBlock& decodeBlock)
    {
        if (m_index == m_count) {
            if (m_done)
                return false;
            m_off = decodeBlock();
            m_index = 0;
            m_done = m_count < kBlock;
            if (m_count == 0)
                return false;
        }
        cp = m_block[m_index++];
        return true;
    }
};

} // namespace kore
