#include "qxrun/data/LocalDays.h"

#include <algorithm>
#include <ctime>

namespace qxrun {
namespace {

constexpr int64_t kSecondsPerDay = 86400;

// The zone's offset east of UTC, in seconds, at `seconds` since 1970 UTC.
int64_t OffsetAt(int64_t seconds) {
  const auto instant = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (localtime_r(&instant, &local) == nullptr) return 0;
  return local.tm_gmtoff;
}

}  // namespace

void LocalDays::Enter(const CivilDate& date) {
  const int64_t wallMidnight = DaysFromCivil(date) * kSecondsPerDay;
  // The offset in force at the local midnight: a guess from the instant that reads the same as
  // UTC, corrected once.
  const int64_t guess = OffsetAt(wallMidnight);
  const int64_t before = OffsetAt(wallMidnight - guess);
  const int64_t dayStart = wallMidnight - before;
  const int64_t after = OffsetAt(dayStart + kSecondsPerDay - 1);
  known_ = true;
  date_ = date;
  localMidnight_ = wallMidnight * 1000;
  offsetBefore_ = before * 1000;
  offsetAfter_ = after * 1000;
  if (before == after) return;
  // The first second of the new offset, between the day's start and its end.
  int64_t low = dayStart;  // has the offset `before`
  int64_t high = dayStart + kSecondsPerDay - 1;
  while (high - low > 1) {
    const int64_t middle = low + (high - low) / 2;
    (OffsetAt(middle) == before ? low : high) = middle;
  }
  const int64_t wallOld = high + before - wallMidnight;  // the change read on the old clock
  const int64_t wallNew = high + after - wallMidnight;   // and on the new one
  earlyEdge_ = std::min(wallOld, wallNew) * 1000;
  lateEdge_ = std::max(wallOld, wallNew) * 1000;
}

int64_t LocalDays::Instant(const CivilDate& date, int32_t millisecondsOfDay, int64_t previous) {
  if (!known_ || !(date == date_)) Enter(date);
  const int64_t wall = localMidnight_ + millisecondsOfDay;
  if (offsetBefore_ == offsetAfter_ || millisecondsOfDay < earlyEdge_) return wall - offsetBefore_;
  if (millisecondsOfDay >= lateEdge_) return wall - offsetAfter_;
  const int64_t first = wall - offsetBefore_;
  const bool repeatedHour = offsetAfter_ < offsetBefore_;
  return repeatedHour && first <= previous ? wall - offsetAfter_ : first;
}

}  // namespace qxrun
