#include "output/WriteLog.h"

#include "platform/Services.h"
#include "util/DateCodec.h"

#include <IceUtil/RecMutex.h>

#include <cstdarg>
#include <cstdio>

namespace sysfuncs {
namespace {

// The writers' lock, made on first use and never destroyed: a log line may come at unload.
IceUtil::RecMutex& LogMutex() {
  static auto* mutex = new IceUtil::RecMutex();
  return *mutex;
}

// Formats into `out`, growing it to the message's length.
void FormatInto(std::string& out, const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  if (length < 0) {
    out.clear();
  } else {
    out.resize(static_cast<size_t>(length));
    std::vsnprintf(out.data(), out.size() + 1, format, again);
  }
  va_end(again);
}

}  // namespace

void WriteLog(const std::string& file, const char* format, ...) {
  IceUtil::RecMutex::Lock lock(LogMutex());
  std::string message;
  va_list arguments;
  va_start(arguments, format);
  FormatInto(message, format != nullptr ? format : "", arguments);
  va_end(arguments);

  const int64_t now = NowMillis();
  const CalendarFields local = LocalFields(InstantSeconds(now));
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "%04d%02d%02d %02d%02d%02d", local.Year, local.Month,
                local.Day, local.Hour, local.Minute, local.Second);

  std::printf("[%s] %s", stamp, message.c_str());
  std::fflush(stdout);

  const std::string name = file.empty() ? FormatDate(now, true) + ".log" : file;
  std::FILE* out = std::fopen(name.c_str(), "a");
  if (out == nullptr) return;  // a file that cannot be opened is skipped
  std::fprintf(out, "[%s] %s", stamp, message.c_str());
  std::fclose(out);
}

}  // namespace sysfuncs
