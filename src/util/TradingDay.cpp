#include "util/TradingDay.h"

#include "util/DateCodec.h"

namespace sysfuncs {
namespace {

constexpr int64_t kSessionShift = 7 * 3600;  // a trading day starts at 17:00 local time

// Days since 1970-01-01 of a proleptic Gregorian date.
int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

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
