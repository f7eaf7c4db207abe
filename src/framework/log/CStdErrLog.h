#pragma once
// A log sink that writes each record as one line (see CLogSink) to the process's standard error,
// in UTF-8. For developers and for hosts that run with a console or capture standard error:
//     CLogManager::instance()->addLog("", make<CStdErrLog>().get());

#include "framework/log/CLogSink.h"

namespace kore {

class CStdErrLog : public CLogSink {
public:
    CStdErrLog() = default;

protected:
    void writeLine(const std::string& line) override;
};

} // namespace kore
