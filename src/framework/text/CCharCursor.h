#pragma once
// Reads the characters of a string in blocks of 16 code points, one virtual call per block,
// forwards or backwards. Invalid bytes are skipped, as every reading of a string does.
// Forwards, a UTF-16 unit outside the surrogates and an ASCII byte of UTF-8 are characters on
// their own: those are read straight from the buffer, inline, and only the rest is decoded.

#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"
#include "framework/text/ICharEncoding.h"
#include "framework/text/IString.h"

namespace kore {

class CCharCursor {
public:
    static constexpr uint32_t kBlock = 16;

    // Forwards from byte offset `start`.
    explicit CCharCursor(const IString& s, uint32_t start = 0)
        : m_buf(s.getBuffer()), m_len(s.getByteLength()), m_enc(s.getEncoding()), m_off(start),
          m_direct(directUnit(*m_enc)), m_directEnd(m_direct == 0 || m_len < m_direct ? 0 : m_len - m_direct + 1)
    {
    }

    bool next(uint32_t& cp)
    {
        if (m_index == m_count && m_off < m_directEnd) {
            if (m_direct == 2) {
                const uint32_t u = m_buf[m_off] | uint32_t(m_buf[m_off + 1]) << 8;
                if (u - 0xD800 >= 0x800) {
                    cp = u;
                    m_off += 2;
                    return true;
                }
            } else if (m_buf[m_off] < 0x80) {
                cp = m_buf[m_off++];
                return true;
            }
        }
        return take(cp, [this] { return m_enc->decodeChars(m_block, kBlock, m_count, m_buf, m_len, m_off, nullptr); });
    }

    // Backwards from the end; call only on a fresh cursor.
    bool prev(uint32_t& cp)
    {
        if (!m_backwards) {
            m_backwards = true;
            m_directEnd = 0;
            m_off = m_len;
        }
        return take(cp,
                    [this] { return m_enc->decodePrevChars(m_block, kBlock, m_count, m_buf, m_len, m_off, nullptr); });
    }

private:
    static uint32_t directUnit(const ICharEncoding& enc)
    {
        const uint32_t id = enc.getId();
        return id == CUTF16CharEncoding::kId ? 2 : id == CUTF8CharEncoding::kId ? 1 : 0;
    }

    const uint8_t* m_buf;
    uint32_t m_len;
    const ICharEncoding* m_enc;
    uint32_t m_off;
    // 2: UTF-16, 1: UTF-8, 0: every character is decoded.
    uint32_t m_direct;
    // Where a whole unit no longer fits: no direct reading from there (0: none at all).
    uint32_t m_directEnd;
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
