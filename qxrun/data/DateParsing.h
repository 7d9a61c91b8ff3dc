// Dates and times of day in the text formats of bar files.
#ifndef QXRUN_DATA_DATE_PARSING_H_
#define QXRUN_DATA_DATE_PARSING_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qxrun {

struct CivilDate {
  int Year = 0;
  int Month = 0;  // 1 to 12
  int Day = 0;    // 1 to 31
  bool operator==(const CivilDate&) const = default;
};

// Days since 1970-01-01 of a proleptic Gregorian date.
int64_t DaysFromCivil(const CivilDate& date);

// The proleptic Gregorian date of a day count since 1970-01-01 (negative before it).
CivilDate CivilFromDays(int64_t days);

// A strftime-like format compiled once and applied to every row. Conversions: %Y (four-digit
// year), %y (two-digit year: 69-99 are 19xx, 00-68 20xx), %m (month), %d (day), %b (English month
// abbreviation, any case), %H (hour 0-23), %M (minute), %S (second), %% (a percent sign); any
// other character stands for itself. A numeric conversion takes as many digits as follow, up to
// its width, so "%m/%d/%Y" reads "1/2/2006" and "%Y%m%d" reads "20060102". Seconds may carry a
// fraction (".250"), kept to the millisecond.
//
// The time formats "%H%M%S" and "%H%M" read a number of up to six or four digits whose leading
// zeros may be missing ("90100" is 09:01:00).
class DateTimeFormat {
 public:
  enum class Kind { kDate, kTime };

  // The compiled format, or an error text naming what is wrong with it.
  static std::optional<DateTimeFormat> Compile(std::string_view text, Kind kind,
                                               std::string* error);

  // Reads a date from the start of `text`; on success returns the number of characters read.
  std::optional<size_t> ReadDate(std::string_view text, CivilDate* date) const;
  // Reads a time of day from the start of `text`: milliseconds since midnight.
  std::optional<size_t> ReadTime(std::string_view text, int32_t* milliseconds) const;

  const std::string& Text() const { return text_; }

 private:
  enum class Op : uint8_t {
    kLiteral,
    kYear4,
    kYear2,
    kMonth,
    kMonthName,
    kDay,
    kHour,
    kMinute,
    kSecond
  };
  struct Step {
    Op op;
    char literal;
  };

  std::string text_;
  std::vector<Step> steps_;
  bool packedNumber_ = false;  // "%H%M%S" or "%H%M": one number of digits
  bool withSeconds_ = false;
};

// The date format of a field as bar files usually write it: "%Y-%m-%d" (or '/' or '.'),
// "%Y%m%d", "%m/%d/%Y", "%d.%m.%Y". Empty when the field looks like none of them. Reads only the
// start of `field`, so a date followed by a time is recognised too.
std::string DetectDateFormat(std::string_view field);

// The time format of a field: "%H:%M:%S" (with or without a fraction), "%H:%M", and, when
// `digitsOnly` is allowed, "%H%M%S" for five or six digits and "%H%M" for three or four.
std::string DetectTimeFormat(std::string_view field, bool digitsOnly);

}  // namespace qxrun

#endif  // QXRUN_DATA_DATE_PARSING_H_
