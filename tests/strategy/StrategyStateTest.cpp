#include "strategy/StrategyState.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

TEST(StrategyState, ConstructionAtBarZeroStartsTheRunAndCoversEverySeries) {
  for (const bool percentMode : {false, true}) {
    TestHost host;
    host.AddSource("a", EvenBars(5000, 60000, 4));
    host.AddSource("b", EvenBars(5000, 60000, 4));
    host.data.Ledgers.resize(1);  // a host that gave fewer records than series
    host.data.CostSettings.clear();
    host.data.Ledgers[0].Orders.emplace_back();
    host.data.InitCapital = 5000.0;
    host.data.PercentMode = percentMode;
    host.data.Account = new StrategyAccount();
    StrategyAccount& account = *host.data.Account;
    account.Stats.MaxDrawDown = -5.0;
    account.Trades.emplace_back();
    account.EquityCurve.resize(3);
    host.At(0, 0);
    CSystemFuncs funcs(&host.data);

    const double peak = percentMode ? 0.0 : 5000.0;
    const char* mode = percentMode ? "percent mode" : "money mode";
    EXPECT_EQ(host.data.Ledgers.size(), 2u) << mode;
    EXPECT_EQ(host.data.CostSettings.size(), 2u) << mode;
    EXPECT_TRUE(host.data.Ledgers[0].Orders.empty()) << mode;
    EXPECT_EQ(account.Capital, 5000.0) << mode;
    EXPECT_EQ(account.Stats.Peak, peak) << mode;
    EXPECT_EQ(account.Stats.Trough, peak) << mode;
    EXPECT_EQ(account.Stats.MaxDrawDown, 0.0) << mode;
    EXPECT_TRUE(account.Trades.empty() && account.EquityCurve.empty()) << mode;
    EXPECT_GE(account.EquityCurve.capacity(), 4u) << mode;
    EXPECT_EQ(account.Detail.HighestBasisTime, 5000) << mode;  // the first bar's time
    EXPECT_EQ(account.Detail.LowestBasis, peak) << mode;
    EXPECT_EQ(account.Detail.LowestEquity, 5000.0) << mode;
  }
}

TEST(StrategyState, RollBackRestoresExactlyWhatItLists) {
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 5));
  CQXBaseData& data = host.data;
  data.NumericSeries = {{1, 2, 3, 4}, {1}};
  data.BoolSeries = {{1, 0, 1, 1}};
  data.StringSeries = {{"a", "b", "c", "d"}};
  data.Alerts = {"alert"};
  data.Commentaries = {{"c0"}, {"c1"}, {"c2"}, {"c3"}};
  StrategyLedger& ledger = data.Ledgers[0];
  for (int32_t bar : {1, 2, 3, 3}) ledger.Orders.push_back(EntryLot{kBuy, bar});
  for (int32_t bar : {2, 3}) ledger.Trades.push_back(TradeRecord{kBuy, kSell, 0, bar});
  ledger.SavedOpenEntries = {EntryLot{kSellShort, 1}};
  ledger.Stats.NumWin = 5;
  ledger.SavedStats.NumWin = 2;
  data.Account = new StrategyAccount();
  StrategyAccount& account = *data.Account;
  // In bar order except the last, which the scan passes over and yet removes.
  for (int32_t bar : {2, 3, 4}) account.Trades.push_back(TradeRecord{kBuy, kSell, 0, bar});
  account.Capital = 777.0;
  account.Stats.NumWin = 9;
  account.SavedStats.NumWin = 1;

  host.At(0, 3);
  CSystemFuncs funcs(&host.data);
  EXPECT_EQ(data.NumericSeries[0].size() + data.NumericSeries[1].size(), 4u);  // 3 and 1
  EXPECT_EQ(data.BoolSeries[0].size() + data.StringSeries[0].size(), 6u);
  EXPECT_TRUE(data.Alerts.empty() && data.Commentaries[3].empty());
  EXPECT_EQ(data.Commentaries[2].size(), 1u);
  EXPECT_EQ(ledger.Orders.size(), 2u);
  EXPECT_EQ(ledger.Trades.size(), 1u);
  EXPECT_EQ(ledger.OpenEntries.at(0).Kind, uint32_t{kSellShort});
  EXPECT_EQ(ledger.Stats.NumWin, 2);
  ASSERT_EQ(account.Trades.size(), 2u);
  EXPECT_EQ(account.Trades[1].ExitBar, 3);  // the bar-4 trade went in its place
  // Not part of the roll-back: the account's own statistics block (its saved copy is taken but
  // never put back) and the realised capital.
  EXPECT_EQ(account.Stats.NumWin, 9);
  EXPECT_EQ(account.Capital, 777.0);
}

// The fields an evaluation writes, for comparing two runs.
auto Orders(const std::vector<OrderRecord>& orders) {
  std::vector<std::tuple<uint32_t, int32_t, double, double, double>> keys;
  for (const OrderRecord& o : orders) keys.emplace_back(o.Kind, o.Bar, o.Lots, o.Price, o.Cost);
  return keys;
}
auto Trades(const std::vector<TradeRecord>& trades) {
  std::vector<std::tuple<int32_t, int32_t, double, double>> keys;
  for (const TradeRecord& t : trades) keys.emplace_back(t.EntryBar, t.ExitBar, t.Lots, t.NetProfit);
  return keys;
}
auto Curve(const std::vector<EquityPoint>& curve) {
  std::vector<std::tuple<int32_t, double, double, double, double>> keys;
  for (const EquityPoint& p : curve) {
    keys.emplace_back(p.Bar, p.Equity, p.PercentEquity, p.BarCost, p.LongMargin);
  }
  return keys;
}
auto Statistics(const LedgerStatistics& s) {
  return std::make_tuple(s.MaxContractsRecord, s.MaxContractsHeldRecord, s.MaxEntriesRecord,
                         s.BestOpenProfit, s.WorstOpenProfit, s.NumLos, s.GrossLoss, s.LosRun);
}

TEST(StrategyState, LastBarEvaluatedAgainLeavesTheStateOfOneEvaluation) {
  TestHost host;
  const double closes[] = {100, 103, 99, 104, 101, 106};
  std::vector<QXBar> bars;
  for (int i = 0; i < 6; ++i) {
    const double c = closes[i];
    bars.push_back(MakeBar(ShanghaiInstant(2024, 3, 4, 9, 30 + i), c - 1, c + 2, c - 3, c, 1));
  }
  host.AddSource("s", bars);
  host.data.CostSettings[0] = CostSetting{0.1, 0, 1.5, false, false, 0, 0.5};
  host.data.InitCapital = 10000.0;
  host.data.MaxOpenEntries = 5;
  host.data.MaxPositionLots = 10;
  // Entries, a partial exit, a reversal, a cover, and two entries on the last bar.
  auto formula = [](CSystemFuncs& f, int32_t bar) {
    if (bar == 1) f.Buy(2.0, 0.0);
    if (bar == 2) f.Sell(1.0, 0.0);
    if (bar == 3) f.SellShort(1.0, 0.0);
    if (bar == 4) f.BuyToCover(0.0, 0.0);
    if (bar == 5) {
      f.Buy(1.0, 0.0);
      f.Buy(1.0, 103.0);  // a limit on the last bar: no range check
    }
  };
  host.At(0, 0);
  {
    CSystemFuncs funcs(&host.data);
    for (int32_t bar = 0; bar < 6; ++bar) {
      host.At(0, bar);
      formula(funcs, bar);
      funcs.BarCheckout();
    }
  }
  const StrategyLedger once = host.data.Ledgers[0];
  const std::vector<TradeRecord> accountTrades = host.data.Account->Trades;
  const std::vector<EquityPoint> curve = host.data.Account->EquityCurve;
  ASSERT_EQ(once.OpenEntries.size(), 2u);
  ASSERT_EQ(once.Trades.size(), 3u);
  // Trades net -8, -3 and -1 (costs 2 per lot and side); the two open lots gain 0 and 3.
  EXPECT_EQ(curve.back().Equity, 9991.0);
  EXPECT_EQ(curve.back().BarCost, 4.0);

  host.At(0, 5);
  CSystemFuncs again(&host.data);
  formula(again, 5);
  again.BarCheckout();
  const StrategyLedger& twice = host.data.Ledgers[0];
  EXPECT_EQ(Orders(twice.Orders), Orders(once.Orders));
  EXPECT_EQ(Orders(twice.OpenEntries), Orders(once.OpenEntries));
  EXPECT_EQ(Trades(twice.Trades), Trades(once.Trades));
  EXPECT_EQ(Statistics(twice.Stats), Statistics(once.Stats));
  EXPECT_EQ(Trades(host.data.Account->Trades), Trades(accountTrades));
  EXPECT_EQ(Curve(host.data.Account->EquityCurve), Curve(curve));
  EXPECT_EQ(host.data.Account->BarOrders[5].size(), 2u);
}

}  // namespace
}  // namespace sysfuncs::testing
