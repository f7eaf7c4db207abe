#pragma once
// Common base of the text log sinks: its own level threshold (0 at creation: everything the
// manager passes on is written) and one readable line per record, in UTF-8:
//
//     2025-01-31T14:02:03.123Z INFO  [qor_lang::manager] Setting Language: de-DE
//     2025-01-31T14:02:03.125Z ERROR [kore::streams] Cannot read (code 5) (line 120)
//
// Time in UTC, then the level, the module in brackets (left out when empty), the text, and the
// code and line when given. A record from write() has no level: "<time> [module] record".
// Subclasses only put finished lines somewhere.

#include "framework/log/ILog.h"
#include "framework/objects/CObject.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace kore {

class CLogSink : public CObject, public ILog {
public:
    void write(const CStringArg& module, const CStringArg& record) override;
    void setLevel(int32_t level) override { m_level.store(level); }
    int32_t getLevel() const override { return m_level.load(); }
    // Drops records below the sink's own level.
    void log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line) override;

    // The line for one record, ending in "\n".
    static std::string formatRecord(std::chrono::system_clock::time_point time, int32_t level, const IString& module,
                                    const IString& text, int32_t code, int32_t line);
    static std::string formatWrite(std::chrono::system_clock::time_point time, const IString& module,
                                   const IString& record);
    // "DEBUG", "INFO", "WARN", "ERROR", else "L<level>".
    static std::string levelName(int32_t level);

protected:
    CLogSink() = default;
    // Writes one finished line; may throw.
    virtual void writeLine(const std::string& line) = 0;

private:
    std::atomic<int32_t> m_level{0};
};

} // namespace kore
