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

 private:
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
};

// Calendar fields of local seconds since 1970 (UTC seconds plus the zone offset), by arithmetic.
CalendarFields FieldsOfLocalSeconds(int64_t localSeconds);

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_LOCAL_CALENDAR_H_
