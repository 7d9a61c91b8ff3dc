#include "strategy/PerformanceReport.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace sysfuncs::testing {
namespace {

TEST(Settlement, ReportRunsCloseOpenPositionsAtTheLastClose) {
  struct Row {
    int32_t mode;
    bool suppressSummary, summary, detail;
  } rows[] = {{0, false, false, false},
              {1, false, true, false},
              {1, true, false, false},
              {2, true, true, true}};
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("s", {MakeBar(0, 99, 101, 98, 100, 1), MakeBar(1, 104, 106, 103, 105, 1),
                         MakeBar(2, 103, 104, 101, 102, 1)});
    host.data.CostSettings[0].MarginRate = 0.1;
    host.data.InitCapital = 10000.0;
    host.data.OutputMode = row.mode;
    host.data.SuppressSummary = row.suppressSummary;
    host.At(0, 0);
    CSystemFuncs funcs(&host.data);
    ASSERT_TRUE(funcs.Buy(1.0, 0.0));
    for (int32_t bar = 0; bar < 3; ++bar) {
      host.At(0, bar);
      funcs.BarCheckout();
    }
    const StrategyAccount& account = *host.data.Account;
    const std::string name = "mode " + std::to_string(row.mode);
    EXPECT_EQ(account.FinalPosition, 1) << name;
    EXPECT_EQ(account.EquityCurve.back().Equity, 10002.0) << name;
    // The run ended 3 below its peak of 10005: the episode in progress closes the list.
    EXPECT_EQ(account.Stats.EpisodeDrawDowns, std::vector<double>{-3.0}) << name;
    EXPECT_EQ(account.Report.HasSummary, row.summary) << name;
    EXPECT_EQ(account.Report.HasTradeAnalysis, row.mode >= 1) << name;
    EXPECT_EQ(account.Report.HasDetail, row.detail) << name;
    EXPECT_EQ(funcs.CurrentContracts(), row.mode == 0 ? 1.0 : 0.0) << name;
    if (row.mode == 0) continue;
    const TradeRecord& trade = host.data.Ledgers[0].Trades.at(0);
    EXPECT_EQ(trade.ExitKind, uint32_t{kSell} | kOriginSettlement) << name;
    EXPECT_EQ(trade.ExitPrice, 102.0) << name;
    EXPECT_EQ(account.Report.TotalTrades, 1) << name;
  }
}

// The figures of the equity curve; the trade figures are quotients of the statistics block.
TEST(PerformanceReport, FiguresOfTheEquityCurve) {
  StrategyAccount account;
  const double equity[] = {1000.0, 1100.0, 1050.0};
  const double capital[] = {1000.0, 1000.0, 1080.0};
  for (int i = 0; i < 3; ++i) {
    EquityPoint& point = account.EquityCurve.emplace_back();
    point.Time = ShanghaiInstant(2024, 1, 31 + i, 12);  // 31 January to 2 February
    point.Equity = equity[i];
    point.Capital = capital[i];
    point.LongLots = i == 1 ? 1.0 : 0.0;
  }
  CQXBaseData settings;
  settings.InitCapital = 1000.0;
  settings.OutputMode = 2;
  const PerformanceReport report = ComputeReport(account, settings);
  EXPECT_DOUBLE_EQ(report.ReturnOnInitialCapital, 0.05);
  EXPECT_DOUBLE_EQ(report.AnnualReturn, 0.05 * 365.0 / 2.0);  // over 2 days
  // Returns 0.1 and -1/22: mean 0.6/22, sample deviation 1.6/22 x sqrt(2).
  EXPECT_NEAR(report.SharpeRatio, 0.375 / std::sqrt(2.0), 1e-12);
  EXPECT_DOUBLE_EQ(report.TimeInMarket, 1.0 / 3.0);
  // Realised capital per month: January 0; February 1080 - 1000 on 1000.
  ASSERT_EQ(report.Months.size(), 2u);
  EXPECT_EQ(report.Months[0].NetProfit, 0.0);
  EXPECT_EQ(report.Months[1].Period, 202402);
  EXPECT_DOUBLE_EQ(report.Months[1].Return, 0.08);
  ASSERT_EQ(report.Years.size(), 1u);
  EXPECT_EQ(report.Years[0].NetProfit, 80.0);
}

}  // namespace
}  // namespace sysfuncs::testing
