#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

// A double whose upper 32 bits hold `price` as a float and whose lower 32 bits hold `low`.
double PackTick(float price, uint32_t low) {
  return std::bit_cast<double>((uint64_t{std::bit_cast<uint32_t>(price)} << 32) | low);
}

// Open, High, Low, Close, Vol and OpenInt.
std::vector<double> Prices(CSystemFuncs& funcs) {
  return {funcs.Open(), funcs.High(), funcs.Low(), funcs.Close(), funcs.Vol(), funcs.OpenInt()};
}

TEST(BarData, PricesAndAliasesReadTheCurrentBarOfTheCurrentSource) {
  TestHost host;
  host.AddSource("rb2405",
                 {MakeBar(1000, 1, 2, 0.5, 1.5, 10, 20), MakeBar(2000, 3, 4, 2.5, 3.5, 30, 40)});
  host.AddSource("IF2406", {MakeBar(1000, 5, 6, 4.5, 5.5, 50, 60)});
  CSystemFuncs funcs(&host.data);

  host.At(0, 1);
  EXPECT_EQ(Prices(funcs), std::vector<double>({3, 4, 2.5, 3.5, 30, 40}));
  EXPECT_EQ(std::vector<double>({funcs.O(), funcs.H(), funcs.L(), funcs.C(), funcs.V()}),
            std::vector<double>({3, 4, 2.5, 3.5, 30}));
  EXPECT_EQ(funcs.Symbol(), "rb2405");

  host.At(1, 0);
  EXPECT_EQ(funcs.Close(), 5.5);
  EXPECT_EQ(funcs.OpenInt(), 60);
  EXPECT_EQ(funcs.Symbol(), "IF2406");
}

TEST(BarData, PackedTickHighAndLowReadTheUpperFloatOnly) {
  TestHost host;
  // 12.5 and 12.25 are exact floats; the lower halves carry volumes that must be ignored.
  QXBar bar = MakeBar(1000, 11.0, PackTick(12.5f, 0xDEADBEEF), PackTick(12.25f, 7), 11.75, 3, 4);
  host.AddSource("ticks", {bar}, /*barType=*/2, /*barInterval=*/0);
  CSystemFuncs funcs(&host.data);
  host.At(0, 0);
  // Open, Close, Vol and OpenInt are never reinterpreted.
  EXPECT_EQ(Prices(funcs), std::vector<double>({11.0, 12.5, 12.25, 11.75, 3, 4}));
  EXPECT_EQ(std::vector<double>({funcs.H(), funcs.L()}), std::vector<double>({12.5, 12.25}));
}

TEST(BarData, OnlyBarTypeTwoWithIntervalZeroOfTheMainSeriesIsPacked) {
  const double packedHigh = PackTick(12.5f, 1);
  struct Row {
    uint32_t mainType, mainInterval;
    bool packed;
  } rows[] = {{2, 0, true}, {2, 1, false}, {1, 0, false}, {0, 0, false}};
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("main", {MakeBar(1000, 1, 2, 1, 1)}, row.mainType, row.mainInterval);
    host.AddSource("other", {MakeBar(1000, 1, packedHigh, 1, 1)}, 2, 0);
    CSystemFuncs funcs(&host.data);
    // The main series decides for every series of the instance.
    host.At(1, 0);
    EXPECT_EQ(funcs.High() == 12.5, row.packed) << row.mainType << "/" << row.mainInterval;
  }
}

TEST(BarData, BarStatusMarksFirstAndLastBars) {
  struct Row {
    int32_t bar, count, status;
  } rows[] = {{0, 5, 0}, {1, 5, 1}, {3, 5, 1}, {4, 5, 2}, {0, 1, 0} /* the first bar wins */};
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("s", EvenBars(0, 60000, row.count));
    CSystemFuncs funcs(&host.data);
    host.At(0, row.bar);
    EXPECT_EQ(funcs.BarStatus(), row.status) << row.bar << " of " << row.count;
  }
}

TEST(BarData, HistoryDataExistComparesSignedIndexes) {
  TestHost host;
  host.AddSource("a", EvenBars(0, 60000, 3));
  host.AddSource("b", EvenBars(0, 60000, 3));
  CSystemFuncs funcs(&host.data);
  host.At(1, 2);
  EXPECT_TRUE(funcs.HistoryDataExist());
  host.data.CurrentBar = 3;  // CurrentBar == BarCount
  EXPECT_FALSE(funcs.HistoryDataExist());
  host.data.CurrentBar = 0;
  host.data.CurrentData = 2;  // CurrentData == DataCount
  EXPECT_FALSE(funcs.HistoryDataExist());
  host.data.CurrentData = -1;  // signed: below every count
  EXPECT_TRUE(funcs.HistoryDataExist());
}

TEST(BarData, CalendarFieldsAreLocalTime) {
  // 2017-07-14 02:42:03.456 UTC is Friday 10:42:03 in Shanghai.
  TestHost host;
  host.AddSource("s", {MakeBar(1500000123456, 1, 1, 1, 1)});
  CSystemFuncs funcs(&host.data);
  host.At(0, 0);
  EXPECT_EQ(std::tuple(funcs.Date(), funcs.D(), funcs.Year(), funcs.Month(), funcs.Day()),
            std::tuple(20170714, 20170714, 2017, 7, 14));
  EXPECT_EQ(std::tuple(funcs.Hour(), funcs.Minute(), funcs.Second(), funcs.MilliSecond()),
            std::tuple(10, 42, 3, 456));
  EXPECT_EQ(funcs.Weekday(), 5);
  EXPECT_EQ(funcs.Time(), 42 / 10000.0 + 10 / 100.0 + 3 / 1000000.0);
  EXPECT_EQ(funcs.T(), funcs.Time());
}

TEST(BarData, CalendarAcrossMidnightAndBefore1970) {
  struct Row {
    int64_t time;
    int32_t date, weekday, millis;
  } rows[] = {
      // 15:59:59.999 UTC is 23:59:59 local; one millisecond later the local date turns.
      {UtcInstant(2024, 2, 29, 15, 59, 59) + 999, 20240229, 4, 999},
      {UtcInstant(2024, 2, 29, 16, 0, 0), 20240301, 5, 0},
      // Before 1970 the seconds truncate toward zero and the remainder keeps the sign.
      {-1500, 19700101, 4, -500},  // -1 s: 07:59:59 local on Thursday 1970-01-01
      {-86400000LL * 2, 19691230, 2, 0},
  };
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("s", {MakeBar(row.time, 1, 1, 1, 1)});
    CSystemFuncs funcs(&host.data);
    host.At(0, 0);
    EXPECT_EQ(funcs.Date(), row.date) << row.time;
    EXPECT_EQ(funcs.Weekday(), row.weekday) << row.time;
    EXPECT_EQ(funcs.MilliSecond(), row.millis) << row.time;
  }
}

}  // namespace
}  // namespace sysfuncs::testing
