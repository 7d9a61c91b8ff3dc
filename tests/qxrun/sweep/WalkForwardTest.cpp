#include "qxrun/InputError.h"
#include "qxrun/report/Tables.h"
#include "qxrun/sweep/WalkForward.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace qxrun {
namespace {

std::vector<int64_t> Steps(int count) {
  std::vector<int64_t> times;
  for (int i = 0; i < count; ++i) times.push_back(1000 * i);
  return times;
}

// Local midnight of every weekday from `year-month-day` for `days` calendar days.
std::vector<int64_t> Weekdays(int year, int month, int day, int days) {
  std::vector<int64_t> times;
  for (int i = 0; i < days; ++i) {
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day + i;
    local.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&local);
    if (local.tm_wday != 0 && local.tm_wday != 6) times.push_back(seconds * 1000LL);
  }
  return times;
}

std::string Day(const std::vector<int64_t>& times, size_t bar) {
  return LocalDateTime(times[bar]).substr(0, 10);
}

TEST(WalkForwardTest, BarWindowsRollByTheTestLength) {
  // 10 bars, train 4, test 3: [0,4) then [4,7); [3,7) then [7,10); a third would train to 10.
  const std::vector<WalkWindow> three = WalkWindows(Steps(10), ParseWalkLengths("train=4,test=3"));
  ASSERT_EQ(three.size(), 2u);
  EXPECT_EQ(three[0].TrainBegin, 0u);
  EXPECT_EQ(three[0].TrainEnd, 4u);
  EXPECT_EQ(three[0].TestEnd, 7u);
  EXPECT_EQ(three[1].TrainBegin, 3u);
  EXPECT_EQ(three[1].TrainEnd, 7u);
  EXPECT_EQ(three[1].TestEnd, 10u);
  // Test 4: the second test window is cut short by the end of the bars: [8,10).
  const std::vector<WalkWindow> four = WalkWindows(Steps(10), ParseWalkLengths("test=4,train=4"));
  ASSERT_EQ(four.size(), 2u);
  EXPECT_EQ(four[1].TrainBegin, 4u);
  EXPECT_EQ(four[1].TrainEnd, 8u);
  EXPECT_EQ(four[1].TestEnd, 10u);
  EXPECT_TRUE(WalkWindows(Steps(10), ParseWalkLengths("train=10,test=1")).empty());
}

TEST(WalkForwardTest, CalendarWindowsStartAtTheFirstBarOfTheirPeriod) {
  // Weekdays of 2013-01-01 to 2013-06-30; two months train, one month tests.
  const std::vector<int64_t> times = Weekdays(2013, 1, 1, 181);
  const std::vector<WalkWindow> windows = WalkWindows(times, ParseWalkLengths("train=2m,test=1m"));
  ASSERT_EQ(windows.size(), 4u);
  // Train from Jan 1, Feb 1 (a Friday), Mar 1, Apr 1; test from Mar 1, Apr 1, May 1 and June 1,
  // a Saturday, whose first bar is Monday June 3; the last test ends with the bars.
  const char* trainFirst[] = {"2013-01-01", "2013-02-01", "2013-03-01", "2013-04-01"};
  const char* testFirst[] = {"2013-03-01", "2013-04-01", "2013-05-01", "2013-06-03"};
  const char* testLast[] = {"2013-03-29", "2013-04-30", "2013-05-31", "2013-06-28"};
  for (size_t i = 0; i < windows.size(); ++i) {
    EXPECT_EQ(Day(times, windows[i].TrainBegin), trainFirst[i]) << i;
    EXPECT_EQ(Day(times, windows[i].TrainEnd), testFirst[i]) << i;
    EXPECT_EQ(Day(times, windows[i].TestEnd - 1), testLast[i]) << i;
  }
  // A year of training with 10-day tests over the same half year: none fits.
  EXPECT_TRUE(WalkWindows(times, ParseWalkLengths("train=1y,test=10d")).empty());
  // Days: 30 days of training from Jan 1 end before Jan 31 (a Thursday).
  const std::vector<WalkWindow> days = WalkWindows(times, ParseWalkLengths("train=30d,test=7d"));
  ASSERT_FALSE(days.empty());
  EXPECT_EQ(Day(times, days[0].TrainEnd), "2013-01-31");
  EXPECT_EQ(Day(times, days[0].TestEnd), "2013-02-07");
}

TEST(WalkForwardTest, MalformedSpecificationsAreRefused) {
  for (const char* text : {"train=0,test=5", "train=5", "test=5", "size=1,test=2",
                           "train=3w,test=1", "train=,test=1", "train=-2,test=1", "train=2y"}) {
    try {
      ParseWalkLengths(text);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const InputError& error) {
      EXPECT_EQ(std::string(error.what()).find("--walk-forward: "), 0u) << error.what();
    }
  }
  const WalkLengths lengths = ParseWalkLengths("train=2y,test=30d");
  EXPECT_EQ(lengths.Train.Count, 2);
  EXPECT_EQ(lengths.Train.Unit, PeriodUnit::kYears);
  EXPECT_EQ(lengths.Test.Count, 30);
  EXPECT_EQ(lengths.Test.Unit, PeriodUnit::kDays);
}

TEST(WalkForwardTest, SlicesKeepTheOtherSeriesWithinTheMainSeriesTimes) {
  std::vector<QXDataSource> sources(2);
  for (int i = 0; i < 10; ++i) sources[0].Bars.push_back(QXBar{100 * i, 1, 1, 1, 1, 0, 0});
  for (int i = 0; i < 40; ++i) sources[1].Bars.push_back(QXBar{25 * i, 2, 2, 2, 2, 0, 0});
  sources[1].Symbol.push_back('B');
  const std::vector<QXDataSource> slice = SliceSources(sources, 3, 6);
  ASSERT_EQ(slice.size(), 2u);
  ASSERT_EQ(slice[0].Bars.size(), 3u);
  EXPECT_EQ(slice[0].Bars.front().Time, 300);
  // B's bars at 300, 325, ..., 500: nine of them.
  ASSERT_EQ(slice[1].Bars.size(), 9u);
  EXPECT_EQ(slice[1].Bars.front().Time, 300);
  EXPECT_EQ(slice[1].Bars.back().Time, 500);
  EXPECT_EQ(slice[1].Symbol, "B");
}

}  // namespace
}  // namespace qxrun
