#include "strategy/LedgerStatistics.h"
#include "strategy/PortfolioStatistics.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

namespace sysfuncs::testing {
namespace {

TEST(PortfolioStatistics, PercentProfitDividesInWholeNumbers) {
  struct Row {
    int32_t wins, losses;
    double portfolio, series;
  } rows[] = {{3, 1, 0.0, 0.75}, {4, 0, 1.0, 1.0}, {0, 0, 0.0, 0.0}};
  for (const Row& row : rows) {
    AccountStatistics stats;
    stats.NumWin = row.wins;
    stats.NumLos = row.losses;
    EXPECT_EQ(PortfolioPercentProfit(stats), row.portfolio) << row.wins << "/" << row.losses;
    EXPECT_EQ(PercentProfit(stats), row.series) << row.wins << "/" << row.losses;
  }
}

TEST(PortfolioStatistics, LiveDrawdownCountsOnlyAPositiveEquityBelowTheTrough) {
  AccountStatistics stats;
  stats.Peak = 1000.0;
  stats.Trough = 900.0;
  stats.MaxDrawDown = -100.0;
  stats.MaxDrawDownRatio = 0.1;
  struct Row {
    double live, drawDown, ratio;
  } rows[] = {
      {850.0, -150.0, 0.15},   // 850 - 1000, 150 / 1000
      {900.0, -100.0, 0.1},    // at the trough
      {0.00005, -100.0, 0.1},  // 0.0001 or below: never
      {-20.0, -100.0, 0.1},
  };
  for (const Row& row : rows) {
    EXPECT_DOUBLE_EQ(LiveMaxDrawDown(stats, row.live), row.drawDown) << row.live;
    EXPECT_DOUBLE_EQ(LiveMaxDrawDownRatio(stats, row.live, false), row.ratio) << row.live;
    EXPECT_DOUBLE_EQ(LiveMaxDrawDownRatio(stats, row.live, true), row.drawDown / 100.0) << row.live;
  }
}

TEST(PortfolioStatistics, CapitalIsValuedAtTheOpenAndEquityAtTheClose) {
  TestHost host;  // unknown symbols: lot value 1
  host.AddSource("a", {MakeBar(0, 100, 104, 99, 103, 1), MakeBar(1, 100, 104, 99, 103, 1)});
  host.AddSource("b", {MakeBar(0, 50, 51, 45, 46, 1), MakeBar(1, 50, 51, 45, 46, 1)});
  host.data.CostSettings[0].MarginRate = 0.1;
  host.data.CostSettings[1].MarginRate = 0.1;
  host.data.InitCapital = 1000.0;
  host.data.MaxPositionLots = 10;
  host.At(0, 0);
  CSystemFuncs f(&host.data);
  EXPECT_EQ(f.Portfolio_TotalProfit(), 0.0);
  EXPECT_EQ(f.Portfolio_CurrentEquity(), 1000.0);
  EXPECT_EQ(f.Portfolio_CurrentCapital(), 1000.0);
  ASSERT_TRUE(f.Buy(2.0, 101.0));  // a limit inside the bar: 2 lots at 101
  host.At(1, 0);
  ASSERT_TRUE(f.SellShort(4.0, 0.0));  // 4 lots at 46
  // Open: margins 2 x 100 x 0.1 + 4 x 50 x 0.1 = 40; profits (100 - 101) x 2 + (46 - 50) x 4.
  EXPECT_DOUBLE_EQ(f.Portfolio_UsedMargin(), 40.0);
  EXPECT_DOUBLE_EQ(f.Portfolio_CurrentCapital(), 1000.0 - 40.0 - 2.0 - 16.0);
  // Close: (103 - 101) x 2 + (46 - 46) x 4.
  EXPECT_DOUBLE_EQ(f.Portfolio_CurrentEquity(), 1004.0);
  EXPECT_DOUBLE_EQ(f.Portfolio_TotalProfit(), 4.0);
  EXPECT_EQ(f.Portfolio_CurrentEntries(), 2);
  EXPECT_EQ(host.data.CurrentData, 1);
}

}  // namespace
}  // namespace sysfuncs::testing
