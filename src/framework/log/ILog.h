#pragma once
// A destination or dispatcher of log records. The log manager (CLogManager) is one; the sinks
// registered with it (CStdErrLog, CFileLog, or a host's own) are others.
//
// Levels: 0 debug (diagnostics for developers), 1 info (normal events worth keeping, such as a
// change of language), 2 warning (something went wrong and was worked around), 3 error
// (an operation failed). A threshold lets records at or above it pass; higher levels are
// accepted and treated as more severe.
//
// The two further arguments of log: `code`, an error or event code to keep with the record
// (kNoCode: none; an operating-system error number, say), and `line`, the source line the record
// comes from (kNoLine: not given). The shortcuts pass kNoLine as the line.

#include "framework/errors/CException.h"
#include "framework/objects/IBase.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <cstdint>

namespace kore {

class ILog : public virtual IBase {
public:
    static constexpr int32_t kDebug = 0;
    static constexpr int32_t kInfo = 1;
    static constexpr int32_t kWarning = 2;
    static constexpr int32_t kError = 3;
    static constexpr int32_t kNoCode = 0;
    static constexpr int32_t kNoLine = -1;

    // A record that bypasses every level: written as it stands.
    virtual void write(const CStringArg& module, const CStringArg& record) = 0;
    virtual void setLevel(int32_t level) = 0;
    virtual int32_t getLevel() const = 0;
    virtual void log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line) = 0;

    virtual void debug(const CStringArg& module, const CStringArg& text, int32_t code)
    {
        log(kDebug, module, text, code, kNoLine);
    }
    virtual void info(const CStringArg& module, const CStringArg& text, int32_t code)
    {
        log(kInfo, module, text, code, kNoLine);
    }
    virtual void warning(const CStringArg& module, const CStringArg& text, int32_t code)
    {
        log(kWarning, module, text, code, kNoLine);
    }
    virtual void error(const CStringArg& module, const CStringArg& text, int32_t code)
    {
        log(kError, module, text, code, kNoLine);
    }
    // Logs the error's description at level kError.
    virtual void logError(const CStringArg& module, const CException& error)
    {
        log(kError, module, error.getDescription(), kNoCode, kNoLine);
    }
};

} // namespace kore
