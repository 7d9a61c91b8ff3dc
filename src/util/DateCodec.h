// The formula language's date and time encodings and their texts.
//
// Instants are milliseconds since 1970-01-01 00:00:00 UTC. Calendar fields are always those of the
// machine's local time zone.
#ifndef SYSFUNCS_UTIL_DATE_CODEC_H_
#define SYSFUNCS_UTIL_DATE_CODEC_H_

#include <cstdint>
#include <string>

namespace sysfuncs {

// Local calendar fields of an instant.
struct CalendarFields {
  int32_t Year = 0;   // four digits
  int32_t Month = 0;  // 1 to 12
  int32_t Day = 0;    // 1 to 31
  int32_t Hour = 0;
  int32_t Minute = 0;
  int32_t Second = 0;   // 60 on a leap second
  int32_t Weekday = 0;  // 0 Sunday to 6 Saturday

  bool operator==(const CalendarFields&) const = default;
};

// Seconds of an instant: milliseconds divided by 1000, truncated toward zero.
inline int64_t InstantSeconds(int64_t instant) { return instant / 1000; }

// Local calendar fields of `seconds` since 1970 UTC.
CalendarFields LocalFields(int64_t seconds);

// The same, also giving the zone's offset east of UTC in seconds at that instant; false (with
// the fields of a zeroed broken-down time) when the instant cannot be represented.
bool LocalFields(int64_t seconds, CalendarFields& fields, int64_t& utcOffset);

// YYYYMMDD, e.g. 20240305.
inline int32_t EncodeDate(const CalendarFields& fields) {
  return (fields.Year * 100 + fields.Month) * 100 + fields.Day;
}

// 0.HHMMSS: three divisions added in this order, minute part first, in double precision.
inline double EncodeTime(const CalendarFields& fields) {
  return fields.Minute / 10000.0 + fields.Hour / 100.0 + fields.Second / 1000000.0;
}

// Formula date and time of an instant; milliseconds are not part of either.
int32_t ToFormulaDate(int64_t instant);
double ToFormulaTime(int64_t instant);

// Texts of an instant. An instant before 1970 formats as the present time.
// FormatDate: "YYYYMMDD" when compact, else "YYYY/MM/DD".
std::string FormatDate(int64_t instant, bool compact);
// FormatTimeOfDay: "HH:MM:SS", with ".mmm" when withMillis.
std::string FormatTimeOfDay(int64_t instant, bool withMillis);
// FormatDateTime: precision 1 to the millisecond, 2 to the minute, 3 to the hour, any other value
// to the second; compact drops the separators of date and time.
std::string FormatDateTime(int64_t instant, int32_t precision, bool compact);

// Reads "YYYY/MM/DD[ hh:mm:ss[.mmm]]" ('-' may stand for '/', '.' for ':') as local time. On
// failure shows the data-format message to the user and returns false, leaving `instant` alone.
bool ParseDateTime(const std::string& text, int64_t& instant);

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_DATE_CODEC_H_
