#include "qxrun/report/Tables.h"

#include <gtest/gtest.h>

#include <sstream>

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

}  // namespace
}  // namespace qxrun
