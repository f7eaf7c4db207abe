#pragma once
// A log sink that writes each record as one line (see CLogSink) to a file, in UTF-8, flushed
// after every record so that nothing is lost when the process ends abruptly. A host keeps its
// application log with
//     CLogManager::instance()->addLog("", make<CFileLog>(u"/path/app.log").get());
// Several processes may append to the same file: each record is written at the end in one piece.

#include "framework/log/CLogSink.h"
#include "framework/objects/P.h"

#include <cstdio>

namespace kore {

class IString;

class CFileLog : public CLogSink {
public:
    // Opens (creating it when missing) the file at `path`, appending to it or truncating it.
    // Throws CFileError "kore.CFileLog.OpenFailed" when the file cannot be opened.
    explicit CFileLog(const CStringArg& path, bool append = true);
    ~CFileLog() override;
    CFileLog(const CFileLog&) = delete;
    CFileLog& operator=(const CFileLog&) = delete;

    P<IString> getPath() const { return m_path; }

protected:
    // Throws CFileError "kore.CFileLog.WriteFailed" when the record could not be written whole.
    void writeLine(const std::string& line) override;

private:
    P<IString> m_path;
    std::FILE* m_file = nullptr;
};

} // namespace kore
