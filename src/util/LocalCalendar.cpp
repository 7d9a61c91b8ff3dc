#include "util/LocalCalendar.h"

namespace sysfuncs {
namespace {

int64_t FloorDivide(int64_t value, int64_t divisor) {
  const int64_t quotient = value / divisor;
  return (value % divisor != 0 && (value < 0) != (divisor < 0)) ? quotient - 1 : quotient;
}

}  // namespace

CalendarFields FieldsOfLocalSeconds(int64_t localSeconds) {
  const int64_t days = FloorDivide(localSeconds, 86400);
  const int64_t secondOfDay = localSeconds - days * 86400;

  // Civil date of a day count since 1970-01-01 in the proleptic Gregorian calendar, counted in
  // 400-year eras that start on 1 March so that the leap day ends a year.
  const int64_t shifted = days + 719468;
  const int64_t era = FloorDivide(shifted, 146097);
  const int64_t dayOfEra = shifted - era * 146097;
  const int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;

  CalendarFields fields;
  fields.Year = static_cast<int32_t>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
  fields.Month = static_cast<int32_t>(month);
  fields.Day = static_cast<int32_t>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  fields.Hour = static_cast<int32_t>(secondOfDay / 3600);
  fields.Minute = static_cast<int32_t>(secondOfDay % 3600 / 60);
  fields.Second = static_cast<int32_t>(secondOfDay % 60);
  fields.Weekday =
      static_cast<int32_t>(days - FloorDivide(days + 4, 7) * 7 + 4);  // 1970-01-01: Thu
  return fields;
}

int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

// Converts through the runtime; true when the answer equals the arithmetic one, so that the
// offset may be cached (a zone that counts leap seconds never qualifies).
static bool Convert(int64_t seconds, CalendarFields& fields, int64_t& utcOffset) {
  return LocalFields(seconds, fields, utcOffset) &&
         fields == FieldsOfLocalSeconds(seconds + utcOffset);
}

CalendarFields LocalCalendar::Fields(int64_t seconds) {
  if (asked_ && seconds == lastAsked_) return lastFields_;
  CalendarFields fields;
  if (seconds >= first_ && seconds <= last_) {
    fields = FieldsOfLocalSeconds(seconds + utcOffset_);
  } else {
    int64_t utcOffset = 0;
    const bool representable = LocalFields(seconds, fields, utcOffset);
    // Just past what is known: a dense series. Verify this instant and the span ahead, so that
    // the next bars are answered from the cache. A sparse series (daily bars) pays one conversion
    // per bar and nothing more.
    const bool dense = known_ && seconds > latestKnown_ && seconds - latestKnown_ <= kVerifiedSpan;
    latestKnown_ = seconds;
    known_ = representable;
    if (representable && dense && fields == FieldsOfLocalSeconds(seconds + utcOffset)) {
      CalendarFields ahead;
      int64_t aheadOffset = 0;
      if (Convert(seconds + kVerifiedSpan, ahead, aheadOffset) && aheadOffset == utcOffset) {
        first_ = seconds;
        last_ = latestKnown_ = seconds + kVerifiedSpan;
        utcOffset_ = utcOffset;
      }
    }
  }
  lastAsked_ = seconds;
  asked_ = true;
  lastFields_ = fields;
  return fields;
}

int32_t LocalCalendar::YearMonth(int64_t seconds) {
  if (seconds >= sureFirst_ && seconds <= sureLast_) return sureMonth_;
  const CalendarFields early = FieldsOfLocalSeconds(seconds - kLargestOffset);
  const CalendarFields late = FieldsOfLocalSeconds(seconds + kLargestOffset);
  if (early.Year != late.Year || early.Month != late.Month) {
    const CalendarFields fields = Fields(seconds);
    return fields.Year * 100 + fields.Month;
  }
  // The whole stretch of the month that no offset can move out of it.
  const int64_t monthStart = DaysFromCivil(early.Year, early.Month, 1) * 86400;
  const int64_t nextMonthStart = early.Month == 12
                                     ? DaysFromCivil(early.Year + 1, 1, 1) * 86400
                                     : DaysFromCivil(early.Year, early.Month + 1, 1) * 86400;
  sureFirst_ = monthStart + kLargestOffset;
  sureLast_ = nextMonthStart - 1 - kLargestOffset;
  sureMonth_ = early.Year * 100 + early.Month;
  return sureMonth_;
}

}  // namespace sysfuncs
