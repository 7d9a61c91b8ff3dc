#include "qxrun/report/Tables.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>
#include <string>
#include <vector>

namespace qxrun {
namespace {

EquityPoint Point(int32_t bar, int64_t time, double equity, double capital) {
  EquityPoint point;
  point.Bar = bar;
  point.Time = time;
  point.Equity = equity;
  point.Capital = capital;
  return point;
}

// Numbers are written as the shortest text without an exponent that reads back as the same
// double: whole numbers as their digits, however large, and negative zero with its sign.
TEST(TablesTest, EquityRowsWriteEachNumberInItsShortestPlainForm) {
  StrategyAccount account;
  EquityPoint first = Point(0, 0, 1000000.5, 1000000.0);
  first.LongLots = 9007199254740992.0;  // 2^53
  first.ShortLots = 3.0;
  first.LongMargin = 4623.2;
  first.BarCost = -0.0;  // keeps its sign
  EquityPoint second = Point(1, 60000, 999999.25, -2.5);
  second.LongLots = 0.1;
  second.ShortLots = -7.0;
  second.LongMargin = 1e22;
  second.BarCost = 4503599627370497.0;  // 2^52 + 1, every digit needed
  account.EquityCurve = {first, second};
  std::ostringstream out;
  WriteEquityCsv(out, account, 1000000.0);
  // Times in the tests' zone, UTC+8. The drawdown is measured from the highest equity so far,
  // 1000000.5 after the first bar.
  EXPECT_EQ(out.str(),
            "bar,time,equity,capital,drawdown,long_lots,short_lots,margin,bar_cost\n"
            "0,1970-01-01 08:00:00,1000000.5,1000000,0,9007199254740992,3,4623.2,-0\n"
            "1,1970-01-01 08:01:00,999999.25,-2.5,-1.25,0.1,-7,10000000000000000000000,"
            "4503599627370497\n");
}

// Capital, lots and costs mostly repeat from row to row; a repeated value is written as before,
// and a value that changes, to a zero of the other sign too, is written anew.
TEST(TablesTest, EquityRowsRepeatAndChangeTheirValues) {
  StrategyAccount account;
  const double costs[] = {0.0, 0.0, -0.0, -0.0, 0.0, 2.5, 2.5, 0.0};
  for (int32_t bar = 0; bar < 8; ++bar) {
    EquityPoint point = Point(bar, bar * 60000, 100.0 + (bar % 3), bar < 4 ? 100.0 : 98.5);
    point.LongLots = bar < 6 ? 1.0 : 0.0;
    point.BarCost = costs[bar];
    account.EquityCurve.push_back(point);
  }
  std::ostringstream out;
  WriteEquityCsv(out, account, 100.0);
  EXPECT_EQ(out.str(),
            "bar,time,equity,capital,drawdown,long_lots,short_lots,margin,bar_cost\n"
            "0,1970-01-01 08:00:00,100,100,0,1,0,0,0\n"
            "1,1970-01-01 08:01:00,101,100,0,1,0,0,0\n"
            "2,1970-01-01 08:02:00,102,100,0,1,0,0,-0\n"
            "3,1970-01-01 08:03:00,100,100,-2,1,0,0,-0\n"
            "4,1970-01-01 08:04:00,101,98.5,-1,1,0,0,0\n"
            "5,1970-01-01 08:05:00,102,98.5,0,1,0,0,2.5\n"
            "6,1970-01-01 08:06:00,100,98.5,-2,0,0,0,2.5\n"
            "7,1970-01-01 08:07:00,101,98.5,-1,0,0,0,0\n");
}

// The time column against the runtime's own conversion, row by row: minute rows through the
// nights the clocks go forward and back, rows far apart and before 1970, in a zone with daylight
// saving time and in one whose clock counts leap seconds.
TEST(TablesTest, EquityTimesAreTheLocalTimesOfTheirInstants) {
  std::vector<int64_t> times;
  for (const int64_t night : {int64_t{1710036000}, int64_t{1730599200}}) {  // 2024-03-10, -11-03
    for (int64_t minute = 0; minute < 8 * 60; minute += 7) times.push_back(night + minute * 60);
  }
  for (const int64_t seconds : {int64_t{-86399}, int64_t{-1}, int64_t{0}, int64_t{915148799},
                                int64_t{915148800}, int64_t{4102444800}}) {
    times.push_back(seconds);
  }
  StrategyAccount account;
  for (size_t i = 0; i < times.size(); ++i) {
    account.EquityCurve.push_back(Point(static_cast<int32_t>(i), times[i] * 1000 + 999, 1, 1));
  }
  for (const char* zone : {"America/New_York", "right/Europe/London"}) {
    const sysfuncs::testing::ScopedTimeZone scoped(zone);
    std::ostringstream out;
    WriteEquityCsv(out, account, 1.0);
    std::istringstream rows(out.str());
    std::string row;
    std::getline(rows, row);  // the header
    for (const int64_t seconds : times) {
      ASSERT_TRUE(std::getline(rows, row));
      const auto instant = static_cast<std::time_t>(seconds);
      std::tm fields{};
      localtime_r(&instant, &fields);
      char expected[32];
      std::strftime(expected, sizeof(expected), "%Y-%m-%d %H:%M:%S", &fields);
      EXPECT_EQ(row.substr(row.find(',') + 1, 19), expected) << zone << " at " << seconds;
    }
  }
}

}  // namespace
}  // namespace qxrun
