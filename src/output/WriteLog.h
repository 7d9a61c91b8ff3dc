// The library's own log lines: stamped, copied to standard output and appended to a file.
#ifndef SYSFUNCS_OUTPUT_WRITE_LOG_H_
#define SYSFUNCS_OUTPUT_WRITE_LOG_H_

#include <string>

namespace sysfuncs {

// Formats a message printf-style, stamps it with the local time "YYYYMMDD HHMMSS" and writes
// "[stamp] message" to standard output and, appended, to `file`; an empty `file` means the day's
// log "YYYYMMDD.log" in the current directory. No line end is added: the message ends with one
// itself. A file that cannot be opened is skipped. Writers are serialised by one process-wide
// recursive mutex, so a message may itself be built by code that logs.
void WriteLog(const std::string& file, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_WRITE_LOG_H_
