#include "support/HostBuilder.h"
#include "util/LocalCalendar.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace sysfuncs::testing {
namespace {

// Asks the cache and the runtime the same sequence of instants; every answer must agree, the
// local month of a calendar asked only for months too.
void ExpectSameAsRuntime(const std::vector<int64_t>& secondsSequence, const char* what) {
  LocalCalendar calendar;
  LocalCalendar months;
  for (int64_t seconds : secondsSequence) {
    const CalendarFields cached = calendar.Fields(seconds);
    const CalendarFields direct = LocalFields(seconds);
    ASSERT_EQ(months.YearMonth(seconds), direct.Year * 100 + direct.Month)
        << what << " at " << seconds;
    ASSERT_EQ(cached, direct) << what << " at " << seconds << ": cached " << cached.Year << "-"
                              << cached.Month << "-" << cached.Day << " " << cached.Hour << ":"
                              << cached.Minute << ":" << cached.Second << ", runtime "
                              << direct.Year << "-" << direct.Month << "-" << direct.Day << " "
                              << direct.Hour << ":" << direct.Minute << ":" << direct.Second;
  }
}

std::vector<int64_t> Series(int64_t first, int64_t step, int count) {
  std::vector<int64_t> seconds;
  for (int i = 0; i < count; ++i) seconds.push_back(first + i * step);
  return seconds;
}

TEST(LocalCalendar, ArithmeticFieldsOfKnownDays) {
  struct Row {
    int64_t localSeconds;
    CalendarFields fields;
  } rows[] = {
      {0, {1970, 1, 1, 0, 0, 0, 4}},
      {-1, {1969, 12, 31, 23, 59, 59, 3}},
      {951782400, {2000, 2, 29, 0, 0, 0, 2}},      // a leap day of a century year
      {4107542399, {2100, 2, 28, 23, 59, 59, 0}},  // 2100 is not a leap year
      {-2208988800, {1900, 1, 1, 0, 0, 0, 1}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FieldsOfLocalSeconds(row.localSeconds), row.fields) << row.localSeconds;
  }
}

// Zones with offset changes of one hour, half an hour (Lord Howe) and historical ones, and the
// zone furthest east, which skipped a whole day (Kiritimati, 31 December 1994).
const char* const kZones[] = {"America/New_York", "Europe/London", "Australia/Lord_Howe",
                              "Asia/Shanghai",    "UTC",           "Pacific/Kiritimati"};

TEST(LocalCalendar, MinuteAndSecondSeriesAcrossOffsetChangesMatchTheRuntime) {
  for (const char* zone : kZones) {
    ScopedTimeZone timeZone(zone);
    // Two days of minute bars around each transition of 2024 in the northern and southern
    // hemispheres, and around the last Shanghai daylight-saving change (1991-09-15).
    const int64_t starts[] = {UtcInstant(2024, 3, 9) / 1000,   UtcInstant(2024, 3, 30) / 1000,
                              UtcInstant(2024, 4, 6) / 1000,   UtcInstant(2024, 10, 5) / 1000,
                              UtcInstant(2024, 10, 26) / 1000, UtcInstant(2024, 11, 2) / 1000,
                              UtcInstant(1991, 9, 14) / 1000};
    for (int64_t start : starts) {
      ExpectSameAsRuntime(Series(start, 60, 4 * 24 * 60), zone);
      ExpectSameAsRuntime(Series(start + 17, 7, 4 * 24 * 3600 / 7), zone);
    }
  }
}

TEST(LocalCalendar, DailyBackwardAndRandomAccessMatchTheRuntime) {
  for (const char* zone : kZones) {
    ScopedTimeZone timeZone(zone);
    const int64_t start = UtcInstant(1985, 1, 1) / 1000;
    ExpectSameAsRuntime(Series(start, 86400, 20000), zone);
    ExpectSameAsRuntime(Series(UtcInstant(2024, 12, 31) / 1000, -1800, 20000), zone);

    std::mt19937_64 random(20261121);
    std::vector<int64_t> seconds;
    int64_t at = start;
    for (int i = 0; i < 50000; ++i) {
      // Mostly small steps forward, sometimes a jump in either direction.
      const int64_t step = (random() % 10 == 0)
                               ? static_cast<int64_t>(random() % 20000000) - 10000000
                               : static_cast<int64_t>(random() % 7200);
      at += step;
      seconds.push_back(at);
      seconds.push_back(at);  // several calendar functions on one bar
    }
    ExpectSameAsRuntime(seconds, zone);
  }
}

}  // namespace
}  // namespace sysfuncs::testing
