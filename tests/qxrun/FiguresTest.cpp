// The report's figures on a small run worked out by hand.
#include "qxrun/report/Figures.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

// 2020-01-01 00:00 local (the suite runs in Asia/Shanghai, UTC+8).
constexpr int64_t kStart = 1577808000000;
constexpr int64_t kQuarterYear = 7889400000;  // 365.25 / 4 days in milliseconds

struct SmallRun {
  std::vector<QXDataSource> Sources = std::vector<QXDataSource>(1);
  StrategyAccount Account;
};

// Five bars a quarter of a year apart: equity 100, 120, 108, 129.6, 116.64 (initial capital 100),
// lots held on bars 1 and 2; three trades of lot value 10.
void Build(SmallRun& run) {
  const double equity[] = {100, 120, 108, 129.6, 116.64};
  const double high[] = {10, 13, 12.5, 14, 13};
  const double low[] = {10, 9, 11, 11.5, 12};
  for (int bar = 0; bar < 5; ++bar) {
    const int64_t time = kStart + bar * kQuarterYear;
    run.Account.EquityCurve.push_back({.Bar = bar,
                                       .Time = time,
                                       .LongLots = (bar == 1 || bar == 2) ? 1.0 : 0.0,
                                       .Equity = equity[bar]});
    run.Sources[0].Bars.push_back({.Time = time, .High = high[bar], .Low = low[bar]});
  }
  const auto trade = [](uint32_t kind, int32_t entry, int32_t exit, double lots, double entryPrice,
                        double exitPrice, double net) {
    return TradeRecord{kind, 0, entry, exit, 0, lots, entryPrice, exitPrice, 0, 0, 0, net};
  };
  run.Account.Trades = {trade(kBuy, 0, 2, 1, 10, 12, 20),           // a winner
                        trade(kSellShort, 2, 4, 2, 12, 12.5, -10),  // a loser
                        trade(kBuy, 3, 3, 1, 11.5, 11.5, 0)};       // even, in and out on bar 3
}

TEST(FiguresTest, EquityFiguresFollowTheirDefinitions) {
  SmallRun run;
  Build(run);
  const qxrun::RunFigures f = qxrun::ComputeFigures(run.Sources, {10.0}, run.Account, 100.0);
  EXPECT_NEAR(f.Years, 1.0, 1e-12);
  EXPECT_NEAR(f.BarsPerYear, 4.0, 1e-9);  // (5 - 1) bars / 1 year
  EXPECT_NEAR(f.NetProfit, 16.64, 1e-9);
  EXPECT_NEAR(f.TotalReturn, 0.1664, 1e-12);
  EXPECT_NEAR(f.Cagr, 0.1664, 1e-9);  // one year: the total return
  // r = 0, .2, -.1, .2, -.1: mean .04, squared deviations .0016 + 2 x .0256 + 2 x .0196 = .092,
  // sample deviation sqrt(.092 / 4) = .1516575; x sqrt(4).
  EXPECT_NEAR(f.Volatility, 0.3033150, 1e-6);
  EXPECT_NEAR(f.Sharpe, 0.04 / 0.1516575 * 2, 1e-5);
  // Downside: sqrt((.01 + .01) / 5) = .0632456.
  EXPECT_NEAR(f.Sortino, 0.04 / 0.0632456 * 2, 1e-5);
  // Two falls of 10%: 120 -> 108 (-12), 129.6 -> 116.64 (-12.96, still open at the end).
  EXPECT_NEAR(f.MaxDrawdown, -12.96, 1e-9);
  EXPECT_NEAR(f.MaxDrawdownPct, 0.1, 1e-12);
  EXPECT_NEAR(f.AverageDrawdownPct, 0.1, 1e-12);
  EXPECT_EQ(f.MaxDrawdownBars, 2);                 // bar 1 to the new peak at bar 3
  EXPECT_NEAR(f.MaxDrawdownDays, 182.625, 1e-9);   // two quarters of 365.25 days
  EXPECT_NEAR(f.AverageDrawdownBars, 1.5, 1e-12);  // (2 + 1) / 2
  EXPECT_NEAR(f.Calmar, 1.664, 1e-9);              // .1664 / .1
  EXPECT_NEAR(f.RecoveryFactor, 16.64 / 12.96, 1e-9);
  EXPECT_NEAR(f.Exposure, 0.4, 1e-12);  // 2 of 5 bars

  // Months of the bars: Jan, Apr, Jul, Sep (the 30th, 22:30), Dec (the 31st, 06:00).
  ASSERT_EQ(f.Months.size(), 5u);
  const int32_t months[] = {1, 4, 7, 9, 12};
  const double returns[] = {0.0, 0.2, -0.1, 0.2, -0.1};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(f.Months[i].Year, 2020);
    EXPECT_EQ(f.Months[i].Month, months[i]);
    EXPECT_NEAR(f.Months[i].Return, returns[i], 1e-12) << i;
  }
  ASSERT_EQ(f.YearReturns.size(), 1u);
  EXPECT_NEAR(f.YearReturns[0].Return, 0.1664, 1e-12);
  EXPECT_NEAR(f.YearReturns[0].NetProfit, 16.64, 1e-9);
}

// The monthly returns' months are the local months of the runtime, in zones far east and west,
// through daylight-saving changes and the day Kiritimati skipped (1994-12-31), for bars of every
// spacing. Each bar's equity is its own, so a bar put in the wrong month moves a month's return.
TEST(FiguresTest, MonthsAreTheRuntimesLocalMonths) {
  for (const char* zone : {"America/New_York", "Pacific/Kiritimati", "Pacific/Pago_Pago",
                           "Australia/Lord_Howe", "Asia/Shanghai"}) {
    const sysfuncs::testing::ScopedTimeZone scoped(zone);
    for (const int64_t step : {int64_t{3600}, int64_t{86400}, int64_t{7 * 3600 + 13}}) {
      StrategyAccount account;
      std::vector<QXDataSource> sources(1);
      std::vector<int32_t> months;  // the runtime's month of each bar
      // 1994-08 to 1995-12.
      for (int64_t seconds = 777600000; seconds < 820000000; seconds += step) {
        account.EquityCurve.push_back(
            {.Time = seconds * 1000,
             .Equity = 100.0 + static_cast<double>(account.EquityCurve.size())});
        sources[0].Bars.push_back({.Time = seconds * 1000});
        const std::time_t when = seconds;
        std::tm local{};
        localtime_r(&when, &local);
        months.push_back((local.tm_year + 1900) * 100 + local.tm_mon + 1);
      }
      const qxrun::RunFigures f = qxrun::ComputeFigures(sources, {1.0}, account, 100.0);
      size_t period = 0;
      double before = 100.0;
      for (size_t i = 0; i < months.size(); ++i) {
        if (i + 1 < months.size() && months[i + 1] == months[i]) continue;  // not the month's last
        ASSERT_LT(period, f.Months.size()) << zone << ", a bar every " << step << " s";
        const qxrun::PeriodReturn& got = f.Months[period++];
        const double equity = account.EquityCurve[i].Equity;
        EXPECT_EQ(got.Year * 100 + got.Month, months[i]) << zone << ", step " << step;
        EXPECT_DOUBLE_EQ(got.Return, equity / before - 1.0)
            << zone << ", step " << step << ", month " << months[i];
        before = equity;
      }
      EXPECT_EQ(period, f.Months.size()) << zone << ", a bar every " << step << " s";
    }
  }
}

// A bar whose previous equity is not positive has no return: equity 100, 50, 0, -10, 20, 40
// (initial capital 100) gives the returns 0, -.5, -1 and 1 (40 / 20 - 1), none for the bars after
// 0 and -10. Mean -.125; squared deviations .015625 + .140625 + .765625 + 1.265625 = 2.1875,
// sample deviation sqrt(2.1875 / 3); downside sqrt((.25 + 1) / 4). Six bars over 1.25 years:
// 4 bars a year.
TEST(FiguresTest, ReturnsSkipBarsAfterAnEquityOfZeroOrLess) {
  SmallRun run;
  const double equity[] = {100, 50, 0, -10, 20, 40};
  for (int bar = 0; bar < 6; ++bar) {
    run.Account.EquityCurve.push_back(
        {.Bar = bar, .Time = kStart + bar * kQuarterYear, .Equity = equity[bar]});
  }
  const qxrun::RunFigures f = qxrun::ComputeFigures(run.Sources, {1.0}, run.Account, 100.0);
  ASSERT_NEAR(f.BarsPerYear, 4.0, 1e-9);
  const double deviation = std::sqrt(2.1875 / 3.0);
  EXPECT_NEAR(f.Volatility, deviation * 2.0, 1e-12);
  EXPECT_NEAR(f.Sharpe, -0.125 / deviation * 2.0, 1e-12);
  EXPECT_NEAR(f.Sortino, -0.125 / std::sqrt(1.25 / 4.0) * 2.0, 1e-12);
}

TEST(FiguresTest, TradeFiguresPerSideWithExcursions) {
  SmallRun run;
  Build(run);
  const qxrun::RunFigures f = qxrun::ComputeFigures(run.Sources, {10.0}, run.Account, 100.0);
  ASSERT_EQ(f.Trades.size(), 3u);
  // Long 10 -> 12: bars 1-2 reach 13 and 9: +3 and -1 points x lot value 10.
  EXPECT_NEAR(f.Trades[0].MaxFavourable, 30, 1e-9);
  EXPECT_NEAR(f.Trades[0].MaxAdverse, -10, 1e-9);
  // Short 12 -> 12.5, 2 lots: bars 3-4 reach 14 (-2) and 11.5 (+0.5).
  EXPECT_NEAR(f.Trades[1].MaxFavourable, 10, 1e-9);
  EXPECT_NEAR(f.Trades[1].MaxAdverse, -40, 1e-9);
  EXPECT_EQ(f.Trades[2].MaxFavourable, 0);
  EXPECT_EQ(f.Trades[2].MaxAdverse, 0);

  const qxrun::TradeSide& all = f.All;
  EXPECT_EQ(all.Trades, 3);
  EXPECT_EQ(all.Winners, 1);
  EXPECT_EQ(all.Losers, 1);
  EXPECT_NEAR(all.NetProfit, 10, 1e-12);
  EXPECT_NEAR(all.ProfitFactor, 2, 1e-12);
  EXPECT_NEAR(all.WinRate, 1.0 / 3, 1e-12);
  EXPECT_NEAR(all.AverageTrade, 10.0 / 3, 1e-12);
  EXPECT_NEAR(all.AverageWin, 20, 1e-12);
  EXPECT_NEAR(all.AverageLoss, -10, 1e-12);
  EXPECT_EQ(all.BestTrade, 20);
  EXPECT_EQ(all.WorstTrade, -10);
  // Profits 20, -10, 0: mean 10/3, sample deviation sqrt(466.67 / 2) = 15.2753.
  EXPECT_NEAR(all.Sqn, std::sqrt(3.0) * (10.0 / 3) / 15.2753, 1e-4);
  EXPECT_NEAR(all.AverageBars, 4.0 / 3, 1e-12);
  EXPECT_NEAR(all.AverageDays, 365.25 / 3, 1e-9);  // (182.625 + 182.625 + 0) / 3
  EXPECT_NEAR(all.AverageMae, -50.0 / 3, 1e-9);
  EXPECT_NEAR(all.AverageMfe, 40.0 / 3, 1e-9);
  EXPECT_EQ(all.WorstMae, -40);
  EXPECT_EQ(all.BestMfe, 30);
  EXPECT_EQ(all.MaxWinStreak, 1);
  EXPECT_EQ(all.MaxLossStreak, 1);

  EXPECT_EQ(f.Long.Trades, 2);
  EXPECT_NEAR(f.Long.NetProfit, 20, 1e-12);
  EXPECT_EQ(f.Long.ProfitFactor, 0);  // no losing long trade
  EXPECT_EQ(f.Short.Trades, 1);
  EXPECT_EQ(f.Short.Losers, 1);
  EXPECT_NEAR(f.Short.NetProfit, -10, 1e-12);
}

TEST(FiguresTest, StreaksCountRunsInExitOrder) {
  SmallRun run;
  Build(run);
  const double nets[] = {5, 6, -1, -2, -3, 4, 0, 7, 8, 9};
  run.Account.Trades.clear();
  for (double net : nets) run.Account.Trades.push_back({.EntryKind = kBuy, .NetProfit = net});
  const qxrun::RunFigures f = qxrun::ComputeFigures(run.Sources, {1.0}, run.Account, 100.0);
  EXPECT_EQ(f.All.MaxWinStreak, 3);   // 7, 8, 9 after the even trade broke 4
  EXPECT_EQ(f.All.MaxLossStreak, 3);  // -1, -2, -3
}

TEST(FiguresTest, AnEmptyRunHasNoFigures) {
  SmallRun run;
  const qxrun::RunFigures f = qxrun::ComputeFigures({}, {}, run.Account, 1000.0);
  EXPECT_EQ(f.Bars, 0);
  EXPECT_EQ(f.FinalEquity, 1000.0);
  EXPECT_EQ(f.Cagr, 0.0);
  EXPECT_EQ(f.Sharpe, 0.0);
  EXPECT_EQ(f.All.Trades, 0);
  EXPECT_TRUE(f.Months.empty());
}

}  // namespace
}  // namespace qxrun_test
