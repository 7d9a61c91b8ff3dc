#include "util/DateCodec.h"

#include "platform/LocalTime.h"
#include "platform/Services.h"
#include "util/DisplayNames.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace sysfuncs {
namespace {

// What the user sees when a date-time text cannot be read.
constexpr const char* kBadDateTimeMessage = "数据文件的日期时间格式有误，请检查数据格式！";

CalendarFields FieldsOf(const std::tm& broken) {
  CalendarFields fields;
  fields.Year = broken.tm_year + 1900;
  fields.Month = broken.tm_mon + 1;
  fields.Day = broken.tm_mday;
  fields.Hour = broken.tm_hour;
  fields.Minute = broken.tm_min;
  fields.Second = broken.tm_sec;
  fields.Weekday = broken.tm_wday;
  return fields;
}

// Fields and milliseconds a formatter prints: an instant before 1970 prints as the present time.
struct PrintedInstant {
  CalendarFields fields;
  int32_t millis = 0;
};

PrintedInstant ForPrinting(int64_t instant) {
  int64_t seconds = InstantSeconds(instant);
  if (seconds < 0) {
    instant = NowMillis();
    seconds = InstantSeconds(instant);
  }
  return {LocalFields(seconds), static_cast<int32_t>(instant - seconds * 1000)};
}

// Pieces separated by runs of blanks, with no empty piece.
std::vector<std::string> SplitAtBlanks(const std::string& text) {
  std::vector<std::string> pieces;
  size_t start = 0;
  while ((start = text.find_first_not_of(' ', start)) != std::string::npos) {
    const size_t end = text.find(' ', start);
    pieces.push_back(text.substr(start, end - start));
    start = end;
  }
  return pieces;
}

int32_t DecimalValue(const std::string& text) {
  return static_cast<int32_t>(std::atoi(text.c_str()));
}

bool ParsePieces(std::string text, int64_t& instant) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return false;
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  for (char& c : text) {
    if (c == '-') c = '/';
    if (c == '.') c = ':';
  }
  const std::vector<std::string> pieces = SplitAtBlanks(text);
  if (pieces.empty() || pieces.size() > 2) return false;

  const std::vector<std::string> date = SplitText(pieces[0], '/');
  if (date.size() != 3) return false;
  const int32_t year = DecimalValue(date[0]);
  if (year < 1900) return false;

  int32_t hour = 0, minute = 0, second = 0, millis = 0;
  if (pieces.size() == 2) {
    const std::vector<std::string> time = SplitText(pieces[1], ':');
    if (time.size() != 3 && time.size() != 4) return false;
    hour = DecimalValue(time[0]);
    minute = DecimalValue(time[1]);
    second = DecimalValue(time[2]);
    if (time.size() == 4) millis = DecimalValue(time[3]);
  }

  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = DecimalValue(date[1]) - 1;
  local.tm_mday = DecimalValue(date[2]);
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_sec = second;
  local.tm_isdst = -1;  // the zone's rules decide, as for any local time
  // A time too far out for a millisecond instant names no instant: refused like a bad text.
  int64_t milliseconds = 0;
  if (__builtin_mul_overflow(FromLocalTime(local), int64_t{1000}, &milliseconds) ||
      __builtin_add_overflow(milliseconds, int64_t{millis}, &milliseconds)) {
    return false;
  }
  instant = milliseconds;
  return true;
}

}  // namespace

bool LocalFields(int64_t seconds, CalendarFields& fields, int64_t& utcOffset) {
  std::tm broken;
  const bool converted = ToLocalTime(seconds, broken, utcOffset);
  fields = FieldsOf(broken);
  return converted;
}

CalendarFields LocalFields(int64_t seconds) {
  CalendarFields fields;
  int64_t utcOffset = 0;
  LocalFields(seconds, fields, utcOffset);
  return fields;
}

int32_t ToFormulaDate(int64_t instant) { return EncodeDate(LocalFields(InstantSeconds(instant))); }

double ToFormulaTime(int64_t instant) { return EncodeTime(LocalFields(InstantSeconds(instant))); }

std::string FormatDate(int64_t instant, bool compact) {
  const PrintedInstant at = ForPrinting(instant);
  char text[16];
  std::snprintf(text, sizeof text, compact ? "%04d%02d%02d" : "%04d/%02d/%02d", at.fields.Year,
                at.fields.Month, at.fields.Day);
  return text;
}

std::string FormatTimeOfDay(int64_t instant, bool withMillis) {
  const PrintedInstant at = ForPrinting(instant);
  char text[32];
  if (withMillis) {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", at.fields.Hour, at.fields.Minute,
                  at.fields.Second, at.millis);
  } else {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", at.fields.Hour, at.fields.Minute,
                  at.fields.Second);
  }
  return text;
}

std::string FormatDateTime(int64_t instant, int32_t precision, bool compact) {
  const PrintedInstant at = ForPrinting(instant);
  const CalendarFields& f = at.fields;
  char text[32];
  switch (precision) {
    case 1:
      std::snprintf(
          text, sizeof text,
          compact ? "%04d%02d%02d %02d%02d%02d%03d" : "%04d/%02d/%02d %02d:%02d:%02d.%03d", f.Year,
          f.Month, f.Day, f.Hour, f.Minute, f.Second, at.millis);
      break;
    case 2:
      std::snprintf(text, sizeof text,
                    compact ? "%04d%02d%02d %02d%02d" : "%04d/%02d/%02d %02d:%02d", f.Year, f.Month,
                    f.Day, f.Hour, f.Minute);
      break;
    case 3:
      std::snprintf(text, sizeof text, compact ? "%04d%02d%02d %02d" : "%04d/%02d/%02d %02d",
                    f.Year, f.Month, f.Day, f.Hour);
      break;
    default:
      std::snprintf(text, sizeof text,
                    compact ? "%04d%02d%02d %02d%02d%02d" : "%04d/%02d/%02d %02d:%02d:%02d", f.Year,
                    f.Month, f.Day, f.Hour, f.Minute, f.Second);
      break;
  }
  return text;
}

bool ParseDateTime(const std::string& text, int64_t& instant) {
  if (ParsePieces(text, instant)) return true;
  ShowMessage(kBadDateTimeMessage);
  return false;
}

}  // namespace sysfuncs
