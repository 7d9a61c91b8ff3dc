// Conversions between instants and the machine's local calendar time.
#ifndef SYSFUNCS_PLATFORM_LOCAL_TIME_H_
#define SYSFUNCS_PLATFORM_LOCAL_TIME_H_

#include <cstdint>
#include <ctime>

namespace sysfuncs {

// Local broken-down time of `seconds` since 1970 UTC, thread-safe. `utcOffset` receives the
// zone's offset east of UTC in seconds at that instant. False (and a zeroed `out`) when the
// instant cannot be represented.
bool ToLocalTime(int64_t seconds, std::tm& out, int64_t& utcOffset);

// Seconds since 1970 UTC of a local broken-down time, normalising out-of-range fields; -1 when it
// cannot be represented.
int64_t FromLocalTime(std::tm& local);

// The present time in milliseconds since 1970 UTC, read from the system clock.
int64_t SystemNowMillis();

}  // namespace sysfuncs

#endif  // SYSFUNCS_PLATFORM_LOCAL_TIME_H_
