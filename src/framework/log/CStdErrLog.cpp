#include "framework/log/CStdErrLog.h"

#include <cstdio>

namespace kore {

void CStdErrLog::writeLine(const std::string& line)
{
    // One write per record: lines from several threads or processes do not interleave.
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

} // namespace kore
