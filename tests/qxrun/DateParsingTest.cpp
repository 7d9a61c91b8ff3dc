#include "qxrun/data/DateParsing.h"

#include <gtest/gtest.h>

namespace qxrun {
namespace {

TEST(DateParsingTest, DaysFromCivilCountsFromTheEpoch) {
  struct Case {
    CivilDate date;
    int64_t days;
  };
  const Case cases[] = {
      {{1970, 1, 1}, 0},      {{1969, 12, 31}, -1},
      {{2000, 3, 1}, 11017},   // 30 * 365 + 7 leap days to 2000-01-01, then 31 + 29
      {{2006, 1, 2}, 13150},   // 36 * 365 + 9 leap days to 2006-01-01, then 1
      {{1900, 3, 1}, -25508},  // 1900-01-01 is 70 * 365 + 17 leap days back; 1900 is no leap year
      {{2024, 11, 3}, 20030},  // 54 * 365 + 13 leap days to 2024-01-01, then 305 + 2
  };
  for (const Case& row : cases) {
    EXPECT_EQ(DaysFromCivil(row.date), row.days)
        << row.date.Year << "-" << row.date.Month << "-" << row.date.Day;
  }
}

TEST(DateParsingTest, CivilFromDaysInvertsDaysFromCivil) {
  EXPECT_EQ(CivilFromDays(0), (CivilDate{1970, 1, 1}));
  EXPECT_EQ(CivilFromDays(-1), (CivilDate{1969, 12, 31}));
  EXPECT_EQ(CivilFromDays(11016), (CivilDate{2000, 2, 29}));
  EXPECT_EQ(CivilFromDays(-25509), (CivilDate{1900, 2, 28}));
  // Every day from 0190 to 4160, across eras and century years.
  for (int64_t days = -650000; days <= 800000; ++days) {
    const CivilDate date = CivilFromDays(days);
    ASSERT_EQ(DaysFromCivil(date), days) << date.Year << "-" << date.Month << "-" << date.Day;
    ASSERT_TRUE(date.Month >= 1 && date.Month <= 12 && date.Day >= 1 && date.Day <= 31) << days;
  }
}

DateTimeFormat MustCompile(const char* text, DateTimeFormat::Kind kind) {
  std::string error;
  const std::optional<DateTimeFormat> format = DateTimeFormat::Compile(text, kind, &error);
  EXPECT_TRUE(format.has_value()) << text << ": " << error;
  return format.value_or(*DateTimeFormat::Compile("%Y%m%d", DateTimeFormat::Kind::kDate, &error));
}

TEST(DateParsingTest, DatesReadInTheirFormat) {
  struct Case {
    const char* format;
    const char* text;
    CivilDate date;  // Year 0: the text is no date in the format
    size_t length;
  };
  const Case cases[] = {
      {"%Y-%m-%d", "2006-01-02", {2006, 1, 2}, 10},
      {"%Y-%m-%d", "2006-01-02 09:01", {2006, 1, 2}, 10},  // the time is the caller's
      {"%Y%m%d", "20060102", {2006, 1, 2}, 8},
      {"%m/%d/%Y", "1/2/2006", {2006, 1, 2}, 8},
      {"%d.%m.%Y", "31.12.1999", {1999, 12, 31}, 10},
      {"%d-%b-%Y", "02-Jan-2006", {2006, 1, 2}, 11},
      {"%d-%b-%y", "2-DEC-06", {2006, 12, 2}, 8},
      {"%y%m%d", "690102", {1969, 1, 2}, 6},
      {"%y%m%d", "680102", {2068, 1, 2}, 6},
      {"%Y-%m-%d", "2000-02-29", {2000, 2, 29}, 10},
      {"%Y-%m-%d", "2100-02-29", {0, 0, 0}, 0},  // 2100 is no leap year
      {"%Y-%m-%d", "2006-04-31", {0, 0, 0}, 0},
      {"%Y-%m-%d", "2006-00-10", {0, 0, 0}, 0},
      {"%Y-%m-%d", "06-01-02", {0, 0, 0}, 0},
      {"%Y-%m-%d", "2006/01/02", {0, 0, 0}, 0},
      {"%Y-%m-%d", "2006-01-", {0, 0, 0}, 0},
      {"%d-%b-%Y", "02-Jun-2006", {2006, 6, 2}, 11},
      {"%d-%b-%Y", "02-Jux-2006", {0, 0, 0}, 0},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(std::string(row.format) + " " + row.text);
    const DateTimeFormat format = MustCompile(row.format, DateTimeFormat::Kind::kDate);
    CivilDate date;
    const std::optional<size_t> length = format.ReadDate(row.text, &date);
    if (row.date.Year == 0) {
      EXPECT_FALSE(length.has_value());
      continue;
    }
    ASSERT_TRUE(length.has_value());
    EXPECT_EQ(*length, row.length);
    EXPECT_EQ(date, row.date);
  }
}

TEST(DateParsingTest, TimesReadInTheirFormat) {
  struct Case {
    const char* format;
    const char* text;
    int32_t milliseconds;  // -1: no time in the format
    size_t length;
  };
  const Case cases[] = {
      {"%H:%M:%S", "09:01:00", 32460000, 8},  // (9 * 60 + 1) * 60 * 1000
      {"%H:%M", "9:5", 32700000, 3},          // (9 * 60 + 5) * 60 * 1000
      {"%H:%M:%S", "23:59:59.999", 86399999, 12},
      {"%H:%M:%S", "00:00:01.5", 1500, 10},
      {"%H:%M", "12:00:30", 43200000, 5},  // the seconds are the caller's to refuse
      {"%H:%M:%S", "12:60:00", -1, 0},
      {"%H:%M:%S", "24:00:00", -1, 0},
      {"%H:%M:%S", "12:00", -1, 0},
      {"%H%M%S", "90100", 32460000, 5},
      {"%H%M%S", "090100", 32460000, 6},
      {"%H%M%S", "0", 0, 1},
      {"%H%M%S", "235959", 86399000, 6},
      {"%H%M%S", "246000", -1, 0},
      {"%H%M%S", "126000", -1, 0},
      {"%H%M", "930", 34200000, 3},
      {"%H%M", "0930", 34200000, 4},
      {"%H%M", "0960", -1, 0},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(std::string(row.format) + " " + row.text);
    const DateTimeFormat format = MustCompile(row.format, DateTimeFormat::Kind::kTime);
    int32_t milliseconds = -7;
    const std::optional<size_t> length = format.ReadTime(row.text, &milliseconds);
    if (row.milliseconds < 0) {
      EXPECT_FALSE(length.has_value());
      continue;
    }
    ASSERT_TRUE(length.has_value());
    EXPECT_EQ(*length, row.length);
    EXPECT_EQ(milliseconds, row.milliseconds);
  }
}

TEST(DateParsingTest, FormatsThatCannotWorkAreRefused) {
  struct Case {
    const char* format;
    DateTimeFormat::Kind kind;
    const char* error;
  };
  const Case cases[] = {
      {"%Y-%m", DateTimeFormat::Kind::kDate, "a date format needs a year, a month and a day"},
      {"%H", DateTimeFormat::Kind::kTime, "a time format needs an hour and a minute"},
      {"%Y-%m-%", DateTimeFormat::Kind::kDate, "ends in a lone '%'"},
      {"%Y-%m-%d %H", DateTimeFormat::Kind::kDate,
       "unknown conversion '%H' in a date format (known: %Y %y %m %b %d)"},
      {"%H:%M:%f", DateTimeFormat::Kind::kTime,
       "unknown conversion '%f' in a time format (known: %H %M %S)"},
  };
  for (const Case& row : cases) {
    std::string error;
    EXPECT_FALSE(DateTimeFormat::Compile(row.format, row.kind, &error).has_value()) << row.format;
    EXPECT_EQ(error, row.error);
  }
}

}  // namespace
}  // namespace qxrun
