// End-to-end runs of the strategy order engine over small hand-made bar series: signal orders,
// bar checkout, ledgers and portfolio statistics, driven the way a host drives them (formula
// body, then BarCheckout, bar by bar), and the re-evaluation of the last bar by a new instance.
//
// Every expected number below is worked out by hand from the money rules; the arithmetic is in
// the comments next to it.
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sysfuncs::testing {
namespace {

constexpr double kTolerance = 1e-6;

struct Ohlc {
  double open, high, low, close;
};

// Bars with a volume of 100, so that none of them is a no-trade bar.
std::vector<QXBar> Series(const std::vector<int64_t>& times, const std::vector<Ohlc>& prices) {
  std::vector<QXBar> bars;
  for (size_t i = 0; i < prices.size(); ++i) {
    bars.push_back(
        MakeBar(times[i], prices[i].open, prices[i].high, prices[i].low, prices[i].close, 100.0));
  }
  return bars;
}

Quill::ICodeProperty Contract(int32_t minMove, float priceScale, int32_t contractUnit,
                              float bigPointValue, int32_t marginKind) {
  Quill::ICodeProperty contract;
  contract.Tradable = true;
  contract.MinMove = minMove;
  contract.PriceScale = priceScale;
  contract.ContractUnit = contractUnit;
  contract.BigPointValue = bigPointValue;
  contract.MarginKind = marginKind;
  return contract;
}

// A clock years after every bar below, so that no bar is "today".
SysFuncsPlatform LateClock() {
  SysFuncsPlatform services;
  services.Now = [] { return ShanghaiInstant(2030, 1, 2, 12); };
  return services;
}

// The host loop over bars [first, last]: address the main series on bar b, run the formula
// (which addresses other series itself), then check the bar out with the main series addressed.
void RunBars(TestHost& host, CSystemFuncs& funcs, int32_t first, int32_t last,
             const std::function<void(int32_t)>& formula) {
  for (int32_t bar = first; bar <= last; ++bar) {
    host.At(0, bar);
    formula(bar);
    host.data.CurrentData = 0;
    funcs.BarCheckout();
  }
}

void ExpectEntries(const std::vector<EntryLot>& actual, const std::vector<EntryLot>& expected,
                   const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (size_t i = 0; i < expected.size(); ++i) {
    const std::string row = what + " #" + std::to_string(i);
    EXPECT_EQ(actual[i].Kind, expected[i].Kind) << row;
    EXPECT_EQ(actual[i].Bar, expected[i].Bar) << row;
    EXPECT_EQ(actual[i].DataIndex, expected[i].DataIndex) << row;
    EXPECT_NEAR(actual[i].Lots, expected[i].Lots, kTolerance) << row;
    EXPECT_NEAR(actual[i].Price, expected[i].Price, kTolerance) << row;
    EXPECT_NEAR(actual[i].Cost, expected[i].Cost, kTolerance) << row;
  }
}

void ExpectTrades(const std::vector<TradeRecord>& actual, const std::vector<TradeRecord>& expected,
                  const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (size_t i = 0; i < expected.size(); ++i) {
    const std::string row = what + " #" + std::to_string(i);
    EXPECT_EQ(actual[i].EntryKind, expected[i].EntryKind) << row;
    EXPECT_EQ(actual[i].ExitKind, expected[i].ExitKind) << row;
    EXPECT_EQ(actual[i].EntryBar, expected[i].EntryBar) << row;
    EXPECT_EQ(actual[i].ExitBar, expected[i].ExitBar) << row;
    EXPECT_EQ(actual[i].DataIndex, expected[i].DataIndex) << row;
    EXPECT_NEAR(actual[i].Lots, expected[i].Lots, kTolerance) << row;
    EXPECT_NEAR(actual[i].EntryPrice, expected[i].EntryPrice, kTolerance) << row;
    EXPECT_NEAR(actual[i].ExitPrice, expected[i].ExitPrice, kTolerance) << row;
    EXPECT_NEAR(actual[i].EntryCost, expected[i].EntryCost, kTolerance) << row;
    EXPECT_NEAR(actual[i].ExitCost, expected[i].ExitCost, kTolerance) << row;
    EXPECT_NEAR(actual[i].GrossProfit, expected[i].GrossProfit, kTolerance) << row;
    EXPECT_NEAR(actual[i].NetProfit, expected[i].NetProfit, kTolerance) << row;
    EXPECT_NEAR(actual[i].Return, expected[i].Return, kTolerance) << row;
  }
}

void ExpectLedgerStats(const LedgerStatistics& actual, const LedgerStatistics& expected,
                       const std::string& what) {
  EXPECT_NEAR(actual.MaxContractsRecord, expected.MaxContractsRecord, kTolerance) << what;
  EXPECT_NEAR(actual.MaxContractsHeldRecord, expected.MaxContractsHeldRecord, kTolerance) << what;
  EXPECT_EQ(actual.MaxEntriesRecord, expected.MaxEntriesRecord) << what;
  EXPECT_NEAR(actual.BestOpenProfit, expected.BestOpenProfit, kTolerance) << what;
  EXPECT_NEAR(actual.WorstOpenProfit, expected.WorstOpenProfit, kTolerance) << what;
  EXPECT_EQ(actual.NumWin, expected.NumWin) << what;
  EXPECT_EQ(actual.NumLos, expected.NumLos) << what;
  EXPECT_EQ(actual.NumEven, expected.NumEven) << what;
  EXPECT_EQ(actual.TotalBarsWin, expected.TotalBarsWin) << what;
  EXPECT_EQ(actual.TotalBarsLos, expected.TotalBarsLos) << what;
  EXPECT_EQ(actual.TotalBarsEven, expected.TotalBarsEven) << what;
  EXPECT_NEAR(actual.LargestWin, expected.LargestWin, kTolerance) << what;
  EXPECT_NEAR(actual.LargestLos, expected.LargestLos, kTolerance) << what;
  EXPECT_NEAR(actual.GrossProfit, expected.GrossProfit, kTolerance) << what;
  EXPECT_NEAR(actual.GrossLoss, expected.GrossLoss, kTolerance) << what;
  EXPECT_EQ(actual.MaxConsecWin, expected.MaxConsecWin) << what;
  EXPECT_EQ(actual.MaxConsecLos, expected.MaxConsecLos) << what;
  EXPECT_EQ(actual.WinRun, expected.WinRun) << what;
  EXPECT_EQ(actual.LosRun, expected.LosRun) << what;
}

// The trade statistics of the account (the drawdown fields are checked separately).
void ExpectPortfolioStats(const AccountStatistics& actual, const AccountStatistics& expected,
                          const std::string& what) {
  EXPECT_EQ(actual.NumWin, expected.NumWin) << what;
  EXPECT_EQ(actual.NumLos, expected.NumLos) << what;
  EXPECT_EQ(actual.NumEven, expected.NumEven) << what;
  EXPECT_EQ(actual.TotalBarsWin, expected.TotalBarsWin) << what;
  EXPECT_EQ(actual.TotalBarsLos, expected.TotalBarsLos) << what;
  EXPECT_EQ(actual.TotalBarsEven, expected.TotalBarsEven) << what;
  EXPECT_NEAR(actual.LargestWin, expected.LargestWin, kTolerance) << what;
  EXPECT_NEAR(actual.LargestLos, expected.LargestLos, kTolerance) << what;
  EXPECT_NEAR(actual.GrossProfit, expected.GrossProfit, kTolerance) << what;
  EXPECT_NEAR(actual.GrossProfitLong, expected.GrossProfitLong, kTolerance) << what;
  EXPECT_NEAR(actual.GrossProfitShort, expected.GrossProfitShort, kTolerance) << what;
  EXPECT_NEAR(actual.GrossLoss, expected.GrossLoss, kTolerance) << what;
  EXPECT_NEAR(actual.GrossLossLong, expected.GrossLossLong, kTolerance) << what;
  EXPECT_NEAR(actual.GrossLossShort, expected.GrossLossShort, kTolerance) << what;
  EXPECT_EQ(actual.MaxConsecWin, expected.MaxConsecWin) << what;
  EXPECT_EQ(actual.MaxConsecLos, expected.MaxConsecLos) << what;
  EXPECT_EQ(actual.WinRun, expected.WinRun) << what;
  EXPECT_EQ(actual.LosRun, expected.LosRun) << what;
}

void ExpectEquityPoint(const EquityPoint& actual, const EquityPoint& expected,
                       const std::string& what) {
  EXPECT_EQ(actual.Bar, expected.Bar) << what;
  EXPECT_EQ(actual.Time, expected.Time) << what;
  EXPECT_NEAR(actual.LongMargin, expected.LongMargin, kTolerance) << what;
  EXPECT_NEAR(actual.ShortMargin, expected.ShortMargin, kTolerance) << what;
  EXPECT_NEAR(actual.LongLots, expected.LongLots, kTolerance) << what;
  EXPECT_NEAR(actual.ShortLots, expected.ShortLots, kTolerance) << what;
  EXPECT_NEAR(actual.Available, expected.Available, kTolerance) << what;
  EXPECT_NEAR(actual.Equity, expected.Equity, kTolerance) << what;
  EXPECT_NEAR(actual.PercentEquity, expected.PercentEquity, kTolerance) << what;
  EXPECT_NEAR(actual.OpenReturn, expected.OpenReturn, kTolerance) << what;
  EXPECT_NEAR(actual.BarCost, expected.BarCost, kTolerance) << what;
  EXPECT_NEAR(actual.Capital, expected.Capital, kTolerance) << what;
}

void ExpectEquityCurve(const std::vector<EquityPoint>& actual,
                       const std::vector<EquityPoint>& expected, const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (size_t i = 0; i < expected.size(); ++i) {
    ExpectEquityPoint(actual[i], expected[i], what + " bar " + std::to_string(i));
  }
}

// =============================================================================================
// Scenario 1: two series traded together.
//
// Series 0 "ag" (main): MinMove 1 x PriceScale 1 -> tick 1; ContractUnit 10 x BigPointValue 1
//   -> LotValue 10; margin kind 4 (LotValue x lots x price x MarginRate), MarginRate 0.1.
//   Costs: commission 5 money per lot (kind 0), slippage 2 money per lot (kind 0).
// Series 1 "cu": tick 1; ContractUnit 5 x BigPointValue 1 -> LotValue 5; margin kind 5
//   (LotValue x lots x price, the MarginRate of 0.5 is ignored). Costs: commission by turnover
//   (kind 2) at 2/10000 -> 5 x lots x price x 2 / 10000; slippage 1 tick per lot (kind 1)
//   -> lots x 1 x LotValue 5 x tick 1 = 5 per lot; entries are commission-free.
// InitCapital 100000, MaxOpenEntries 3, MaxPositionLots 10, FIFO exits, OutputMode 0.
//
// Bars (O/H/L/C), one a day at 15:00 from Monday 2024-03-04 to Monday 2024-03-11:
//   bar  ag                    cu                         formula
//   0    100/102/ 98/100       1000/1010/ 990/1000        ag Buy(2,0); cu SellShort(1,0)
//   1    101/106/100/105       1000/1005/ 985/ 990        cu SellShort(1,0)
//   2    105/110/104/108        990/ 995/ 970/ 980        ag Sell(0,0)
//   3    108/109/100/102        980/1000/ 975/ 995        cu BuyToCover(0,0)
//   4    102/104/ 96/ 98        995/1010/ 990/1005        ag SellShort(1,0)
//   5    100/100/100/100       1005/1020/1000/1010        cu Buy(1,0)   (last bar)
//
// Orders (market orders execute at the Close, already on the tick):
//   b0 ag Buy 2 @100: afford 100000 / margin(1 @100 = 10 x 100 x 0.1 = 100) = 1000 >= 2.
//      Cost = slippage 2 x 2 + commission 5 x 2 = 14.
//   b0 cu SellShort 1 @1000: available 100000 - ag margin(2 @ open 100 = 200) = 99800,
//      margin(1 @1000) = 5 x 1000 = 5000 -> 19 affordable. Cost = slippage 5 (no commission).
//   b1 cu SellShort 1 @990: second entry (2 <= 3). Cost = slippage 5.
//   b2 ag Sell all 2 @108 -> one trade of 2 lots:
//      gross = 10 x (108 - 100) x 2 = 160; entry cost 14; exit cost = 2 x 2 + 5 x 2 = 14;
//      net = 160 - 14 - 14 = 132; return = 132 / margin(1 @100 = 100) = 1.32.
//      Order cost (Sell) = sum of the trades' exit costs = 14. Capital 100000 + 132 = 100132.
//   b3 cu BuyToCover all 2 @995, FIFO:
//      entry @1000: gross = 5 x (1000 - 995) = 25; entry cost 5; exit cost = slippage 5 +
//        commission 5 x 1 x 995 x 2 / 10000 = 0.995 -> 5.995; net = 25 - 5 - 5.995 = 14.005;
//        return = 14.005 / 5000 = 0.002801.
//      entry @990: gross = 5 x (990 - 995) = -25; net = -25 - 5 - 5.995 = -35.995;
//        return = -35.995 / margin(1 @990 = 4950).
//      Order cost (BuyToCover) = entry-cost rule on 2 lots @995 = slippage 10 only, because
//        entries are commission-free (the trades' exit costs would sum to 11.99).
//      Capital 100132 + 14.005 - 35.995 = 100110.01.
//   b4 ag SellShort 1 @98: cost 2 + 5 = 7.
//   b5 cu Buy 1 @1010: flat series, plain entry. Cost = slippage 5.
//
// Checkout (Equity = Capital + open profit at the Close; margins at the Close; OpenReturn =
// sum of open profit x 100 / margin of one lot at the entry price):
//   b0: both entries are of this bar -> profit 0. Long margin ag 100 x 10 x 2 x 0.1 = 200,
//       short margin cu 1000 x 5 = 5000. Equity 100000; available 100000 - 5200 = 94800;
//       bar cost 14 + 5 = 19. Basis 100000 = Peak: no change.
//   b1: ag (105 - 100) x 10 x 2 = 100; cu (1000 - 990) x 5 = 50 and (990 - 990) x 5 = 0.
//       Equity 100150. Margins: long 105 x 10 x 2 x 0.1 = 210, short 990 x 5 x 2 = 9900;
//       available 100150 - 10110 = 90040. OpenReturn 100 x 100 / 100 + 50 x 100 / 5000 = 101.
//       Bar cost 5. New peak 100150.
//   b2: cu (1000 - 980) x 5 = 100 and (990 - 980) x 5 = 50 -> Equity 100132 + 150 = 100282.
//       Short margin 980 x 5 x 2 = 9800; available 90482. OpenReturn 100 x 100 / 5000 +
//       50 x 100 / 4950 = 2 + 1.0101... CumReturn 132 -> PercentEquity 135.0101...
//       Bar cost 14. New peak 100282.
//   b3: flat. Equity 100110.01. CumReturn 132 + 0.2801 - 3599.5 / 4950 = 131.5529...
//       Bar cost 10. Drawdown 100282 - 100110.01 = 171.99.
//   b4: ag short of this bar: profit 0; short margin 98 x 10 x 0.1 = 98; available
//       100110.01 - 98 = 100012.01. Equity 100110.01, equal to the trough: no change. Bar cost 7.
//   b5: ag (98 - 100) x 10 = -20, OpenReturn -20 x 100 / 98; cu long of this bar: 0.
//       Equity 100090.01. Margins: long 1010 x 5 = 5050, short 100 x 10 x 0.1 = 100;
//       available 100090.01 - 5150 = 94940.01. Bar cost 5.
//       Drawdown 100282 - 100090.01 = 191.99, ratio 191.99 / 100282.

class TwoSeriesScenario : public ::testing::Test {
 protected:
  void SetUp() override {
    adapter_.properties["ag"] = Contract(1, 1.0f, 10, 1.0f, 4);
    adapter_.properties["cu"] = Contract(1, 1.0f, 5, 1.0f, 5);
    std::vector<int64_t> times;
    for (int day : {4, 5, 6, 7, 8, 11}) times.push_back(ShanghaiInstant(2024, 3, day, 15));
    times_ = times;
    host_.AddSource("ag", Series(times, {{100, 102, 98, 100},
                                         {101, 106, 100, 105},
                                         {105, 110, 104, 108},
                                         {108, 109, 100, 102},
                                         {102, 104, 96, 98},
                                         {100, 100, 100, 100}}));
    host_.AddSource("cu", Series(times, {{1000, 1010, 990, 1000},
                                         {1000, 1005, 985, 990},
                                         {990, 995, 970, 980},
                                         {980, 1000, 975, 995},
                                         {995, 1010, 990, 1005},
                                         {1005, 1020, 1000, 1010}}));
    CQXBaseData& data = host_.data;
    data.InitCapital = 100000;
    data.DefaultLotsMode = 0;
    data.DefaultLotsValue = 1;
    data.MaxOpenEntries = 3;
    data.MaxPositionLots = 10;
    data.OutputMode = 0;
    data.CostSettings[0] = CostSetting{.MarginRate = 0.1,
                                       .CommissionKind = 0,
                                       .CommissionRate = 5,
                                       .NoEntryCommission = false,
                                       .SameDayExitFree = false,
                                       .SlippageKind = 0,
                                       .Slippage = 2};
    data.CostSettings[1] = CostSetting{.MarginRate = 0.5,
                                       .CommissionKind = 2,
                                       .CommissionRate = 2,
                                       .NoEntryCommission = true,
                                       .SameDayExitFree = false,
                                       .SlippageKind = 1,
                                       .Slippage = 1};
  }

  // The formula of one bar; on bars 1 and 3 it also samples the portfolio functions before the
  // checkout.
  void Formula(CSystemFuncs& funcs, int32_t bar) {
    CQXBaseData& data = host_.data;
    switch (bar) {
      case 0:
        EXPECT_TRUE(funcs.Buy(2, 0));
        data.CurrentData = 1;
        EXPECT_TRUE(funcs.SellShort(1, 0));
        break;
      case 1:
        data.CurrentData = 1;
        EXPECT_TRUE(funcs.SellShort(1, 0));
        // cu holds -1 @1000 and -1 @990: average (1000 + 990) / 2 = 995.
        EXPECT_NEAR(funcs.CurrentContracts(), -2, kTolerance);
        EXPECT_NEAR(funcs.AvgEntryPrice(), 995, kTolerance);
        EXPECT_EQ(funcs.CurrentEntries(), 2);
        data.CurrentData = 0;
        // Valued at this bar's Open (ag 101, cu 1000):
        //   margin ag 10 x 2 x 101 x 0.1 = 202, cu 5 x 2 x 1000 = 10000 -> 10202;
        //   open profit ag 10 x (101 - 100) x 2 = 20, cu 5 x (995 - 1000) x 2 = -50;
        //   capital 100000 - 10202 + 20 - 50 = 89768.
        EXPECT_NEAR(funcs.Portfolio_UsedMargin(), 10202, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_CurrentCapital(), 89768, kTolerance);
        // At the Close (ag 105, cu 990): 10 x 5 x 2 + 5 x (995 - 990) x 2 = 100 + 50 = 150.
        EXPECT_NEAR(funcs.Portfolio_PositionProfit(), 150, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_CurrentEquity(), 100150, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_TotalProfit(), 150, kTolerance);
        EXPECT_EQ(funcs.Portfolio_CurrentEntries(), 3);
        EXPECT_EQ(data.CurrentData, 0) << "portfolio functions restore the addressed series";
        break;
      case 2:
        EXPECT_TRUE(funcs.Sell(0, 0));
        break;
      case 3:
        data.CurrentData = 1;
        EXPECT_TRUE(funcs.BuyToCover(0, 0));
        data.CurrentData = 0;
        // Before the checkout the stored drawdown is still 0, but the live figure sees the
        // flat equity 100110.01 under the trough 100282: 100110.01 - 100282 = -171.99, and the
        // ratio 171.99 / 100282.
        EXPECT_NEAR(host_.data.Account->Stats.MaxDrawDown, 0, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -171.99, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 171.99 / 100282, kTolerance);
        break;
      case 4:
        EXPECT_TRUE(funcs.SellShort(1, 0));
        break;
      case 5:
        data.CurrentData = 1;
        EXPECT_TRUE(funcs.Buy(1, 0));
        break;
    }
  }

  // The state after the last bar has been checked out, whether once or again by a new instance.
  void ExpectFinalState(CSystemFuncs& funcs, const std::string& pass) {
    CQXBaseData& data = host_.data;
    const StrategyAccount& account = *data.Account;

    ExpectEntries(data.Ledgers[0].Orders,
                  {{1, 0, 0, 2, 100, 14}, {2, 2, 0, 2, 108, 14}, {3, 4, 0, 1, 98, 7}},
                  pass + " ag orders");
    ExpectEntries(
        data.Ledgers[1].Orders,
        {{3, 0, 1, 1, 1000, 5}, {3, 1, 1, 1, 990, 5}, {4, 3, 1, 2, 995, 10}, {1, 5, 1, 1, 1010, 5}},
        pass + " cu orders");
    const TradeRecord agTrade{1, 2, 0, 2, 0, 2, 100, 108, 14, 14, 160, 132, 1.32};
    const TradeRecord cuFirst{3, 4, 0, 3, 1, 1, 1000, 995, 5, 5.995, 25, 14.005, 0.002801};
    const TradeRecord cuSecond{3, 4, 1, 3, 1, 1, 990, 995, 5, 5.995, -25, -35.995, -35.995 / 4950};
    ExpectTrades(data.Ledgers[0].Trades, {agTrade}, pass + " ag trades");
    ExpectTrades(data.Ledgers[1].Trades, {cuFirst, cuSecond}, pass + " cu trades");
    ExpectTrades(account.Trades, {agTrade, cuFirst, cuSecond}, pass + " portfolio trades");
    ExpectEntries(data.Ledgers[0].OpenEntries, {{3, 4, 0, 1, 98, 7}}, pass + " ag open entries");
    ExpectEntries(data.Ledgers[1].OpenEntries, {{1, 5, 1, 1, 1010, 5}}, pass + " cu open entries");

    // ag: MaxContracts is the short 1 after the b4 entry; the largest held is +2 (b0).
    // Open extremes on b5: entry of b4 at High = Low = 100 -> 10 x (98 - 100) = -20 at both:
    //   best max(0, -20) = 0, worst min(0, -20) = -20.
    // One trade of 2 lots winning 132, held 2 bars -> 2 wins, 2 x 2 = 4 bars, runs of 2.
    ExpectLedgerStats(data.Ledgers[0].Stats,
                      {.MaxContractsRecord = -1,
                       .MaxContractsHeldRecord = 2,
                       .MaxEntriesRecord = 1,
                       .BestOpenProfit = 0,
                       .WorstOpenProfit = -20,
                       .NumWin = 2,
                       .TotalBarsWin = 4,
                       .LargestWin = 132,
                       .GrossProfit = 132,
                       .MaxConsecWin = 2,
                       .WinRun = 2},
                      pass + " ag statistics");
    // cu: held -1 then -2 (largest), +1 after the b5 entry; the long of b5 is valued at the
    // Close only -> extremes 0. Win 14.005 held 3 bars, loss -35.995 held 3 - 1 = 2 bars.
    ExpectLedgerStats(data.Ledgers[1].Stats,
                      {.MaxContractsRecord = 1,
                       .MaxContractsHeldRecord = -2,
                       .MaxEntriesRecord = 2,
                       .NumWin = 1,
                       .NumLos = 1,
                       .TotalBarsWin = 3,
                       .TotalBarsLos = 2,
                       .LargestWin = 14.005,
                       .LargestLos = -35.995,
                       .GrossProfit = 14.005,
                       .GrossLoss = -35.995,
                       .MaxConsecWin = 1,
                       .MaxConsecLos = 1,
                       .LosRun = 1},
                      pass + " cu statistics");

    // The same through the system functions.
    data.CurrentData = 0;
    EXPECT_EQ(funcs.MarketPosition(), -1) << pass;
    EXPECT_NEAR(funcs.CurrentContracts(), -1, kTolerance) << pass;
    EXPECT_EQ(funcs.TotalTrades(), 2) << pass;
    EXPECT_NEAR(funcs.NetProfit(), 132, kTolerance) << pass;
    EXPECT_EQ(funcs.AvgBarsWinTrade(), 2) << pass;  // 4 / 2
    // At Low (short) = 100: 10 x (98 - 100) = -20 -> max(0, -20) = 0; at High: min(-20, -20).
    EXPECT_NEAR(funcs.MaxPositionProfit(), 0, kTolerance) << pass;
    EXPECT_NEAR(funcs.MaxPositionLoss(), -20, kTolerance) << pass;
    data.CurrentData = 1;
    EXPECT_EQ(funcs.MarketPosition(), 1) << pass;
    EXPECT_EQ(funcs.TotalTrades(), 2) << pass;
    EXPECT_NEAR(funcs.NetProfit(), 14.005 - 35.995, kTolerance) << pass;  // -21.99
    EXPECT_NEAR(funcs.PercentProfit(), 0.5, kTolerance) << pass;
    data.CurrentData = 0;

    // Portfolio: trades booked in closing order ag (2 lots, +132), cu (+14.005), cu (-35.995):
    //   wins 2 + 1 = 3, losses 1; win run 2 then 3; loss run 1.
    //   Net = 132 + 14.005 - 35.995 = 110.01 = Capital 100110.01 - 100000.
    EXPECT_NEAR(funcs.Portfolio_NetProfit(), 110.01, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_GrossProfit(), 146.005, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_GrossLoss(), -35.995, kTolerance) << pass;
    EXPECT_EQ(funcs.Portfolio_TotalTrades(), 4) << pass;
    EXPECT_EQ(funcs.Portfolio_NumWinTrades(), 3) << pass;
    EXPECT_EQ(funcs.Portfolio_NumLossTrades(), 1) << pass;
    EXPECT_NEAR(funcs.Portfolio_PercentProfit(), 0.0, kTolerance) << pass;  // 3 / 4 in integers
    EXPECT_EQ(funcs.Portfolio_CurrentEntries(), 2) << pass;
    // At the Close: ag 10 x (98 - 100) = -20, cu 5 x (1010 - 1010) = 0.
    EXPECT_NEAR(funcs.Portfolio_PositionProfit(), -20, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_CurrentEquity(), 100090.01, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_TotalProfit(), 90.01, kTolerance) << pass;
    // At the Open: margins ag 10 x 1 x 100 x 0.1 = 100, cu 5 x 1005 = 5025 -> 5125;
    //   open profit ag 10 x (98 - 100) = -20, cu 5 x (1005 - 1010) = -25;
    //   capital 100110.01 - 5125 - 20 - 25 = 94940.01.
    EXPECT_NEAR(funcs.Portfolio_UsedMargin(), 5125, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_CurrentCapital(), 94940.01, kTolerance) << pass;
    // Live equity 100090.01 equals the trough: the stored figures stand.
    EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -191.99, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 191.99 / 100282, kTolerance) << pass;

    EXPECT_NEAR(account.Capital, 100110.01, kTolerance) << pass;
    // 132 + 0.2801 - 0.727171... (returns x 100).
    EXPECT_NEAR(account.CumReturn, 132 + 0.2801 - 3599.5 / 4950, kTolerance) << pass;
    EXPECT_EQ(account.FinalPosition, -1) << pass;  // ag, the main series
    EXPECT_NEAR(account.Stats.Peak, 100282, kTolerance) << pass;
    EXPECT_NEAR(account.Stats.Trough, 100090.01, kTolerance) << pass;
    EXPECT_NEAR(account.Stats.MaxDrawDown, -191.99, kTolerance) << pass;
    EXPECT_NEAR(account.Stats.MaxDrawDownRatio, 191.99 / 100282, kTolerance) << pass;
    ExpectPortfolioStats(account.Stats,
                         {.EpisodeDrawDowns = {},
                          .NumWin = 3,
                          .NumLos = 1,
                          .TotalBarsWin = 4 + 3,
                          .TotalBarsLos = 2,
                          .LargestWin = 132,
                          .LargestLos = -35.995,
                          .GrossProfit = 146.005,
                          .GrossProfitLong = 132,
                          .GrossProfitShort = 14.005,
                          .GrossLoss = -35.995,
                          .GrossLossShort = -35.995,
                          .MaxConsecWin = 3,
                          .MaxConsecLos = 1,
                          .LosRun = 1},
                         pass + " portfolio statistics");

    const double cumAfterB3 = 132 + 0.2801 - 3599.5 / 4950;  // 131.5529...
    auto t = [this](int bar) { return times_[bar]; };
    ExpectEquityCurve(account.EquityCurve,
                      {
                          {0, t(0), 200, 5000, 2, 1, 94800, 100000, 0, 0, 19, 100000},
                          {1, t(1), 210, 9900, 2, 2, 90040, 100150, 101, 101, 5, 100000},
                          {2, t(2), 0, 9800, 0, 2, 90482, 100282, 132 + 2 + 5000.0 / 4950,
                           2 + 5000.0 / 4950, 14, 100132},
                          {3, t(3), 0, 0, 0, 0, 100110.01, 100110.01, cumAfterB3, 0, 10, 100110.01},
                          {4, t(4), 0, 98, 0, 1, 100012.01, 100110.01, cumAfterB3, 0, 7, 100110.01},
                          {5, t(5), 5050, 100, 1, 1, 94940.01, 100090.01, cumAfterB3 - 2000.0 / 98,
                           -2000.0 / 98, 5, 100110.01},
                      },
                      pass + " equity");
  }

  ScopedPlatform platform_{LateClock()};
  FakeAdapter adapter_;
  ScopedAdapter scopedAdapter_{&adapter_};
  TestHost host_;
  std::vector<int64_t> times_;
};

TEST_F(TwoSeriesScenario, PortfolioEquityAndDrawdownOverBothSeries) {
  CSystemFuncs funcs(&host_.data);
  RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  ExpectFinalState(funcs, "one pass");
}

TEST_F(TwoSeriesScenario, LastBarEvaluatedAgainMatchesOnePass) {
  {
    CSystemFuncs funcs(&host_.data);
    RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  }
  // A new instance on the last bar rolls back to the start of bar 5: cu's b5 entry and order
  // are gone, both ledgers start from the copies taken on bar 4.
  host_.At(0, 5);
  CSystemFuncs again(&host_.data);
  ExpectEntries(host_.data.Ledgers[1].OpenEntries, {}, "rolled back cu open entries");
  EXPECT_EQ(host_.data.Ledgers[1].Orders.size(), 3u);
  EXPECT_NEAR(host_.data.Ledgers[1].Stats.MaxContractsRecord, 0, kTolerance);  // b3 exit
  ExpectEntries(host_.data.Ledgers[0].OpenEntries, {{3, 4, 0, 1, 98, 7}},
                "rolled back ag open entries");
  RunBars(host_, again, 5, 5, [&](int32_t bar) { Formula(again, bar); });
  ExpectFinalState(again, "second pass");
}

// =============================================================================================
// Scenario 2: last-in-first-out exits that split entries, with the same-day exit waiver and the
// end-of-run close.
//
// Series "rb": MinMove 5 x PriceScale 0.1 -> tick 0.5; ContractUnit 10 x BigPointValue 1 ->
//   LotValue 10; margin kind 4, MarginRate 0.1 -> margin(1 @p) = p.
//   Commission 1 tick per lot (kind 1): tick 0.5 x 1 x lots x LotValue 10 = 5 per lot.
//   Slippage 1 tick per lot (kind 1): lots x 1 x LotValue 10 x tick 0.5 = 5 per lot.
//   Entry cost 10 per lot; exit cost 10 per lot, or 5 per lot when the exit is on the entry's
//   trading day (SameDayExitFree).
// InitCapital 50000, MaxOpenEntries 5, MaxPositionLots 20, LifoExits, OutputMode 1 (the last bar
// closes what is open at its Close, origin flag 512).
//
// Bars and trading days (local time + 7 h; Saturday and Sunday roll to Monday):
//   bar  time               trading day   O/H/L/C             formula
//   0    Thu 03-07 14:00    Thu 03-07     100/101/ 99/100     Buy(1,0)   E1 1 @100
//   1    Thu 03-07 21:00    Fri 03-08     100/104/100/103     Buy(3,0)   E2 3 @103
//   2    Fri 03-08 10:00    Fri 03-08     103/108/102/107     Sell(2,0)
//   3    Fri 03-08 21:30    Mon 03-11     107/107/101/102     Buy(2,0)   E3 2 @102
//   4    Mon 03-11 09:30    Mon 03-11     102/103/ 97/ 98     Sell(3,0)
//   5    Mon 03-11 14:30    Mon 03-11      98/100/ 96/ 99     Buy(2,0)   E4 2 @99
//   6    Tue 03-12 10:00    Tue 03-12      99/106/ 99/105     (end-of-run close)
//
// Exits:
//   b2 Sell 2 @107, newest first: E2 (3 lots) splits: trade 2 lots, E2 keeps 1 lot and cost
//      30 x 1/3 = 10. Trade: entry cost 30 x 2/3 = 20; b1 and b2 share Fri 03-08 -> exit cost
//      slippage only 2 x 5 = 10; gross 10 x (107 - 103) x 2 = 80; net 80 - 20 - 10 = 50;
//      return 50 / 103. Order cost 10. Capital 50050.
//   b4 Sell 3 @98, newest first: E3 (2 lots) whole, then 1 lot of E2 (1 lot) whole; E1 stays.
//      E3: entry cost 20; b3 (Sat -> Mon 03-11) and b4 share Mon 03-11 -> exit cost 2 x 5 = 10;
//        gross 10 x (98 - 102) x 2 = -80; net -80 - 20 - 10 = -110; return -110 / 102.
//      E2: entry cost 10 (the prorated remainder); Fri vs Mon -> exit cost 5 + 5 = 10;
//        gross 10 x (98 - 103) = -50; net -50 - 10 - 10 = -70; return -70 / 103.
//      Order cost 10 + 10 = 20. Capital 50050 - 110 - 70 = 49870.
//   b6 end-of-run Sell 3 @105 (kind 2 | 512 = 514), newest first: E4 (2 lots), then E1.
//      E4: entry cost 20; Mon vs Tue -> exit cost 2 x 10 = 20; gross 10 x 6 x 2 = 120;
//        net 120 - 20 - 20 = 80; return 80 / 99.
//      E1: entry cost 10; exit cost 10; gross 10 x 5 = 50; net 30; return 30 / 100 = 0.3.
//      Order cost 20 + 10 = 30. Capital 49870 + 110 = 49980.
// Booking, lot-weighted, in closing order (v = net; bars = (exit - entry bar) x lots):
//   +50 x2 (2 bars), -110 x2 (2 bars), -70 x1 (3 bars), +80 x2 (2 bars), +30 x1 (6 bars):
//   wins 2 + 2 + 1 = 5 (bars 2 + 2 + 6 = 10), losses 2 + 1 = 3 (bars 2 + 3 = 5);
//   win runs 2, then 2 + 1 = 3; loss run 2 + 1 = 3.
//   Gross profit 50 + 80 + 30 = 160, gross loss -110 - 70 = -180, net -20.
//
// Checkout (margin per lot at the Close = Close; returns per entry = profit x 100 / entry price):
//   b0: E1 of this bar: 0. Equity 50000; margin 100; available 49900; bar cost 10.
//   b1: E1 10 x 3 = 30; E2 of this bar 0. Equity 50030; margin 103 x 4 = 412; available 49618;
//       OpenReturn 30 x 100 / 100 = 30; bar cost 30. New peak 50030.
//   b2: E1 10 x 7 = 70; E2 (1 lot) 10 x 4 = 40. Equity 50050 + 110 = 50160; margin 107 x 2 =
//       214; available 49946; OpenReturn 70 + 4000 / 103; CumReturn 5000 / 103; bar cost 10.
//       New peak 50160.
//   b3: E1 20, E2 -10, E3 of this bar 0. Equity 50060; margin 102 x 4 = 408; available 49652;
//       OpenReturn 20 - 1000 / 103; bar cost 20. Drawdown 50160 - 50060 = 100.
//   b4: E1 -20. Equity 49850; margin 98; available 49752; OpenReturn -20; CumReturn
//       5000 / 103 - 11000 / 102 - 7000 / 103; bar cost 20. Drawdown 50160 - 49850 = 310.
//   b5: E1 -10, E4 of this bar 0. Equity 49860; margin 99 x 3 = 297; available 49563;
//       OpenReturn -10; bar cost 20. Between trough and peak: no change.
//   b6: flat after the close. Equity 49980; bar cost 30; CumReturn + 8000 / 99 + 30.
//       Between trough and peak: max drawdown stays -310, ratio 310 / 50160.

class LifoScenario : public ::testing::Test {
 protected:
  void SetUp() override {
    adapter_.properties["rb"] = Contract(5, 0.1f, 10, 1.0f, 4);
    times_ = {ShanghaiInstant(2024, 3, 7, 14),     ShanghaiInstant(2024, 3, 7, 21),
              ShanghaiInstant(2024, 3, 8, 10),     ShanghaiInstant(2024, 3, 8, 21, 30),
              ShanghaiInstant(2024, 3, 11, 9, 30), ShanghaiInstant(2024, 3, 11, 14, 30),
              ShanghaiInstant(2024, 3, 12, 10)};
    host_.AddSource("rb", Series(times_, {{100, 101, 99, 100},
                                          {100, 104, 100, 103},
                                          {103, 108, 102, 107},
                                          {107, 107, 101, 102},
                                          {102, 103, 97, 98},
                                          {98, 100, 96, 99},
                                          {99, 106, 99, 105}}));
    CQXBaseData& data = host_.data;
    data.InitCapital = 50000;
    data.DefaultLotsMode = 0;
    data.DefaultLotsValue = 1;
    data.MaxOpenEntries = 5;
    data.MaxPositionLots = 20;
    data.LifoExits = true;
    data.OutputMode = 1;
    data.CostSettings[0] = CostSetting{.MarginRate = 0.1,
                                       .CommissionKind = 1,
                                       .CommissionRate = 1,
                                       .NoEntryCommission = false,
                                       .SameDayExitFree = true,
                                       .SlippageKind = 1,
                                       .Slippage = 1};
  }

  void Formula(CSystemFuncs& funcs, int32_t bar) {
    const std::vector<EntryLot>& open = host_.data.Ledgers[0].OpenEntries;
    switch (bar) {
      case 0:
        EXPECT_TRUE(funcs.Buy(1, 0));
        break;
      case 1:
        EXPECT_TRUE(funcs.Buy(3, 0));
        EXPECT_NEAR(funcs.AvgEntryPrice(), (100 + 3 * 103) / 4.0, kTolerance);  // 102.25
        EXPECT_NEAR(funcs.MaxContracts(), 4, kTolerance);
        break;
      case 2:
        EXPECT_TRUE(funcs.Sell(2, 0));
        // E2 keeps 1 of its 3 lots and a third of its cost 30.
        ExpectEntries(open, {{1, 0, 0, 1, 100, 10}, {1, 1, 0, 1, 103, 10}}, "after b2");
        EXPECT_NEAR(funcs.CurrentContracts(), 2, kTolerance);
        EXPECT_NEAR(funcs.MaxContracts(), 0, kTolerance);  // reset by the partial exit
        EXPECT_NEAR(funcs.AvgEntryPrice(), 101.5, kTolerance);
        EXPECT_EQ(funcs.ExitDate(), 0);  // still in a position
        break;
      case 3:
        EXPECT_TRUE(funcs.Buy(2, 0));
        EXPECT_EQ(funcs.MaxEntries(), 3);
        break;
      case 4:
        EXPECT_TRUE(funcs.Sell(3, 0));
        ExpectEntries(open, {{1, 0, 0, 1, 100, 10}}, "after b4");
        EXPECT_NEAR(funcs.EntryPrice(), 100, kTolerance);
        EXPECT_NEAR(funcs.MaxContractsHeld(), 4, kTolerance);
        break;
      case 5:
        EXPECT_TRUE(funcs.Buy(2, 0));
        break;
      case 6:
        break;
    }
  }

  // The ledger and the portfolio trade list after the last bar.
  void ExpectFinalLedger(const std::string& pass) {
    CQXBaseData& data = host_.data;
    ExpectEntries(data.Ledgers[0].Orders,
                  {{1, 0, 0, 1, 100, 10},
                   {1, 1, 0, 3, 103, 30},
                   {2, 2, 0, 2, 107, 10},
                   {1, 3, 0, 2, 102, 20},
                   {2, 4, 0, 3, 98, 20},
                   {1, 5, 0, 2, 99, 20},
                   {514, 6, 0, 3, 105, 30}},
                  pass + " orders");
    const std::vector<TradeRecord> trades = {
        {1, 2, 1, 2, 0, 2, 103, 107, 20, 10, 80, 50, 50.0 / 103},
        {1, 2, 3, 4, 0, 2, 102, 98, 20, 10, -80, -110, -110.0 / 102},
        {1, 2, 1, 4, 0, 1, 103, 98, 10, 10, -50, -70, -70.0 / 103},
        {1, 514, 5, 6, 0, 2, 99, 105, 20, 20, 120, 80, 80.0 / 99},
        {1, 514, 0, 6, 0, 1, 100, 105, 10, 10, 50, 30, 0.3},
    };
    ExpectTrades(data.Ledgers[0].Trades, trades, pass + " trades");
    ExpectTrades(data.Account->Trades, trades, pass + " portfolio trades");
    ExpectEntries(data.Ledgers[0].OpenEntries, {}, pass + " open entries");
    // Held 4 at most (after b1, again after b3); 3 entries after b3; MaxContracts 0 after the
    // close; the extremes are 0 after an exit on a flat series.
    ExpectLedgerStats(data.Ledgers[0].Stats,
                      {.MaxContractsRecord = 0,
                       .MaxContractsHeldRecord = 4,
                       .MaxEntriesRecord = 3,
                       .NumWin = 5,
                       .NumLos = 3,
                       .TotalBarsWin = 10,
                       .TotalBarsLos = 5,
                       .LargestWin = 80,
                       .LargestLos = -110,
                       .GrossProfit = 160,
                       .GrossLoss = -180,
                       .MaxConsecWin = 3,
                       .MaxConsecLos = 3,
                       .WinRun = 3},
                      pass + " statistics");
  }

  const double cumB2_ = 5000.0 / 103;                                 // 48.54...
  const double cumB4_ = 5000.0 / 103 - 11000.0 / 102 - 7000.0 / 103;  // -127.26...

  std::vector<EquityPoint> ExpectedCurveBeforeLastBar() const {
    auto t = [this](int bar) { return times_[bar]; };
    return {
        {0, t(0), 100, 0, 1, 0, 49900, 50000, 0, 0, 10, 50000},
        {1, t(1), 412, 0, 4, 0, 49618, 50030, 30, 30, 30, 50000},
        {2, t(2), 214, 0, 2, 0, 49946, 50160, cumB2_ + 70 + 4000.0 / 103, 70 + 4000.0 / 103, 10,
         50050},
        {3, t(3), 408, 0, 4, 0, 49652, 50060, cumB2_ + 20 - 1000.0 / 103, 20 - 1000.0 / 103, 20,
         50050},
        {4, t(4), 98, 0, 1, 0, 49752, 49850, cumB4_ - 20, -20, 20, 49870},
        {5, t(5), 297, 0, 3, 0, 49563, 49860, cumB4_ - 10, -10, 20, 49870},
    };
  }

  ScopedPlatform platform_{LateClock()};
  FakeAdapter adapter_;
  ScopedAdapter scopedAdapter_{&adapter_};
  TestHost host_;
  std::vector<int64_t> times_;
};

TEST_F(LifoScenario, PartialExitsSplitTheNewestEntriesAndProrateTheirCosts) {
  CSystemFuncs funcs(&host_.data);
  RunBars(host_, funcs, 0, 6, [&](int32_t bar) { Formula(funcs, bar); });
  ExpectFinalLedger("one pass");

  host_.At(0, 6);
  EXPECT_EQ(funcs.MarketPosition(), 0);
  EXPECT_EQ(funcs.NumWinTrades(), 5);
  EXPECT_EQ(funcs.NumLosTrades(), 3);
  EXPECT_EQ(funcs.TotalTrades(), 8);
  EXPECT_NEAR(funcs.PercentProfit(), 5.0 / 8, kTolerance);
  EXPECT_NEAR(funcs.NetProfit(), -20, kTolerance);  // 160 - 180
  EXPECT_EQ(funcs.AvgBarsWinTrade(), 2);            // 10 / 5
  EXPECT_EQ(funcs.AvgBarsLosTrade(), 1);            // 5 / 3 in integers
  EXPECT_EQ(funcs.MaxConsecWinners(), 3);
  EXPECT_EQ(funcs.MaxConsecLosers(), 3);
  EXPECT_NEAR(funcs.ExitPrice(), 105, kTolerance);
  EXPECT_EQ(funcs.BarsSinceExit(), 0);

  EXPECT_NEAR(funcs.Portfolio_NetProfit(), -20, kTolerance);
  EXPECT_EQ(funcs.Portfolio_TotalTrades(), 8);
  EXPECT_NEAR(funcs.Portfolio_PercentProfit(), 0.0, kTolerance);  // 5 / 8 in integers
  EXPECT_NEAR(funcs.Portfolio_CurrentEquity(), 49980, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -310, kTolerance);
  EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 310.0 / 50160, kTolerance);

  const StrategyAccount& account = *host_.data.Account;
  EXPECT_NEAR(account.Capital, 49980, kTolerance);  // 50000 - 20
  EXPECT_NEAR(account.CumReturn, cumB4_ + 8000.0 / 99 + 30, kTolerance);
  EXPECT_EQ(account.FinalPosition, 1);  // recorded before the close
  EXPECT_NEAR(account.Stats.Peak, 50160, kTolerance);
  EXPECT_NEAR(account.Stats.Trough, 49850, kTolerance);
  EXPECT_NEAR(account.Stats.MaxDrawDown, -310, kTolerance);
  EXPECT_NEAR(account.Stats.MaxDrawDownRatio, 310.0 / 50160, kTolerance);
  ExpectPortfolioStats(account.Stats,
                       {.EpisodeDrawDowns = {},
                        .NumWin = 5,
                        .NumLos = 3,
                        .TotalBarsWin = 10,
                        .TotalBarsLos = 5,
                        .LargestWin = 80,
                        .LargestLos = -110,
                        .GrossProfit = 160,
                        .GrossProfitLong = 160,
                        .GrossLoss = -180,
                        .GrossLossLong = -180,
                        .MaxConsecWin = 3,
                        .MaxConsecLos = 3,
                        .WinRun = 3},
                       "portfolio statistics");

  std::vector<EquityPoint> curve = ExpectedCurveBeforeLastBar();
  curve.push_back(
      {6, times_[6], 0, 0, 0, 0, 49980, 49980, cumB4_ + 8000.0 / 99 + 30, 0, 30, 49980});
  ExpectEquityCurve(account.EquityCurve, curve, "equity");
}

TEST_F(LifoScenario, LastBarEvaluatedAgainRebuildsTheLedgerFromTheBarFiveCopies) {
  {
    CSystemFuncs funcs(&host_.data);
    RunBars(host_, funcs, 0, 6, [&](int32_t bar) { Formula(funcs, bar); });
  }
  host_.At(0, 6);
  CSystemFuncs again(&host_.data);
  // Rolled back to the start of bar 6: the close's order and its two trades are gone, the
  // position is E1 and E4 again, and the statistics are those saved on bar 5:
  //   after b4: wins 2 (2 bars), losses 3 (5 bars), win run 0, loss run 3; b4's exit reset the
  //   extremes, then b4's checkout: E1 at High 103 -> +30, at Low 97 -> -30;
  //   b5: E1 at High 100 -> 0 (+ E4 of this bar 0), at Low 96 -> -40: best 30, worst -40;
  //   MaxContracts 1 + 2 = 3 after the b5 entry.
  ExpectEntries(host_.data.Ledgers[0].OpenEntries, {{1, 0, 0, 1, 100, 10}, {1, 5, 0, 2, 99, 20}},
                "rolled back open entries");
  EXPECT_EQ(host_.data.Ledgers[0].Orders.size(), 6u);
  EXPECT_EQ(host_.data.Ledgers[0].Trades.size(), 3u);
  EXPECT_EQ(host_.data.Account->Trades.size(), 3u);
  ExpectLedgerStats(host_.data.Ledgers[0].Stats,
                    {.MaxContractsRecord = 3,
                     .MaxContractsHeldRecord = 4,
                     .MaxEntriesRecord = 3,
                     .BestOpenProfit = 30,
                     .WorstOpenProfit = -40,
                     .NumWin = 2,
                     .NumLos = 3,
                     .TotalBarsWin = 2,
                     .TotalBarsLos = 5,
                     .LargestWin = 50,
                     .LargestLos = -110,
                     .GrossProfit = 50,
                     .GrossLoss = -180,
                     .MaxConsecWin = 2,
                     .MaxConsecLos = 3,
                     .LosRun = 3},
                    "rolled back statistics");

  RunBars(host_, again, 6, 6, [&](int32_t bar) { Formula(again, bar); });
  ExpectFinalLedger("second pass");
  const StrategyAccount& account = *host_.data.Account;
  EXPECT_EQ(account.FinalPosition, 1);
  // The bars before the last keep their points; the last bar's point is replaced, not added.
  ASSERT_EQ(account.EquityCurve.size(), 7u);
  const std::vector<EquityPoint> before = ExpectedCurveBeforeLastBar();
  for (size_t i = 0; i < before.size(); ++i) {
    ExpectEquityPoint(account.EquityCurve[i], before[i], "second pass bar " + std::to_string(i));
  }
  EXPECT_EQ(account.EquityCurve[6].Bar, 6);
  EXPECT_EQ(account.EquityCurve[6].Time, times_[6]);
  EXPECT_NEAR(account.EquityCurve[6].LongLots, 0, kTolerance);
  EXPECT_NEAR(account.EquityCurve[6].LongMargin, 0, kTolerance);
}

// =============================================================================================
// Scenario 3: statistics and drawdown in percent (PercentMode), with a reversal.
//
// Series "IF": tick 1; ContractUnit 1 x BigPointValue 300 -> LotValue 300; margin kind 4,
// MarginRate 0.1 -> margin(1 @p) = 30 p. Commission by turnover 0.5/10000 -> 300 x lots x p x
// 0.5 / 10000 = 0.015 x lots x p; slippage 20 money per lot.
// InitCapital 1000000, MaxOpenEntries 1, MaxPositionLots 5, OutputMode 0.
//
// Bars (one a day at 15:00 from Monday 2024-03-04):
//   bar  O/H/L/C                 formula
//   0    4000/4010/3990/4000     SellShort(2,0)  E1 -2 @4000
//   1    4000/4005/3950/3960     -
//   2    3960/3980/3940/3950     Buy(1,0): covers E1 @3950, then E2 +1 @3950
//   3    3950/3990/3945/3980     -
//   4    3980/3985/3900/3920     Sell(0,0) @3920
//   5    3920/3940/3910/3930     SellShort(1,0)  E3 -1 @3930 (last bar)
//
// Orders and trades:
//   b0 E1 cost = 2 x 20 + 0.015 x 2 x 4000 = 40 + 120 = 160.
//   b2 cover 2 @3950: exit cost 40 + 0.015 x 2 x 3950 = 40 + 118.5 = 158.5;
//      gross 300 x (4000 - 3950) x 2 = 30000; net 30000 - 160 - 158.5 = 29681.5;
//      return 29681.5 / margin(1 @4000 = 120000); booked as v = return x 100 = 24.7345833...
//      Order cost (entry-cost rule on 2 @3950) = 158.5.
//   b2 E2 cost = 20 + 0.015 x 3950 = 79.25. Bar cost 158.5 + 79.25 = 237.75.
//   b4 exit 1 @3920: exit cost 20 + 0.015 x 3920 = 78.8; gross 300 x (3920 - 3950) = -9000;
//      net -9000 - 79.25 - 78.8 = -9158.05; return -9158.05 / margin(1 @3950 = 118500);
//      v = -7.7283122...
//   b5 E3 cost = 20 + 0.015 x 3930 = 78.95.
// Capital 1000000 + 29681.5 - 9158.05 = 1020523.45 (money, as always).
// Statistics in percent: wins 2 lots (bars 2 x 2 = 4), loss 1 lot (bars 4 - 2 = 2);
//   net 24.7345833 - 7.7283122 = 17.0062711.
//
// Checkout; the drawdown basis is PercentEquity and starts from Peak = Trough = 0:
//   b0: E1 of this bar: 0. Short margin 4000 x 300 x 2 x 0.1 = 240000; PercentEquity 0.
//   b1: E1 300 x 40 x 2 = 24000 -> Equity 1024000; OpenReturn 24000 x 100 / 120000 = 20;
//       short margin 3960 x 60 = 237600. New peak 20.
//   b2: E2 of this bar: 0. Equity = Capital 1029681.5; long margin 3950 x 30 = 118500;
//       PercentEquity 24.7345833. New peak.
//   b3: E2 300 x 30 = 9000 -> Equity 1038681.5; OpenReturn 900000 / 118500 = 7.5949367;
//       PercentEquity 32.3295200. Long margin 3980 x 30 = 119400. New peak.
//   b4: flat. PercentEquity = CumReturn 17.0062711, below the trough: drawdown
//       32.3295200 - 17.0062711 = 15.3232489; MaxDrawDownRatio is not updated in this mode.
//   b5: E3 of this bar: 0. Short margin 3930 x 30 = 117900. PercentEquity equals the trough.

class PercentScenario : public ::testing::Test {
 protected:
  void SetUp() override {
    adapter_.properties["IF"] = Contract(1, 1.0f, 1, 300.0f, 4);
    for (int day : {4, 5, 6, 7, 8, 11}) times_.push_back(ShanghaiInstant(2024, 3, day, 15));
    host_.AddSource("IF", Series(times_, {{4000, 4010, 3990, 4000},
                                          {4000, 4005, 3950, 3960},
                                          {3960, 3980, 3940, 3950},
                                          {3950, 3990, 3945, 3980},
                                          {3980, 3985, 3900, 3920},
                                          {3920, 3940, 3910, 3930}}));
    CQXBaseData& data = host_.data;
    data.InitCapital = 1000000;
    data.DefaultLotsMode = 0;
    data.DefaultLotsValue = 1;
    data.MaxOpenEntries = 1;
    data.MaxPositionLots = 5;
    data.PercentMode = true;
    data.OutputMode = 0;
    data.CostSettings[0] = CostSetting{.MarginRate = 0.1,
                                       .CommissionKind = 2,
                                       .CommissionRate = 0.5,
                                       .NoEntryCommission = false,
                                       .SameDayExitFree = false,
                                       .SlippageKind = 0,
                                       .Slippage = 20};
  }

  void Formula(CSystemFuncs& funcs, int32_t bar) {
    switch (bar) {
      case 0:
        EXPECT_TRUE(funcs.SellShort(2, 0));
        break;
      case 2:
        EXPECT_TRUE(funcs.Buy(1, 0));
        EXPECT_EQ(funcs.MarketPosition(), 1);
        EXPECT_NEAR(funcs.CurrentContracts(), 1, kTolerance);
        break;
      case 4:
        EXPECT_TRUE(funcs.Sell(0, 0));
        // Before the checkout: the stored drawdown is 0 and the live adjustment compares the
        // percent trough 32.33 with the money equity 1020523.45, so it does not apply.
        EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), 0, kTolerance);
        EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), 0, kTolerance);
        break;
      case 5:
        EXPECT_TRUE(funcs.SellShort(1, 0));
        break;
      default:
        break;
    }
  }

  void ExpectFinalState(CSystemFuncs& funcs, const std::string& pass) {
    CQXBaseData& data = host_.data;
    const StrategyAccount& account = *data.Account;
    const double win = 29681.5 / 120000 * 100;    // 24.7345833...
    const double loss = -9158.05 / 118500 * 100;  // -7.7283122...
    const double openB3 = 9000.0 * 100 / 118500;  // 7.5949367...

    ExpectEntries(data.Ledgers[0].Orders,
                  {{3, 0, 0, 2, 4000, 160},
                   {4, 2, 0, 2, 3950, 158.5},
                   {1, 2, 0, 1, 3950, 79.25},
                   {2, 4, 0, 1, 3920, 78.8},
                   {3, 5, 0, 1, 3930, 78.95}},
                  pass + " orders");
    const std::vector<TradeRecord> trades = {
        {3, 4, 0, 2, 0, 2, 4000, 3950, 160, 158.5, 30000, 29681.5, 29681.5 / 120000},
        {1, 2, 2, 4, 0, 1, 3950, 3920, 79.25, 78.8, -9000, -9158.05, -9158.05 / 118500},
    };
    ExpectTrades(data.Ledgers[0].Trades, trades, pass + " trades");
    ExpectTrades(account.Trades, trades, pass + " portfolio trades");
    ExpectEntries(data.Ledgers[0].OpenEntries, {{3, 5, 0, 1, 3930, 78.95}}, pass + " open entries");
    // Held -2 (b0), +1 (b2), -1 (b5): largest -2; MaxContracts -1 after the b5 entry.
    ExpectLedgerStats(data.Ledgers[0].Stats,
                      {.MaxContractsRecord = -1,
                       .MaxContractsHeldRecord = -2,
                       .MaxEntriesRecord = 1,
                       .NumWin = 2,
                       .NumLos = 1,
                       .TotalBarsWin = 4,
                       .TotalBarsLos = 2,
                       .LargestWin = win,
                       .LargestLos = loss,
                       .GrossProfit = win,
                       .GrossLoss = loss,
                       .MaxConsecWin = 2,
                       .MaxConsecLos = 1,
                       .LosRun = 1},
                      pass + " statistics");

    data.CurrentData = 0;
    EXPECT_EQ(funcs.MarketPosition(), -1) << pass;
    EXPECT_EQ(funcs.TotalTrades(), 3) << pass;
    EXPECT_NEAR(funcs.PercentProfit(), 2.0 / 3, kTolerance) << pass;
    EXPECT_NEAR(funcs.NetProfit(), win + loss, kTolerance) << pass;  // 17.0062711 (percent)
    EXPECT_NEAR(funcs.LargestWinTrade(), win, kTolerance) << pass;
    EXPECT_NEAR(funcs.LargestLosTrade(), loss, kTolerance) << pass;

    EXPECT_NEAR(funcs.Portfolio_NetProfit(), win + loss, kTolerance) << pass;
    EXPECT_EQ(funcs.Portfolio_TotalTrades(), 3) << pass;
    EXPECT_EQ(funcs.Portfolio_NumWinTrades(), 2) << pass;
    EXPECT_EQ(funcs.Portfolio_NumLossTrades(), 1) << pass;
    // E3 is valued at its own entry price: no open profit.
    EXPECT_NEAR(funcs.Portfolio_CurrentEquity(), 1020523.45, kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_TotalProfit(), 20523.45, kTolerance) << pass;
    // -(32.3295200 - 17.0062711); the ratio in this mode is that figure / 100.
    EXPECT_NEAR(funcs.Portfolio_MaxDrawDown(), -(win + openB3 - (win + loss)), kTolerance) << pass;
    EXPECT_NEAR(funcs.Portfolio_MaxDrawDownRatio(), -(openB3 - loss) / 100, kTolerance) << pass;

    EXPECT_NEAR(account.Capital, 1020523.45, kTolerance) << pass;
    EXPECT_NEAR(account.CumReturn, win + loss, kTolerance) << pass;
    EXPECT_NEAR(account.Stats.Peak, win + openB3, kTolerance) << pass;  // 32.3295200
    EXPECT_NEAR(account.Stats.Trough, win + loss, kTolerance) << pass;  // 17.0062711
    EXPECT_NEAR(account.Stats.MaxDrawDown, -(openB3 - loss), kTolerance) << pass;
    EXPECT_NEAR(account.Stats.MaxDrawDownRatio, 0, kTolerance) << pass;
    ExpectPortfolioStats(account.Stats,
                         {.EpisodeDrawDowns = {},
                          .NumWin = 2,
                          .NumLos = 1,
                          .TotalBarsWin = 4,
                          .TotalBarsLos = 2,
                          .LargestWin = win,
                          .LargestLos = loss,
                          .GrossProfit = win,
                          .GrossProfitShort = win,
                          .GrossLoss = loss,
                          .GrossLossLong = loss,
                          .MaxConsecWin = 2,
                          .MaxConsecLos = 1,
                          .LosRun = 1},
                         pass + " portfolio statistics");

    auto t = [this](int bar) { return times_[bar]; };
    ExpectEquityCurve(
        account.EquityCurve,
        {
            {0, t(0), 0, 240000, 0, 2, 760000, 1000000, 0, 0, 160, 1000000},
            {1, t(1), 0, 237600, 0, 2, 786400, 1024000, 20, 20, 0, 1000000},
            {2, t(2), 118500, 0, 1, 0, 911181.5, 1029681.5, win, 0, 237.75, 1029681.5},
            {3, t(3), 119400, 0, 1, 0, 919281.5, 1038681.5, win + openB3, openB3, 0, 1029681.5},
            {4, t(4), 0, 0, 0, 0, 1020523.45, 1020523.45, win + loss, 0, 78.8, 1020523.45},
            {5, t(5), 0, 117900, 0, 1, 902623.45, 1020523.45, win + loss, 0, 78.95, 1020523.45},
        },
        pass + " equity");
  }

  ScopedPlatform platform_{LateClock()};
  FakeAdapter adapter_;
  ScopedAdapter scopedAdapter_{&adapter_};
  TestHost host_;
  std::vector<int64_t> times_;
};

TEST_F(PercentScenario, StatisticsAndDrawdownAreBookedInPercent) {
  CSystemFuncs funcs(&host_.data);
  RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  ExpectFinalState(funcs, "one pass");
}

TEST_F(PercentScenario, LastBarEvaluatedAgainMatchesOnePass) {
  {
    CSystemFuncs funcs(&host_.data);
    RunBars(host_, funcs, 0, 5, [&](int32_t bar) { Formula(funcs, bar); });
  }
  host_.At(0, 5);
  CSystemFuncs again(&host_.data);
  // Back to the start of bar 5: flat, four orders, MaxContracts 0 after the b4 exit.
  ExpectEntries(host_.data.Ledgers[0].OpenEntries, {}, "rolled back open entries");
  EXPECT_EQ(host_.data.Ledgers[0].Orders.size(), 4u);
  EXPECT_NEAR(host_.data.Ledgers[0].Stats.MaxContractsRecord, 0, kTolerance);
  RunBars(host_, again, 5, 5, [&](int32_t bar) { Formula(again, bar); });
  ExpectFinalState(again, "second pass");
}

}  // namespace
}  // namespace sysfuncs::testing
