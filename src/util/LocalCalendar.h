// A per-instance cache of local calendar conversions for bar times.
#ifndef SYSFUNCS_UTIL_LOCAL_CALENDAR_H_
#define SYSFUNCS_UTIL_LOCAL_CALENDAR_H_

#include "util/DateCodec.h"

#include <cstdint>

namespace sysfuncs {

// Answers LocalFields(seconds) exactly, converting through the runtime only when `seconds` falls
// outside an interval over which the zone's UTC offset is known to be constant; inside it the
// fields follow from the local seconds by arithmetic. Bars arrive in time order, so when they
// come close together a conversion also verifies the span ahead, and the following bars are
// answered without a conversion. The same instant asked again (several calendar functions on one
// bar) is answered from the last answer. Not thread-safe: one per formula instance.
class LocalCalendar {
 public:
  CalendarFields Fields(int64_t seconds);

  // YYYY * 100 + MM of the local month of `seconds`, as Fields gives it. No zone's offset is
  // more than 26 hours from UTC, so an instant further than that from both ends of a local month
  // lies in that month whatever the offset: it is answered by arithmetic, and only instants near
  // the ends of a month are converted (through Fields). A daily series then needs a few
  // conversions a month instead of one a bar.
  int32_t YearMonth(int64_t seconds);

 private:
  static constexpr int64_t kLargestOffset = 26 * 3600;

  // How far ahead a conversion verifies the offset. Two offset changes within this span would be
  // missed; no zone changes its offset twice within a few hours.
  static constexpr int64_t kVerifiedSpan = 6 * 3600;

  int64_t first_ = 1;  // the verified interval [first_, last_]; empty while first_ > last_
  int64_t last_ = 0;
  int64_t utcOffset_ = 0;    // the offset throughout the interval
  int64_t latestKnown_ = 0;  // the latest instant converted or verified
  bool known_ = false;
  int64_t lastAsked_ = 0;
  bool asked_ = false;
  CalendarFields lastFields_;  // the answer for lastAsked_
  int64_t sureFirst_ = 1;      // [sureFirst_, sureLast_] lies in sureMonth_ under any offset
  int64_t sureLast_ = 0;
  int32_t sureMonth_ = 0;
};

// Calendar fields of local seconds since 1970 (UTC seconds plus the zone offset), by arithmetic.
CalendarFields FieldsOfLocalSeconds(int64_t localSeconds);

// Days since 1970-01-01 of a proleptic Gregorian date.
int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day);

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_LOCAL_CALENDAR_H_
