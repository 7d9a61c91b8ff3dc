#include "util/TradingDay.h"

#include "util/DateCodec.h"
#include "util/LocalCalendar.h"

namespace sysfuncs {
namespace {

constexpr int64_t kSessionShift = 7 * 3600;  // a trading day starts at 17:00 local time

// The trading day as a day number. The weekend is skipped on the calendar, not by adding
// seconds, so a daylight-saving change cannot move the result.
int64_t TradingDayNumber(int64_t seconds) {
  const CalendarFields fields = LocalFields(seconds + kSessionShift);
  int64_t day = DaysFromCivil(fields.Year, fields.Month, fields.Day);
  if (fields.Weekday == 6) day += 2;  // Saturday
  if (fields.Weekday == 0) day += 1;  // Sunday
  return day;
}

}  // namespace

bool SameTradingDay(int64_t secondsA, int64_t secondsB) {
  return TradingDayNumber(secondsA) == TradingDayNumber(secondsB);
}

}  // namespace sysfuncs
