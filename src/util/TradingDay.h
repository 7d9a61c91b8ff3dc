// The trading day of an instant: night sessions count towards the next working day.
#ifndef SYSFUNCS_UTIL_TRADING_DAY_H_
#define SYSFUNCS_UTIL_TRADING_DAY_H_

#include <cstdint>

namespace sysfuncs {

// True when two instants (seconds since 1970 UTC) fall on the same trading day. The trading day
// of an instant is the local date 7 hours later, moved on to Monday when that date is a Saturday
// or a Sunday: a Friday night session belongs to the following Monday.
bool SameTradingDay(int64_t secondsA, int64_t secondsB);

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_TRADING_DAY_H_
