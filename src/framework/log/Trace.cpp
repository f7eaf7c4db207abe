#include "framework/log/Trace.h"

#include "framework/log/LogPlatform.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/IString.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace kore {

namespace {

std::atomic<bool>& traceFlag()
{
    // Initialised once, thread-safely, from the environment; setTraceEnabled overrides it.
    static std::atomic<bool> flag{[] {
        const char* value = std::getenv("QOR_TRACE");
        return value && *value && std::strcmp(value, "0") != 0;
    }()};
    return flag;
}

// Appends UTF-16 units to a fixed buffer, cutting at its end (one unit stays for the NUL).
class CTraceBuffer {
public:
    explicit CTraceBuffer(char16_t (&buffer)[kTraceBufferSize]) : m_buffer(buffer) {}

    void put(uint32_t cp)
    {
        if (m_full)
            return;
        const uint32_t units = cp >= 0x10000 ? 2 : 1;
        if (m_length + units > kTraceBufferSize - 1) {
            m_full = true;
            return;
        }
        if (units == 2) {
            cp -= 0x10000;
            m_buffer[m_length++] = static_cast<char16_t>(0xD800 + (cp >> 10));
            m_buffer[m_length++] = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            m_buffer[m_length++] = static_cast<char16_t>(cp);
        }
    }
    void put(const char* ascii)
    {
        while (*ascii)
            put(static_cast<uint32_t>(static_cast<unsigned char>(*ascii++)));
    }
    void put(const IString& text)
    {
        CCharCursor cursor(text);
        for (uint32_t cp = 0; !m_full && cursor.next(cp);)
            put(cp);
    }
    void put(int32_t number)
    {
        char digits[16];
        int n = 0;
        // Through int64 so that the most negative value prints too.
        int64_t v = number;
        const bool negative = v < 0;
        if (negative)
            v = -v;
        do {
            digits[n++] = static_cast<char>('0' + v % 10);
            v /= 10;
        } while (v != 0);
        if (negative)
            put(uint32_t{'-'});
        while (n > 0)
            put(static_cast<uint32_t>(digits[--n]));
    }
    uint32_t finish()
    {
        m_buffer[m_length] = 0;
        return m_length;
    }

private:
    char16_t (&m_buffer)[kTraceBufferSize];
    uint32_t m_length = 0;
    bool m_full = false;
};

} // namespace

uint32_t formatTraceLine(char16_t (&buffer)[kTraceBufferSize], const CStringArg& file, int32_t line,
                         const CStringArg& comment)
{
    CTraceBuffer out(buffer);
    out.put("qor_trace: ");
    out.put(file.get());
    out.put(" (");
    out.put(line);
    out.put(")");
    if (comment->getLength() != 0) {
        out.put(" c=");
        out.put(comment.get());
    }
    out.put("\n");
    return out.finish();
}

void debugTrace(const CStringArg& file, int32_t line, const CStringArg& comment)
{
    char16_t buffer[kTraceBufferSize];
    const uint32_t length = formatTraceLine(buffer, file, line, comment);
    platform::writeDebuggerOutput(buffer, length);
}

void setTraceEnabled(bool enabled)
{
    traceFlag().store(enabled);
}

bool isTraceEnabled()
{
    return traceFlag().load();
}

} // namespace kore
