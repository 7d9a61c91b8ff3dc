// End-to-end runs over small hand-made bar series, driven the way a host drives them (formula,
// then BarCheckout, bar by bar). Expected figures are worked out by hand in the comments.
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <sstream>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

constexpr double kTolerance = 1e-6;

// Bars with a volume of 100, so that none of them is a no-trade bar, from "O/H/L/C" items
// separated by blanks.
std::vector<QXBar> Series(const std::vector<int64_t>& times, const char* prices) {
  std::vector<QXBar> bars;
  std::istringstream items(prices);
  double open, high, low, close;
  char slash;
  for (int64_t time : times) {
    items >> open >> slash >> high >> slash >> low >> slash >> close;
    bars.push_back(MakeBar(time, open, high, low, close, 100.0));
  }
  return bars;
}

std::vector<int64_t> DailyAt15(const std::vector<int>& marchDays) {
  std::vector<int64_t> times;
  for (int day : marchDays) times.push_back(ShanghaiInstant(2024, 3, day, 15));
  return times;
}

// A clock years after every bar below, so that no bar is "today".
SysFuncsPlatform LateClock() {
  SysFuncsPlatform services;
  services.Now = [] { return ShanghaiInstant(2030, 1, 2, 12); };
  return services;
}

// Bars [first, last]: the formula (free to address any series), then the checkout on series 0.
void RunBars(TestHost& host, CSystemFuncs& funcs, int32_t first, int32_t last,
             const std::function<void(int32_t)>& formula) {
  for (int32_t bar = first; bar <= last; ++bar) {
    host.At(0, bar);
    formula(bar);
    host.data.CurrentData = 0;
    funcs.BarCheckout();
  }
}

void ExpectNetProfits(const std::vector<TradeRecord>& trades, const std::vector<double>& net) {
  ASSERT_EQ(trades.size(), net.size());
  for (size_t i = 0; i < net.size(); ++i) EXPECT_NEAR(trades[i].NetProfit, net[i], kTolerance) << i;
}

void ExpectCurve(const std::vector<EquityPoint>& curve, double EquityPoint::*field,
                 const std::vector<double>& expected) {
  ASSERT_EQ(curve.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(curve[i].*field, expected[i], kTolerance) << "bar " << i;
  }
}

// The fields an evaluation writes, as tuples, for comparing two runs.
template <class T, class Fields>
auto Keys(const std::vector<T>& records, Fields fields) {
  std::vector<decltype(fields(T{}))> keys;
  for (const T& record : records) keys.push_back(fields(record));
  return keys;
}
auto Lot(const EntryLot& l) { return std::tuple(l.Kind, l.Bar, l.Lots, l.Price, l.Cost); }
auto Trade(const TradeRecord& t) { return std::tuple(t.ExitKind, t.EntryBar, t.Lots, t.NetProfit); }
auto Point(const EquityPoint& p) { return std::tuple(p.Bar, p.Equity, p.PercentEquity, p.BarCost); }
auto Stats(const LedgerStatistics& s) {
  return std::tuple(s.MaxContractsRecord, s.MaxContractsHeldRecord, s.MaxEntriesRecord,
                    s.BestOpenProfit, s.WorstOpenProfit, s.NumWin, s.NumLos, s.TotalBarsWin,
                    s.TotalBarsLos, s.GrossProfit, s.GrossLoss, s.WinRun, s.LosRun);
}

class ScenarioBase : public ::testing::Test {
 protected:
  ScopedPlatform platform_{LateClock()};
  FakeAdapter adapter_;
  ScopedAdapter scopedAdapter_{&adapter_};
  TestHost host_;
};

// =============================================================================================
// Scenario 1: two series, FIFO. InitCapital 100000, MaxOpenEntries 3, MaxPositionLots 10.
// ag (main): tick 1, LotValue 10, margin kind 4 at 0.1; commission 5 + slippage 2 per lot = 7.
// cu: tick 1, LotValue 5, margin kind 5 (5 x lots x price; its rate 0.5 ignored); slippage 1 tick
//   = 5 per lot; commission on exits only, by turnover: 5 x lots x price x 2 / 10000.
// Market orders fill at the Close. Bars daily at 15:00, Mon 03-04 to Mon 03-11.
//
// bar  ag O/H/L/C        cu O/H/L/C           orders (cost)                          bar cost
// 0    100/102/98/100    1000/1010/990/1000   ag Buy 2 @100 (14), cu SellShort 1 @1000 (5) 19
// 1    101/106/100/105   1000/1005/985/990    cu SellShort 1 @990 (5)                   5
// 2    105/110/104/108   990/995/970/980      ag Sell 2 @108 (exit costs 14)           14
// 3    108/109/100/102   980/1000/975/995     cu BuyToCover 2 @995 (entry rule: 10)    10
// 4    102/104/96/98     995/1010/990/1005    ag SellShort 1 @98 (7)                    7
// 5    100/100/100/100   1005/1020/1000/1010  cu Buy 1 @1010 (5)                        5
//
// Trades (gross - entry cost - exit cost); cu exit cost 5 + 5 x 995 x 2 / 10000 = 5.995:
//   ag  +2 @100 -> 108: 10 x 8 x 2 - 14 - 14 = 132
//   cu  -1 @1000 -> 995: 5 x 5 - 5 - 5.995 = 14.005
//   cu  -1 @990 -> 995: 5 x -5 - 5 - 5.995 = -35.995       net 110.01, capital 100110.01
// Equity = capital + open profit at the Close:
//   0: 100000 (entries of the bar: 0)        3: 100110.01 flat, drawdown 171.99 from 100282
//   1: 100000 + 100 + 50 = 100150, peak      4: 100110.01 (short of the bar: 0), = trough
//   2: 100132 + 100 + 50 = 100282, peak      5: 100110.01 - 20 + 0 = 100090.01, drawdown 191.99
class TwoSeriesScenario : public ScenarioBase {
 protected:
  void SetUp() override {
    adapter_.properties["ag"] = TradableContract(1, 1.0f, 10, 1.0f, 4);
    adapter_.properties["cu"] = TradableContract(1, 1.0f, 5, 1.0f, 5);
    const std::vector<int64_t> times = DailyAt15({4, 5, 6, 7, 8, 11});
    host_.AddSource("ag", Series(times,
                                 "100/102/98/100 101/106/100/105 105/110/104/108 108/109/100/102 "
                                 "102/104/96/98 100/100/100/100"));
    host_.AddSource("cu", Series(times,
                                 "1000/1010/990/1000 1000/1005/985/990 990/995/970/980 "
                                 "980/1000/975/995 995/1010/990/1005 1005/1020/1000/1010"));
    CQXBaseData& data = host_.data;
    data.InitCapital = 100000;
    data.MaxOpenEntries = 3;
    data.MaxPositionLots = 10;
    data.CostSettings[0] = CostSetting{.MarginRate = 0.1, .CommissionRate = 5, .Slippage = 2};
    data.CostSettings[1] =
        CostSetting{.MarginRate = 0.5, .CommissionKind = 2, .CommissionRate = 2, .Slippage = 1};
    data.CostSettings[1].NoEntryCommission = true;
    data.CostSettings[1].SlippageKind = 1;
  }

  void Formula(CSystemFuncs& funcs, int32_t bar) {
    EXPECT_TRUE(bar != 0 || funcs.Buy(2, 0));
    EXPECT_TRUE(bar != 2 || funcs.Sell(0, 0));
    EXPECT_TRUE(bar != 4 || funcs.SellShort(1, 0));
    host_.data.CurrentData = 1;
    EXPECT_TRUE(bar > 1 || funcs.SellShort(1, 0));
    EXPECT_TRUE(bar != 3 || funcs.BuyToCover(0, 0));
    EXPECT_TRUE(bar != 5 || funcs.Buy(1, 0));
    if (bar != 1) return;
    // At b1's Open (ag 101, cu 1000): margins 10 x 2 x 101 x 0.1 + 5 x 2 x 1000 = 10202; open
    // profit ag 10 x (101 - 100) x 2 = 20, cu 5 x (995 - 1000) x 2 = -50.
    EXPECT_NEAR(funcs.Portfolio_UsedMargin(), 10202, kTolerance);
    EXPECT_NEAR(funcs.Portfolio_CurrentCapital(), 100000 - 10202 + 20 - 50, kTolerance);
    EXPECT_NEAR(funcs.Portfolio_CurrentEquity(), 100150, kTolerance);  // at the Close
    EXPECT_EQ(host_.data.CurrentData, 1);  // the portfolio functions restore the addressing
  }
};

TEST_F(TwoSeriesScenario, PortfolioEquityAndDrawdownOverBothSeries) {
  CSystemFuncs funcs(&host_.data);
  RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  const StrategyAccount& account = *host_.data.Account;
  ExpectNetProfits(account.Trades, {132, 14.005, -35.995});
  // Open extremes since ag's last exit: its short of b4 is valued at the Close on b4 (profit 0)
  // and on b5 at High = Low = 100: 10 x (98 - 100) = -20.
  EXPECT_EQ(host_.data.Ledgers[0].Stats.BestOpenProfit, 0.0);
  EXPECT_NEAR(host_.data.Ledgers[0].Stats.WorstOpenProfit, -20, kTolerance);
  EXPECT_NEAR(funcs.NetProfit(), 132, kTolerance);  // ag
  host_.data.CurrentData = 1;
  EXPECT_NEAR(funcs.NetProfit(), -21.99, kTolerance);  // 14.005 - 35.995
  EXPECT_EQ(funcs.Portfolio_TotalTrades(), 4);
  EXPECT_EQ(funcs.Portfolio_NumWinTrades(), 3);
  EXPECT_NEAR(funcs.Portfolio_NetProfit(), 110.01, kTolerance);
  ExpectCurve(account.EquityCurve, &EquityPoint::Equity,
              {100000, 100150, 100282, 100110.01, 100110.01, 100090.01});
  ExpectCurve(account.EquityCurve, &EquityPoint::BarCost, {19, 5, 14, 10, 7, 5});
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -191.99, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 191.99 / 100282, kTolerance);
}

// A new instance on the last bar rolls back to the copies of bar 5 and repeats cu's entry.
TEST_F(TwoSeriesScenario, LastBarEvaluatedAgainLeavesTheStateOfOneEvaluation) {
  {
    CSystemFuncs funcs(&host_.data);
    RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  }
  const std::vector<StrategyLedger> once = host_.data.Ledgers;
  const auto accountTrades = Keys(host_.data.Account->Trades, Trade);
  const auto curve = Keys(host_.data.Account->EquityCurve, Point);
  host_.At(0, 5);
  CSystemFuncs again(&host_.data);
  RunBars(host_, again, 5, 5, [&](int32_t bar) { Formula(again, bar); });
  for (size_t i = 0; i < once.size(); ++i) {
    const StrategyLedger& twice = host_.data.Ledgers[i];
    EXPECT_EQ(Keys(twice.Orders, Lot), Keys(once[i].Orders, Lot)) << i;
    EXPECT_EQ(Keys(twice.OpenEntries, Lot), Keys(once[i].OpenEntries, Lot)) << i;
    EXPECT_EQ(Keys(twice.Trades, Trade), Keys(once[i].Trades, Trade)) << i;
    EXPECT_EQ(Stats(twice.Stats), Stats(once[i].Stats)) << i;
  }
  EXPECT_EQ(Keys(host_.data.Account->Trades, Trade), accountTrades);
  EXPECT_EQ(Keys(host_.data.Account->EquityCurve, Point), curve);
}

// =============================================================================================
// Scenario 2: LIFO exits that split entries, the same-day waiver and the end-of-run close.
// rb: tick 5 x 0.1 = 0.5, LotValue 10, margin kind 4 at 0.1; commission and slippage 1 tick per
//   lot each (0.5 x 10 = 5): entry 10 per lot, exit 10 per lot, or 5 on the entry's trading day.
// InitCapital 50000, MaxOpenEntries 5, MaxPositionLots 20, OutputMode 1: the last bar closes
// what is open at its Close (origin 512). Trading day: local time + 7 h, weekend -> Monday.
//
// bar  time (trading day)      O/H/L/C           orders
// 0    Thu 14:00 (Thu)         100/101/99/100    Buy 1 @100: E1 (10)
// 1    Thu 21:00 (Fri)         100/104/100/103   Buy 3 @103: E2 (30)
// 2    Fri 10:00 (Fri)         103/108/102/107   Sell 2 @107: 2 of E2, which keeps 1 lot (10)
// 3    Fri 21:30 (Mon)         107/107/101/102   Buy 2 @102: E3 (20)
// 4    Mon 09:30 (Mon)         102/103/97/98     Sell 3 @98: E3, then E2
// 5    Mon 14:30 (Mon)         98/100/96/99      Buy 2 @99: E4 (20)
// 6    Tue 10:00 (Tue)         99/106/99/105     the close: Sell 3 @105, E4 then E1
//
// Trades, newest entry first (gross - entry cost - exit cost):
//   b2 E2 2 lots, same day: 80 - 20 - 10 = 50     b6 E4 2 lots: 120 - 20 - 20 = 80
//   b4 E3 2 lots, same day: -80 - 20 - 10 = -110  b6 E1 1 lot: 50 - 10 - 10 = 30
//   b4 E2 1 lot (prorated cost 10), Fri/Mon: -50 - 10 - 10 = -70
// Lot-weighted 5 wins, 3 losses; net -20. Equity at the Close (capital + open profit):
//   0: 50000; 1: 50000 + 30 = 50030; 2: 50050 + 70 + 40 = 50160 (peak); 3: 50050 + 20 - 10 =
//   50060; 4: 49870 - 20 = 49850 (drawdown 310); 5: 49870 - 10 = 49860; 6: flat 49980.
using LifoScenario = ScenarioBase;

TEST_F(LifoScenario, PartialExitsSplitTheNewestEntriesAndProrateTheirCosts) {
  adapter_.properties["rb"] = TradableContract(5, 0.1f, 10, 1.0f, 4);
  host_.AddSource("rb",
                  Series({ShanghaiInstant(2024, 3, 7, 14), ShanghaiInstant(2024, 3, 7, 21),
                          ShanghaiInstant(2024, 3, 8, 10), ShanghaiInstant(2024, 3, 8, 21, 30),
                          ShanghaiInstant(2024, 3, 11, 9, 30), ShanghaiInstant(2024, 3, 11, 14, 30),
                          ShanghaiInstant(2024, 3, 12, 10)},
                         "100/101/99/100 100/104/100/103 103/108/102/107 107/107/101/102 "
                         "102/103/97/98 98/100/96/99 99/106/99/105"));
  CQXBaseData& data = host_.data;
  data.InitCapital = 50000;
  data.MaxOpenEntries = 5;
  data.MaxPositionLots = 20;
  data.LifoExits = true;
  data.OutputMode = 1;
  data.CostSettings[0] =
      CostSetting{.MarginRate = 0.1, .CommissionKind = 1, .CommissionRate = 1, .Slippage = 1};
  data.CostSettings[0].SameDayExitFree = true;
  data.CostSettings[0].SlippageKind = 1;
  CSystemFuncs funcs(&host_.data);
  const double lots[] = {1, 3, -2, 2, -3, 2};  // buys > 0, sells < 0; none on bar 6
  RunBars(host_, funcs, 0, 6, [&](int32_t bar) {
    EXPECT_TRUE(bar == 6 || (lots[bar] > 0 ? funcs.Buy(lots[bar], 0) : funcs.Sell(-lots[bar], 0)));
  });
  ExpectNetProfits(host_.data.Account->Trades, {50, -110, -70, 80, 30});
  EXPECT_EQ(host_.data.Ledgers[0].Orders.back().Kind, uint32_t{kSell} | kOriginSettlement);
  EXPECT_EQ(funcs.NumWinTrades(), 5);
  EXPECT_EQ(funcs.NumLosTrades(), 3);
  EXPECT_NEAR(funcs.NetProfit(), -20, kTolerance);
  EXPECT_EQ(funcs.Portfolio_TotalTrades(), 8);
  EXPECT_NEAR(funcs.Portfolio_NetProfit(), -20, kTolerance);
  ExpectCurve(host_.data.Account->EquityCurve, &EquityPoint::Equity,
              {50000, 50030, 50160, 50060, 49850, 49860, 49980});
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -310, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 310.0 / 50160, kTolerance);
}

// =============================================================================================
// Scenario 3: PercentMode, with a reversal. A trade books v = 100 x net / margin(1 @entry).
// IF: tick 1, LotValue 300, margin kind 4 at 0.1 -> margin(1 @p) = 30 p; commission by turnover
//   300 x lots x p x 0.5 / 10000 = 0.015 x lots x p; slippage 20 per lot.
// InitCapital 1000000, MaxOpenEntries 1, MaxPositionLots 5. Bars daily at 15:00 from Mon 03-04.
//
// bar  O/H/L/C               orders (cost)                            Equity      PercentEquity
// 0    4000/4010/3990/4000   SellShort 2 @4000: E1 (40 + 120)         1000000     0
// 1    4000/4005/3950/3960   -                                        1024000     20, peak
// 2    3960/3980/3940/3950   Buy 1 @3950: cover E1 (40 + 118.5), E2   1029681.5   v1, peak
// 3    3950/3990/3945/3980   -                                        1038681.5   v1 + r3, peak
// 4    3980/3985/3900/3920   Sell @3920 (20 + 58.8)                   1020523.45  v1 + v2
// 5    3920/3940/3910/3930   SellShort 1 @3930: E3                    1020523.45  v1 + v2
// E1: 300 x 50 x 2 - 160 - 158.5 = 29681.5; v1 = 29681.5 x 100 / 120000 = 24.7345833
// E2 (cost 20 + 59.25): 300 x -30 - 79.25 - 78.8 = -9158.05; v2 = -9158.05 x 100 / 118500
// Open profit b1: 300 x 40 x 2 = 24000, return 24000 x 100 / 120000 = 20; b3: 300 x 30 = 9000,
// r3 = 9000 x 100 / 118500 = 7.5949367. Drawdown 32.3295200 - 17.0062711 = 15.3232489 on b4;
// MaxDrawDownRatio stays 0 in this mode. Lot-weighted 2 wins, 1 loss; net v1 + v2 = 17.0062711.
using PercentScenario = ScenarioBase;

TEST_F(PercentScenario, StatisticsAndDrawdownAreBookedInPercent) {
  adapter_.properties["IF"] = TradableContract(1, 1.0f, 1, 300.0f, 4);
  host_.AddSource("IF", Series(DailyAt15({4, 5, 6, 7, 8, 11}),
                               "4000/4010/3990/4000 4000/4005/3950/3960 3960/3980/3940/3950 "
                               "3950/3990/3945/3980 3980/3985/3900/3920 3920/3940/3910/3930"));
  CQXBaseData& data = host_.data;
  data.InitCapital = 1000000;
  data.MaxOpenEntries = 1;
  data.MaxPositionLots = 5;
  data.PercentMode = true;
  data.CostSettings[0] =
      CostSetting{.MarginRate = 0.1, .CommissionKind = 2, .CommissionRate = 0.5, .Slippage = 20};
  CSystemFuncs funcs(&host_.data);
  RunBars(host_, funcs, 0, 5, [&](int32_t bar) {
    EXPECT_TRUE(bar != 0 || funcs.SellShort(2, 0));
    EXPECT_TRUE(bar != 2 || funcs.Buy(1, 0));
    EXPECT_TRUE(bar != 4 || funcs.Sell(0, 0));
    EXPECT_TRUE(bar != 5 || funcs.SellShort(1, 0));
  });
  const double win = 29681.5 / 120000 * 100;
  const double loss = -9158.05 / 118500 * 100;
  const double drawDown = win + 9000.0 * 100 / 118500 - (win + loss);  // 15.3232489
  const StrategyAccount& account = *host_.data.Account;
  ExpectNetProfits(account.Trades, {29681.5, -9158.05});
  EXPECT_EQ(funcs.TotalTrades(), 3);
  EXPECT_EQ(funcs.Portfolio_NumWinTrades(), 2);
  EXPECT_NEAR(funcs.NetProfit(), win + loss, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_NetProfit(), win + loss, kTolerance);
  ExpectCurve(account.EquityCurve, &EquityPoint::Equity,
              {1000000, 1024000, 1029681.5, 1038681.5, 1020523.45, 1020523.45});
  ExpectCurve(account.EquityCurve, &EquityPoint::PercentEquity,
              {0, 20, win, win + 900000.0 / 118500, win + loss, win + loss});
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -drawDown, kTolerance);
  EXPECT_NEAR(account.Stats.MaxDrawDownRatio, 0, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), -drawDown / 100, kTolerance);  // in this mode
}

}  // namespace
}  // namespace sysfuncs::testing
