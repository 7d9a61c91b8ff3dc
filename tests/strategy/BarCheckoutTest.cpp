#include "sysfuncs/SFImpl.h"

#include "strategy/EquityCurve.h"
#include "strategy/PositionValuation.h"
#include "support/AllocationCounter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <vector>

namespace sysfuncs::testing {
namespace {

TEST(BarCheckout, EntriesOfTheCurrentBarAreValuedAtTheCloseOnly) {
  // Lot value 10, margin rate 0.1; bar 1 has High 110, Low 95, Close 104.
  const QXBar bar = MakeBar(0, 100, 110, 95, 104);
  const std::vector<EntryLot> entries = {EntryLot{kBuy, 0, 0, 2.0, 100.0, 0.0},
                                         EntryLot{kSellShort, 1, 0, 1.0, 105.0, 0.0}};
  const ContractTerms terms{4, 1.0, 10.0, 1.0};
  const PositionValue value = ValuePosition(entries, bar, 1, false, terms, CostSetting{0.1});
  EXPECT_EQ(value.OpenProfit, 90.0);          // (104 - 100) x 20 + (105 - 104) x 10
  EXPECT_EQ(value.BestProfit, 210.0);         // (110 - 100) x 20 + 10 at the Close
  EXPECT_EQ(value.WorstProfit, -90.0);        // (95 - 100) x 20 + 10
  EXPECT_DOUBLE_EQ(value.LongMargin, 208.0);  // 104 x 10 x 2 x 0.1
  EXPECT_DOUBLE_EQ(value.ShortMargin, 104.0);
  // Returns on a lot's margin at the entry price, in percent: 80 / 100 and 10 / 105.
  EXPECT_DOUBLE_EQ(value.OpenReturn, 80.0 + 1000.0 / 105.0);
  EXPECT_EQ(ValuePosition(entries, bar, 1, true, terms, CostSetting{0.1}).BestProfit, 90.0);

  LedgerStatistics stats;
  UpdateOpenExtremes(stats, value);
  UpdateOpenExtremes(stats, PositionValue{});  // flat: towards 0, never past a record
  EXPECT_EQ(stats.BestOpenProfit, 210.0);
  EXPECT_EQ(stats.WorstOpenProfit, -90.0);
}

TEST(BarCheckout, DrawdownEpisodesOpenBelowTheTroughAndCloseAboveThePeak) {
  struct Step {
    double basis, peak, trough, maxDrawDown, ratio, episode;
    size_t episodes;
  } steps[] = {
      {1000, 1000, 1000, 0, 0, 0, 0},        // equal to the peak: nothing
      {900, 1000, 900, -100, 0.1, -100, 0},  // a new trough opens an episode
      {950, 1000, 900, -100, 0.1, -100, 0},  //
      {900, 1000, 900, -100, 0.1, -100, 0},  // equal to the trough: nothing
      {1100, 1100, 1100, -100, 0.1, 0, 1},   // a new peak closes it
      {1100, 1100, 1100, -100, 0.1, 0, 1},   // equal: no empty episode
      {880, 1100, 880, -220, 0.2, -220, 1},  // 220 against the episode's peak 1100
  };
  for (const bool percentMode : {false, true}) {
    AccountStatistics stats;
    stats.Peak = stats.Trough = 1000.0;
    ReportDetail detail;
    int64_t time = 0;
    for (const Step& step : steps) {
      UpdateDrawDown(stats, step.basis, ++time, percentMode, &detail);
      const std::string row = std::to_string(time) + (percentMode ? " percent" : "");
      EXPECT_EQ(stats.Peak, step.peak) << row;
      EXPECT_EQ(stats.Trough, step.trough) << row;
      EXPECT_EQ(stats.MaxDrawDown, step.maxDrawDown) << row;
      EXPECT_DOUBLE_EQ(stats.MaxDrawDownRatio, percentMode ? 0.0 : step.ratio) << row;
      EXPECT_EQ(stats.EpisodeDrawDown, step.episode) << row;
      EXPECT_EQ(stats.EpisodeDrawDowns.size(), step.episodes) << row;
    }
    EXPECT_EQ(detail.MaxDrawDownTime, 7);
  }
}

// Six bars (Open 100 + i, Close 101 + i, time 1000 i) of an unknown symbol, margin rate 0.1,
// commission 1 per lot, checked out through SFImpl.
struct Checkouts {
  Checkouts() {
    std::vector<QXBar> bars;
    for (int i = 0; i < 6; ++i) bars.push_back(MakeBar(1000 * i, 100 + i, 110, 90, 101 + i, 1));
    host.AddSource("s", bars);
    host.data.CostSettings[0].MarginRate = 0.1;
    host.data.CostSettings[0].CommissionRate = 1.0;
    host.data.InitCapital = 10000.0;
    host.data.MaxPositionLots = 10;
    host.At(0, 0);
    impl = std::make_unique<SFImpl>(&host.data);
    impl->ResetStrategyState();
  }
  void CheckOut(int32_t bar) {
    host.At(0, bar);
    impl->BarCheckout();
  }
  const StrategyLedger& ledger() const { return host.data.Ledgers[0]; }
  StrategyAccount& account() { return *host.data.Account; }
  TestHost host;
  std::unique_ptr<SFImpl> impl;
};

TEST(BarCheckout, OnePointPerBarAndNoAllocationOnBarsWithoutOrders) {
  for (const int32_t mode : {0, 2}) {
    Checkouts run;
    run.host.data.OutputMode = mode;
    int allocations = 0;
    {
      const AllocationCounter counter;
      run.CheckOut(0);  // flat
      allocations += counter.Count();
    }
    run.host.At(0, 1);
    ASSERT_TRUE(run.impl->Buy(2.0, 0.0, kOriginFormula));  // 2 at 102, commission 2
    run.CheckOut(1);
    run.CheckOut(2);
    run.CheckOut(2);
    {
      const AllocationCounter counter;
      run.CheckOut(3);  // not bar 4: the last but one copies the open entries
      allocations += counter.Count();
    }
    EXPECT_EQ(allocations, 0) << "mode " << mode;
    const std::vector<EquityPoint>& curve = run.account().EquityCurve;
    ASSERT_EQ(curve.size(), 4u) << "mode " << mode;
    EXPECT_EQ(curve[1].BarCost, 2.0);
    EXPECT_EQ(curve[1].Equity, 10000.0);  // entered at the Close: no open profit yet
    EXPECT_DOUBLE_EQ(curve[1].Available, 10000.0 - 20.4);  // 2 x 102 x 0.1
    EXPECT_EQ(curve[2].BarCost, 0.0);
    EXPECT_EQ(curve[2].Equity, 10002.0);  // (103 - 102) x 2
    // Open returns on a lot's margin at 102 (10.2): 200 / 10.2 and 400 / 10.2, each bar once.
    EXPECT_DOUBLE_EQ(run.account().PercentEquitySum, 600.0 / 10.2);
    EXPECT_EQ(run.account().BarOrders.size(), 1u);
    EXPECT_EQ(run.account().BarOrders[1].size(), 1u);
  }
}

TEST(BarCheckout, RolloverMovesThePositionAtTheOpen) {
  for (const OrderKind entry : {kSellShort, kBuy}) {
    Checkouts run;
    // Rolled at 1.5 s, between bars 1 (1 s) and 2 (2 s): the position moves at bar 2's Open.
    run.host.data.Symbols->Rollovers = {{RolloverPoint{1500, 2}}};
    run.host.At(0, 1);
    ASSERT_TRUE(entry == kBuy ? run.impl->Buy(3.0, 0.0, kOriginFormula)
                              : run.impl->SellShort(3.0, 0.0, kOriginFormula));
    run.CheckOut(1);
    run.CheckOut(2);
    const std::vector<OrderRecord>& orders = run.ledger().Orders;
    const uint32_t exit = entry == kBuy ? kSell : kBuyToCover;
    ASSERT_EQ(orders.size(), 3u) << entry;
    EXPECT_EQ(orders[1].Kind, exit | kOriginRollover) << entry;
    EXPECT_EQ(orders[2].Kind, uint32_t{entry} | kOriginRollover) << entry;
    EXPECT_EQ(orders[2].Lots, 3.0) << entry;
    EXPECT_EQ(orders[2].Price, 102.0) << entry;  // bar 2's Open; its Close is 103
    EXPECT_EQ(run.ledger().Trades[0].ExitPrice, 102.0) << entry;
  }
}

TEST(BarCheckout, StockPickingDecisionIsFollowedAtTheNextOpen) {
  Checkouts run;
  run.account().CheckPoints[500] = CheckPointRecord{-1, 1, {}, 1};  // not the latest
  run.account().CheckPoints[1000] = CheckPointRecord{1, 1, {}, 1};
  run.CheckOut(1);
  EXPECT_EQ(run.host.data.CurrentBar, 1);
  ASSERT_EQ(run.ledger().OpenEntries.size(), 1u);
  const EntryLot& entry = run.ledger().OpenEntries[0];
  EXPECT_EQ(entry.Kind, uint32_t{kBuy} | kOriginStockPicking);
  EXPECT_EQ(entry.Bar, 2);
  EXPECT_EQ(entry.Price, 102.0);
}

TEST(BarCheckout, HostResetBeforeTheNextBarStartsTheRunOver) {
  Checkouts run;
  run.host.At(0, 1);
  ASSERT_TRUE(run.impl->Buy(1.0, 0.0, kOriginFormula) && run.impl->Sell(0.0, 0.0, kOriginFormula));
  run.CheckOut(1);
  run.host.data.ResetPending = 1;
  run.host.data.ResetBar = 3;
  run.CheckOut(2);
  EXPECT_EQ(run.host.data.ResetPending, 0);
  EXPECT_TRUE(run.ledger().Orders.empty());
  EXPECT_EQ(run.account().Capital, 10000.0);        // the commission of 2 is forgotten
  ASSERT_EQ(run.account().EquityCurve.size(), 3u);  // bars 0 and 1 pre-filled
  EXPECT_EQ(run.account().EquityCurve[1].Equity, 10000.0);
  EXPECT_EQ(run.account().EquityCurve[1].Time, 1000);
}

}  // namespace
}  // namespace sysfuncs::testing
