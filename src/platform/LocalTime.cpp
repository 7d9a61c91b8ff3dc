#include "platform/LocalTime.h"

#include <chrono>
#include <cstring>
#include <time.h>

namespace sysfuncs {

bool ToLocalTime(int64_t seconds, std::tm& out, int64_t& utcOffset) {
  std::memset(&out, 0, sizeof out);
  const time_t value = static_cast<time_t>(seconds);
  if (localtime_r(&value, &out) == nullptr) {
    std::memset(&out, 0, sizeof out);
    utcOffset = 0;
    return false;
  }
  utcOffset = out.tm_gmtoff;
  return true;
}

int64_t FromLocalTime(std::tm& local) { return static_cast<int64_t>(mktime(&local)); }

int64_t SystemNowMillis() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace sysfuncs
