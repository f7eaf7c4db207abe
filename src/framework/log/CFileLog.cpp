#include "framework/log/CFileLog.h"

#include "framework/errors/CFileError.h"
#include "framework/log/LogPlatform.h"
#include "framework/values/CValueList.h"

namespace kore {

CFileLog::CFileLog(const CStringArg& path, bool append)
    : m_path(CValueList::copyText(path.get())), m_file(platform::openLogFile(*m_path, append))
{
    if (!m_file)
        throw CFileError(nullptr, localizedWith("kore.CFileLog.OpenFailed",
                                                "The log file '%FILE%' could not be opened.", "%FILE%", m_path));
}

CFileLog::~CFileLog()
{
    if (m_file)
        std::fclose(m_file);
}

void CFileLog::writeLine(const std::string& line)
{
    const size_t written = std::fwrite(line.data(), 1, line.size(), m_file);
    if (std::fflush(m_file) != 0 || written != line.size()) {
        std::clearerr(m_file);
        throw CFileError(nullptr, localizedWith("kore.CFileLog.WriteFailed", "Writing to the log file '%FILE%' failed.",
                                                "%FILE%", m_path));
    }
}

} // namespace kore
