#include "qxrun/data/DateParsing.h"

#include <array>
#include <cctype>

namespace qxrun {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[static_cast<size_t>(month - 1)];
}

// Reads `minDigits` to `maxDigits` digits at `position`; advances it.
std::optional<int> ReadNumber(std::string_view text, size_t* position, int minDigits,
                              int maxDigits) {
  int value = 0;
  int digits = 0;
  size_t at = *position;
  while (digits < maxDigits && at < text.size() && IsDigit(text[at])) {
    value = value * 10 + (text[at] - '0');
    ++digits;
    ++at;
  }
  if (digits < minDigits) return std::nullopt;
  *position = at;
  return value;
}

std::optional<int> ReadMonthName(std::string_view text, size_t* position) {
  static constexpr std::array<std::string_view, 12> kNames = {
      "jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"};
  if (text.size() < *position + 3) return std::nullopt;
  std::array<char, 3> lower{};
  for (size_t i = 0; i < 3; ++i) {
    lower[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[*position + i])));
  }
  for (size_t month = 0; month < kNames.size(); ++month) {
    if (std::string_view(lower.data(), 3) == kNames[month]) {
      *position += 3;
      return static_cast<int>(month) + 1;
    }
  }
  return std::nullopt;
}

// A fraction of a second after the seconds: ".5" is 500 ms; digits past the third are dropped.
int ReadFraction(std::string_view text, size_t* position) {
  if (*position + 1 >= text.size() || text[*position] != '.' || !IsDigit(text[*position + 1])) {
    return 0;
  }
  size_t at = *position + 1;
  int milliseconds = 0;
  int scale = 100;
  while (at < text.size() && IsDigit(text[at])) {
    milliseconds += (text[at] - '0') * scale;
    scale /= 10;
    ++at;
  }
  *position = at;
  return milliseconds;
}

}  // namespace

int64_t DaysFromCivil(const CivilDate& date) {
  // Days from civil, with March as the first month of the computational year.
  const int64_t year = date.Year - (date.Month <= 2 ? 1 : 0);
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yearOfEra = year - era * 400;
  const int64_t monthFromMarch = date.Month > 2 ? date.Month - 3 : date.Month + 9;
  const int64_t dayOfYear = (153 * monthFromMarch + 2) / 5 + date.Day - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

CivilDate CivilFromDays(int64_t days) {
  // Counted in 400-year eras that start on 1 March, so that the leap day ends a year.
  const int64_t shifted = days + 719468;
  const int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
  const int64_t dayOfEra = shifted - era * 146097;
  const int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0)), static_cast<int>(month),
          static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1)};
}

std::optional<DateTimeFormat> DateTimeFormat::Compile(std::string_view text, Kind kind,
                                                      std::string* error) {
  DateTimeFormat format;
  format.text_ = std::string(text);
  if (kind == Kind::kTime && (text == "%H%M%S" || text == "%H%M")) {
    format.packedNumber_ = true;
    format.withSeconds_ = text == "%H%M%S";
    return format;
  }
  const std::string_view allowed = kind == Kind::kDate ? "Yymbd" : "HMS";
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      format.steps_.push_back({Op::kLiteral, text[i]});
      continue;
    }
    if (i + 1 == text.size()) {
      *error = "ends in a lone '%'";
      return std::nullopt;
    }
    const char conversion = text[++i];
    if (conversion == '%') {
      format.steps_.push_back({Op::kLiteral, '%'});
      continue;
    }
    if (allowed.find(conversion) == std::string_view::npos) {
      *error = std::string("unknown conversion '%") + conversion + "' in a " +
               (kind == Kind::kDate ? "date" : "time") +
               " format (known: " + (kind == Kind::kDate ? "%Y %y %m %b %d" : "%H %M %S") + ")";
      return std::nullopt;
    }
    Op op = Op::kLiteral;
    switch (conversion) {
      case 'Y':
        op = Op::kYear4;
        break;
      case 'y':
        op = Op::kYear2;
        break;
      case 'm':
        op = Op::kMonth;
        break;
      case 'b':
        op = Op::kMonthName;
        break;
      case 'd':
        op = Op::kDay;
        break;
      case 'H':
        op = Op::kHour;
        break;
      case 'M':
        op = Op::kMinute;
        break;
      default:
        op = Op::kSecond;
        format.withSeconds_ = true;
        break;
    }
    format.steps_.push_back({op, 0});
  }
  const auto has = [&format](Op a, Op b) {
    for (const Step& step : format.steps_) {
      if (step.op == a || step.op == b) return true;
    }
    return false;
  };
  const bool complete = kind == Kind::kDate
                            ? has(Op::kYear4, Op::kYear2) && has(Op::kMonth, Op::kMonthName) &&
                                  has(Op::kDay, Op::kDay)
                            : has(Op::kHour, Op::kHour) && has(Op::kMinute, Op::kMinute);
  if (!complete) {
    *error = kind == Kind::kDate ? "a date format needs a year, a month and a day"
                                 : "a time format needs an hour and a minute";
    return std::nullopt;
  }
  return format;
}

std::optional<size_t> DateTimeFormat::ReadDate(std::string_view text, CivilDate* date) const {
  size_t at = 0;
  CivilDate read;
  for (const Step& step : steps_) {
    std::optional<int> value;
    switch (step.op) {
      case Op::kLiteral:
        if (at >= text.size() || text[at] != step.literal) return std::nullopt;
        ++at;
        continue;
      case Op::kYear4:
        value = ReadNumber(text, &at, 4, 4);
        break;
      case Op::kYear2:
        value = ReadNumber(text, &at, 2, 2);
        if (value) value = *value + (*value >= 69 ? 1900 : 2000);
        break;
      case Op::kMonthName:
        value = ReadMonthName(text, &at);
        break;
      default:
        value = ReadNumber(text, &at, 1, 2);
        break;
    }
    if (!value) return std::nullopt;
    if (step.op == Op::kYear4 || step.op == Op::kYear2) read.Year = *value;
    if (step.op == Op::kMonth || step.op == Op::kMonthName) read.Month = *value;
    if (step.op == Op::kDay) read.Day = *value;
  }
  if (read.Year < 1 || read.Month < 1 || read.Month > 12 || read.Day < 1 ||
      read.Day > DaysInMonth(read.Year, read.Month)) {
    return std::nullopt;
  }
  *date = read;
  return at;
}

std::optional<size_t> DateTimeFormat::ReadTime(std::string_view text, int32_t* milliseconds) const {
  size_t at = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (packedNumber_) {
    const std::optional<int> number = ReadNumber(text, &at, 1, withSeconds_ ? 6 : 4);
    if (!number) return std::nullopt;
    const int hhmm = withSeconds_ ? *number / 100 : *number;
    hour = hhmm / 100;
    minute = hhmm % 100;
    second = withSeconds_ ? *number % 100 : 0;
  } else {
    for (const Step& step : steps_) {
      if (step.op == Op::kLiteral) {
        if (at >= text.size() || text[at] != step.literal) return std::nullopt;
        ++at;
        continue;
      }
      const std::optional<int> value = ReadNumber(text, &at, 1, 2);
      if (!value) return std::nullopt;
      if (step.op == Op::kHour) hour = *value;
      if (step.op == Op::kMinute) minute = *value;
      if (step.op == Op::kSecond) second = *value;
    }
  }
  const int fraction = withSeconds_ ? ReadFraction(text, &at) : 0;
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  *milliseconds = ((hour * 60 + minute) * 60 + second) * 1000 + fraction;
  return at;
}

std::string DetectDateFormat(std::string_view field) {
  size_t digits = 0;
  while (digits < field.size() && IsDigit(field[digits])) ++digits;
  if (digits == 8 && (field.size() == 8 || !IsDigit(field[8]))) return "%Y%m%d";
  if (digits == 4 && field.size() > 4) {
    const char separator = field[4];
    if (separator == '-' || separator == '/' || separator == '.') {
      return std::string("%Y") + separator + "%m" + separator + "%d";
    }
  }
  if ((digits == 1 || digits == 2) && field.size() > digits) {
    const char separator = field[digits];
    if (separator == '/') return "%m/%d/%Y";
    if (separator == '.') return "%d.%m.%Y";
  }
  return "";
}

std::string DetectTimeFormat(std::string_view field, bool digitsOnly) {
  size_t colons = 0;
  size_t digits = 0;
  for (const char c : field) {
    if (c == ':') {
      ++colons;
    } else if (IsDigit(c)) {
      ++digits;
    } else if (c != '.') {
      return "";
    }
  }
  if (colons == 2) return "%H:%M:%S";
  if (colons == 1) return "%H:%M";
  if (colons > 0 || !digitsOnly || digits != field.size()) return "";
  if (digits >= 5 && digits <= 6) return "%H%M%S";
  if (digits >= 3 && digits <= 4) return "%H%M";
  return "";
}

}  // namespace qxrun
