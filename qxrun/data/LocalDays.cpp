#include "qxrun/data/LocalDays.h"

#include <algorithm>
#include <ctime>

namespace qxrun {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kLatestZone = 14 * 3600;    // UTC+14, the furthest east
constexpr int64_t kEarliestZone = 12 * 3600;  // UTC-12, the furthest west

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
  // Zones lie between UTC-12 and UTC+14, so the local day lies within these two instants, and
  // no zone changes its offset twice within them. The offsets there are the day's offsets
  // before and after any change; a change at the day's midnight is found like any other.
  const int64_t early = wallMidnight - kLatestZone - 3600;
  const int64_t late = wallMidnight + kSecondsPerDay + kEarliestZone + 3600;
  const int64_t before = OffsetAt(early);
  const int64_t after = OffsetAt(late);
  known_ = true;
  date_ = date;
  localMidnight_ = wallMidnight * 1000;
  offsetBefore_ = before * 1000;
  offsetAfter_ = after * 1000;
  if (before == after) return;
  // The first second of the new offset.
  int64_t low = early;  // has the offset `before`
  int64_t high = late;  // has the offset `after`
  while (high - low > 1) {
    const int64_t middle = low + (high - low) / 2;
    (OffsetAt(middle) == before ? low : high) = middle;
  }
  // The change read on the old clock and on the new one, in seconds of this day; outside
  // [0, 86400) when the change falls on the day before or after.
  const int64_t wallOld = high + before - wallMidnight;
  const int64_t wallNew = high + after - wallMidnight;
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
