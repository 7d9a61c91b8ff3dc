// Local dates and times of day of bar files turned into instants.
#ifndef QXRUN_DATA_LOCAL_DAYS_H_
#define QXRUN_DATA_LOCAL_DAYS_H_

#include "qxrun/data/DateParsing.h"

#include <cstdint>
#include <limits>

namespace qxrun {

// Converts local wall-clock times of the process time zone (TZ) to milliseconds since 1970 UTC,
// asking the runtime only when the date changes: rows of one day share the day's offsets. On a
// day whose offset changes, a time before the change takes the offset before it and a time after
// it the offset after it. A time in the hour skipped when clocks go forward takes the offset
// before the change (02:30 becomes 03:30 of the new offset). A time in the hour repeated when
// clocks go back takes the earlier offset, unless that instant is not after `previous` (the bar
// before it), in which case it is the second pass through that hour: a minute file through the
// night of a change loads in order. Not thread-safe: one per file being read.
class LocalDays {
 public:
  static constexpr int64_t kNoPrevious = std::numeric_limits<int64_t>::min();

  // `millisecondsOfDay` lies in [0, 86400000).
  int64_t Instant(const CivilDate& date, int32_t millisecondsOfDay, int64_t previous = kNoPrevious);

 private:
  void Enter(const CivilDate& date);

  bool known_ = false;
  CivilDate date_;
  int64_t localMidnight_ = 0;  // local milliseconds since 1970 of the day's 00:00
  int64_t offsetBefore_ = 0;   // milliseconds east of UTC at the start of the day
  int64_t offsetAfter_ = 0;    // at its end; equal when the day has no change
  int64_t earlyEdge_ = 0;      // milliseconds of the day where the skipped or repeated hour
  int64_t lateEdge_ = 0;       // begins and ends
};

}  // namespace qxrun

#endif  // QXRUN_DATA_LOCAL_DAYS_H_
