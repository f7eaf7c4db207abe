#pragma once
// The debugger trace: one line per call, "qor_trace: <file> (<line>) c=<comment>\n", or without
// " c=<comment>" when the comment is empty, built in a buffer of 1024 wide characters and cut
// there. On Windows the line goes to the debugger (OutputDebugStringW; free without one). On
// POSIX, which has no debugger channel, it goes to standard error, and only while tracing is
// enabled: by setTraceEnabled(true), or by the environment variable QOR_TRACE set to anything
// but "" or "0" (read once, at the first trace or query).

#include "framework/text/CStringArg.h"

#include <cstdint>

namespace kore {

inline constexpr uint32_t kTraceBufferSize = 1024;

void debugTrace(const CStringArg& file, int32_t line, const CStringArg& comment);

// Builds the trace line into `buffer` (UTF-16, NUL-terminated, at most kTraceBufferSize - 1
// units, never ending in half a surrogate pair); returns its length.
uint32_t formatTraceLine(char16_t (&buffer)[kTraceBufferSize], const CStringArg& file, int32_t line,
                         const CStringArg& comment);

// Governs the standard-error output on POSIX; the Windows debugger output is always written.
void setTraceEnabled(bool enabled);
bool isTraceEnabled();

} // namespace kore

// Traces the current source position with a comment.
#define KORE_TRACE(comment) ::kore::debugTrace(__FILE__, __LINE__, (comment))
