// The per-bar checkout, the end of the run, and the reset and roll-back of the strategy state.
#include "sysfuncs/SFImpl.h"

#include "strategy/BarCheckout.h"
#include "strategy/EquityCurve.h"
#include "strategy/PerformanceReport.h"
#include "strategy/PositionValuation.h"
#include "strategy/StrategyState.h"
#include "support/AllocationCounter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sysfuncs::testing {
namespace {

// A position valued under each margin kind of the series (ContractSize 10, LotValue 300, margin
// rate 0.1) on a bar of Open 50, High 55, Low 45, Close 52: two longs, 2 lots at 50 from an
// earlier bar (reaching the High and the Low) and 1 lot at 51 of this bar (the Close only), and a
// short of 1 lot at 53 from an earlier bar. Kinds 2 and 3 share a rule; kinds outside 1 to 5
// value to nothing but the lots.
TEST(BarCheckout, PositionsAreValuedByTheMarginKindOfTheirSeries) {
  const std::vector<EntryLot> entries = {EntryLot{kBuy, 3, 0, 2.0, 50.0, 0.0},
                                         EntryLot{kBuy, 5, 0, 1.0, 51.0, 0.0},
                                         EntryLot{kSellShort, 3, 0, 1.0, 53.0, 0.0}};
  const QXBar bar = MakeBar(0, 50, 55, 45, 52);
  struct Row {
    int32_t kind;
    double longMargin, shortMargin, openProfit, openReturn, best, worst;
  };
  const Row rows[] = {
      // Profit 300 x gain x lots: at the Close 1200 + 300 + 300; best 3000 + 300 + 2400 (the
      // short at the Low), worst -3000 + 300 - 600. Margin 300 x lots x 52 x 0.1; returns on one
      // lot's margin at the entry price: 1200 / 1500, 300 / 1530, 300 / 1590.
      {4, 4680.0, 1560.0, 1800.0, 100.0 * (1200.0 / 1500 + 300.0 / 1530 + 300.0 / 1590), 5700.0,
       -3300.0},
      // The full value as margin, and so as the base of the returns.
      {5, 46800.0, 15600.0, 1800.0, 100.0 * (1200.0 / 15000 + 300.0 / 15300 + 300.0 / 15900),
       5700.0, -3300.0},
      // ContractSize 10 x gain x lots.
      {1, 156.0, 52.0, 60.0, 100.0 * (40.0 / 50 + 10.0 / 51 + 10.0 / 53), 190.0, -110.0},
      // ContractSize 10 x gain / price x lots; margin 10 x lots x 0.1, one lot's margin 1.
      {2, 3.0, 1.0, 40.0 / 52 + 10.0 / 52 + 10.0 / 52, 100.0 * (40.0 / 52 + 10.0 / 52 + 10.0 / 52),
       100.0 / 55 + 10.0 / 52 + 80.0 / 45, -100.0 / 45 + 10.0 / 52 - 20.0 / 55},
      {3, 3.0, 1.0, 40.0 / 52 + 10.0 / 52 + 10.0 / 52, 100.0 * (40.0 / 52 + 10.0 / 52 + 10.0 / 52),
       100.0 / 55 + 10.0 / 52 + 80.0 / 45, -100.0 / 45 + 10.0 / 52 - 20.0 / 55},
      {0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
      {6, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
      {-1, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
  };
  for (const Row& row : rows) {
    const PositionValue value =
        ValuePosition(entries, bar, 5, false, ContractTerms{row.kind, 10.0, 300.0, 0.2},
                      CostSetting{.MarginRate = 0.1});
    EXPECT_NEAR(value.LongMargin, row.longMargin, 1e-9) << "kind " << row.kind;
    EXPECT_NEAR(value.ShortMargin, row.shortMargin, 1e-9) << "kind " << row.kind;
    EXPECT_EQ(value.LongLots, 3.0) << "kind " << row.kind;
    EXPECT_EQ(value.ShortLots, 1.0) << "kind " << row.kind;
    EXPECT_NEAR(value.OpenProfit, row.openProfit, 1e-9) << "kind " << row.kind;
    EXPECT_NEAR(value.OpenReturn, row.openReturn, 1e-9) << "kind " << row.kind;
    EXPECT_NEAR(value.BestProfit, row.best, 1e-9) << "kind " << row.kind;
    EXPECT_NEAR(value.WorstProfit, row.worst, 1e-9) << "kind " << row.kind;
  }
}

// A position of one entry adds to the totals and moves the extremes exactly as adding its
// ValuePosition does, to the bit: under every rule kind, on either side, reaching the High and
// the Low or not, onto a fresh total and a running one, and for figures of -0 (a zero gain at a
// negative lot value).
TEST(BarCheckout, OneEntryPositionsAddWhatTheirValuationAdds) {
  const QXBar bar = MakeBar(0, 50, 55, 45, 52);
  const PositionValue running{1.5, 2.5, 3.0, 1.0, -7.25, 0.3, 9.0, -4.0};
  const auto bits = [](const PositionValue& value, const LedgerStatistics& stats) {
    return std::vector<uint64_t>{std::bit_cast<uint64_t>(value.LongMargin),
                                 std::bit_cast<uint64_t>(value.ShortMargin),
                                 std::bit_cast<uint64_t>(value.LongLots),
                                 std::bit_cast<uint64_t>(value.ShortLots),
                                 std::bit_cast<uint64_t>(value.OpenProfit),
                                 std::bit_cast<uint64_t>(value.OpenReturn),
                                 std::bit_cast<uint64_t>(value.BestProfit),
                                 std::bit_cast<uint64_t>(value.WorstProfit),
                                 std::bit_cast<uint64_t>(stats.BestOpenProfit),
                                 std::bit_cast<uint64_t>(stats.WorstOpenProfit)};
  };
  for (const int32_t kind : {0, 1, 2, 3, 4, 5, 6}) {
    for (const double lotValue : {300.0, -300.0}) {
      const ContractTerms terms{kind, lotValue / 30.0, lotValue, 0.2};
      for (const uint32_t side : {uint32_t{kBuy}, uint32_t{kSellShort}}) {
        for (const int32_t entryBar : {3, 5}) {
          for (const bool single : {false, true}) {
            for (const double price : {52.0, 47.5}) {
              for (const PositionValue& start : {PositionValue{}, running}) {
                const EntryLot entry{side, entryBar, 0, 2.0, price, 0.0};
                LedgerStatistics viaPosition;
                viaPosition.BestOpenProfit = 0.5;
                viaPosition.WorstOpenProfit = -0.5;
                LedgerStatistics direct = viaPosition;
                const CostSetting cost{.MarginRate = 0.1};
                PositionValue expected = start;
                const PositionValue value = ValuePosition({entry}, bar, 5, single, terms, cost);
                expected += value;
                UpdateOpenExtremes(viaPosition, value);
                PositionValue total = start;
                AddOneEntryPosition(total, direct, entry, bar, 5, single, terms, cost);
                EXPECT_EQ(bits(total, direct), bits(expected, viaPosition))
                    << "kind " << kind << " lot value " << lotValue << " side " << side
                    << " entry bar " << entryBar << " single " << single << " price " << price;
              }
            }
          }
        }
      }
    }
  }
}

// The engine reads bar CurrentBar of each series; a series with fewer bars gives its last one, a
// CurrentBar below 0 the first, and a series without bars an empty bar.
TEST(BarCheckout, SeriesBarsAreClampedToTheBarsOfTheirSeries) {
  TestHost host;
  host.AddSource("MAIN", EvenBars(0, 60000, 5, 100.0));
  host.AddSource("SHORT", {MakeBar(0, 1, 1, 1, 11), MakeBar(60000, 2, 2, 2, 12),
                           MakeBar(120000, 3, 3, 3, 13)});
  host.AddSource("NONE", {});
  host.At(0, 0);
  SFImpl impl(&host.data);
  const struct {
    int32_t currentBar;
    double closes[3];
  } rows[] = {{-1, {100, 11, 0}}, {1, {100, 12, 0}}, {2, {100, 13, 0}}, {4, {100, 13, 0}}};
  for (const auto& row : rows) {
    host.data.CurrentBar = row.currentBar;
    for (int32_t index = 0; index < 3; ++index) {
      EXPECT_EQ(impl.SeriesBar(index).Close, row.closes[index])
          << "bar " << row.currentBar << " of series " << index;
    }
  }
}

// Single-price bars read High and Low as the Close; entries of the bar are met in the scenarios.
TEST(BarCheckout, SinglePriceBarsValueTheExtremesAtTheClose) {
  const std::vector<EntryLot> entries = {EntryLot{kBuy, 0, 0, 2.0, 100.0, 0.0}};  // lot value 10
  const QXBar bar = MakeBar(0, 100, 110, 95, 104);
  for (const bool single : {false, true}) {
    const PositionValue value =
        ValuePosition(entries, bar, 1, single, ContractTerms{4, 1.0, 10.0, 1.0}, CostSetting{0.1});
    EXPECT_EQ(value.BestProfit, single ? 80.0 : 200.0);    // (104 or 110 - 100) x 20
    EXPECT_EQ(value.WorstProfit, single ? 80.0 : -100.0);  // (104 or 95 - 100) x 20
  }
}

TEST(BarCheckout, DrawdownEpisodesOpenBelowTheTroughAndCloseAboveThePeak) {
  struct Step {
    double basis, peak, trough, maxDrawDown, ratio, episode;
    size_t episodes;
  } steps[] = {
      {1000, 1000, 1000, 0, 0, 0, 0},         // equal to the peak: nothing
      {900, 1000, 900, -100, 0.1, -100, 0},   // a new trough opens an episode
      {1000, 1000, 900, -100, 0.1, -100, 0},  // back to the peak only: still open
      {900, 1000, 900, -100, 0.1, -100, 0},   // equal to the trough: nothing
      {1100, 1100, 1100, -100, 0.1, 0, 1},    // a new peak closes it
      {1100, 1100, 1100, -100, 0.1, 0, 1},    // equal: no empty episode
      {880, 1100, 880, -220, 0.2, -220, 1},   // 220 against the episode's peak 1100
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
    const auto allocationsOf = [&run](int32_t bar) {
      const AllocationCounter counter;
      run.CheckOut(bar);
      return counter.Count();
    };
    int allocations = allocationsOf(0);  // flat
    run.host.At(0, 1);
    ASSERT_TRUE(run.impl->Buy(2.0, 0.0, kOriginFormula));  // 2 at 102, commission 2
    run.CheckOut(1);
    run.CheckOut(2);
    run.CheckOut(2);
    allocations += allocationsOf(3);  // not bar 4: the last but one copies the open entries
    EXPECT_EQ(allocations, 0) << "mode " << mode;
    const std::vector<EquityPoint>& curve = run.account().EquityCurve;
    ASSERT_EQ(curve.size(), 4u) << "mode " << mode;  // bar 2's point overwritten
    EXPECT_EQ(curve[1].BarCost, 2.0);
    EXPECT_DOUBLE_EQ(curve[1].Available, 10000.0 - 20.4);  // 2 x 102 x 0.1 at the Close
    EXPECT_EQ(curve[2].BarCost, 0.0);
    // Open returns on a lot's margin at 102 (10.2): 200 / 10.2 and 400 / 10.2, each bar once.
    EXPECT_DOUBLE_EQ(run.account().PercentEquitySum, 600.0 / 10.2);
    EXPECT_EQ(run.account().BarOrders.size(), 1u);
    EXPECT_EQ(run.account().OrdersOfBar(1).size(), 1u);
  }
}

// A bar evaluated anew without the order it had: its point is replaced (the open return counted
// once) and its bar-order entry goes; the next bar with an order gets its own entry.
TEST(BarCheckout, BarEvaluatedAgainWithoutItsOrderLosesItsBarOrders) {
  for (const int32_t mode : {0, 2}) {
    Checkouts run;
    run.host.data.OutputMode = mode;
    run.CheckOut(0);
    run.host.At(0, 1);
    ASSERT_TRUE(run.impl->Buy(2.0, 0.0, kOriginFormula));  // 2 at 102, commission 2
    run.CheckOut(1);
    ASSERT_EQ(run.account().OrdersOfBar(1).size(), 1u) << "mode " << mode;
    run.host.At(0, 1);
    run.impl->RollBackToCurrentBar();  // bar 1 again, this time without the Buy
    run.CheckOut(1);
    const std::vector<EquityPoint>& curve = run.account().EquityCurve;
    ASSERT_EQ(curve.size(), 2u) << "mode " << mode;
    EXPECT_EQ(curve[1].BarCost, 0.0) << "mode " << mode;
    EXPECT_EQ(curve[1].LongLots, 0.0) << "mode " << mode;
    EXPECT_EQ(curve[1].Equity, 10000.0) << "mode " << mode;
    EXPECT_EQ(run.account().PercentEquitySum, 0.0) << "mode " << mode;
    EXPECT_TRUE(run.account().BarOrders.empty()) << "mode " << mode;

    run.host.At(0, 2);
    ASSERT_TRUE(run.impl->Buy(1.0, 0.0, kOriginFormula));  // 1 at 103
    run.CheckOut(2);
    ASSERT_EQ(run.account().BarOrders.size(), 1u) << "mode " << mode;
    EXPECT_EQ(run.account().BarOrders.front().Bar, 2) << "mode " << mode;
    EXPECT_EQ(curve[2].BarCost, 1.0) << "mode " << mode;
  }
}

// The recorded orders stay in bar order, a bar's orders in series order, whichever bar is
// recorded again: the last one, or an earlier one when a host goes back.
TEST(BarCheckout, BarOrdersStayInBarOrderWhenABarIsRecordedAgain) {
  const auto order = [](uint32_t kind, int32_t bar, double price) {
    return EntryLot{kind, bar, 0, 1.0, price, 0.0};
  };
  std::vector<StrategyLedger> ledgers(2);
  ledgers[0].Orders = {order(kBuy, 1, 10.0)};
  StrategyAccount account;
  const auto prices = [&account] {
    std::vector<double> listed;
    for (const OrderRecord& recorded : account.BarOrders) listed.push_back(recorded.Price);
    return listed;
  };
  RecordBarOrders(account, ledgers, 1);
  ledgers[1].Orders = {order(kSellShort, 1, 11.0)};
  RecordBarOrders(account, ledgers, 1);  // bar 1 again, now with both series' orders
  EXPECT_EQ(prices(), (std::vector<double>{10.0, 11.0}));
  ledgers[0].Orders.push_back(order(kSell, 3, 13.0));
  ledgers[1].Orders.push_back(order(kBuyToCover, 3, 14.0));
  RecordBarOrders(account, ledgers, 3);
  EXPECT_EQ(prices(), (std::vector<double>{10.0, 11.0, 13.0, 14.0}));

  ledgers[0].Orders = {order(kBuy, 1, 20.0)};  // a host back at bar 1: bar 3 keeps its orders
  ledgers[1].Orders.clear();
  RecordBarOrders(account, ledgers, 1);
  EXPECT_EQ(prices(), (std::vector<double>{20.0, 13.0, 14.0}));
  EXPECT_EQ(account.OrdersOfBar(3).size(), 2u);
  EXPECT_TRUE(account.OrdersOfBar(2).empty());

  ForgetBarOrders(account.BarOrders, 1);  // not at the end: kept
  ForgetBarOrders(account.BarOrders, 3);
  EXPECT_EQ(prices(), (std::vector<double>{20.0}));
}

TEST(BarCheckout, RolloverMovesThePositionAtTheOpenOfItsBar) {
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

TEST(BarCheckout, HostResetBeforeTheNextBarStartsTheRunOverWithAPrefilledCurve) {
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

// A reset clears the statistics block but not its saved copy: the last bar evaluated anew after a
// reset on it brings back the statistics saved on the last-but-one bar, though the trades they
// count are gone. The roll-back is shallow on purpose; a host that resets on the last bar and
// evaluates it again sees these counts.
TEST(BarCheckout, AResetKeepsTheSavedStatisticsThatARollBackRestores) {
  Checkouts run;
  run.host.At(0, 3);
  ASSERT_TRUE(run.impl->Buy(1.0, 0.0, kOriginFormula) && run.impl->Sell(0.0, 0.0, kOriginFormula));
  run.CheckOut(3);
  run.CheckOut(4);  // the last-but-one bar: its statistics are saved, one losing trade
  ASSERT_EQ(run.ledger().SavedStats.NumLos, 1);
  run.host.data.ResetPending = 1;
  run.host.data.ResetBar = 6;
  run.CheckOut(5);  // the last bar: the reset comes first
  ASSERT_TRUE(run.ledger().Trades.empty());
  EXPECT_EQ(run.ledger().Stats.NumLos, 0);
  run.impl->RollBackToCurrentBar();  // the last bar evaluated anew
  EXPECT_EQ(run.ledger().Stats.NumLos, 1);
  EXPECT_TRUE(run.ledger().Trades.empty());
}

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
  StrategyAccount account;  // 31 January to 2 February, in the market on 1 February
  account.EquityCurve = {
      {.Time = ShanghaiInstant(2024, 1, 31, 12), .Equity = 1000, .Capital = 1000},
      {.Time = ShanghaiInstant(2024, 2, 1, 12), .LongLots = 1, .Equity = 1100, .Capital = 1000},
      {.Time = ShanghaiInstant(2024, 2, 2, 12), .Equity = 1050, .Capital = 1080}};
  CQXBaseData settings;
  settings.InitCapital = 1000.0;
  settings.OutputMode = 2;
  const PerformanceReport report = ComputeReport(account, settings);
  EXPECT_DOUBLE_EQ(report.ReturnOnInitialCapital, 0.05);
  EXPECT_DOUBLE_EQ(report.AnnualReturn, 0.05 * 365.0 / 2.0);  // over 2 days
  // Returns 0.1 and -1/22: mean 0.6/22, sample deviation 1.6/22 x sqrt(2).
  EXPECT_NEAR(report.SharpeRatio, 0.375 / std::sqrt(2.0), 1e-12);
  EXPECT_DOUBLE_EQ(report.TimeInMarket, 1.0 / 3.0);
  // Realised capital per month: January 0; February 1080 - 1000 on 1000; 2024 likewise.
  ASSERT_EQ(report.Months.size(), 2u);
  EXPECT_EQ(report.Months[1].Period, 202402);
  EXPECT_DOUBLE_EQ(report.Months[1].Return, 0.08);
  EXPECT_EQ(report.Years.at(0).NetProfit, 80.0);
}

TEST(StrategyState, ConstructionAtBarZeroStartsTheRunAndCoversEverySeries) {
  TestHost host;
  host.AddSource("a", EvenBars(5000, 60000, 4));
  host.AddSource("b", EvenBars(5000, 60000, 4));
  host.data.Ledgers.resize(1);  // a host that gave fewer records than series
  host.data.CostSettings.clear();
  host.data.Ledgers[0].Orders.emplace_back();
  host.data.InitCapital = 5000.0;
  host.data.Account = new StrategyAccount();
  StrategyAccount& account = *host.data.Account;
  account.Stats.Peak = 1.0;  // stale records of an earlier run
  account.Trades.emplace_back();
  account.EquityCurve.resize(3);
  host.At(0, 0);
  CSystemFuncs funcs(&host.data);
  EXPECT_EQ(host.data.Ledgers.size(), 2u);
  EXPECT_EQ(host.data.CostSettings.size(), 2u);
  EXPECT_TRUE(host.data.Ledgers[0].Orders.empty());
  EXPECT_EQ(account.Capital, 5000.0);
  EXPECT_EQ(account.Stats.Peak, 5000.0);  // 0 in PercentMode: met in the percent scenario
  EXPECT_TRUE(account.Trades.empty() && account.EquityCurve.empty());
  EXPECT_EQ(account.Detail.HighestBasisTime, 5000);  // the first bar's time
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
  account.CumReturn = 12.5;
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
  // never put back), the realised capital and the cumulative return.
  EXPECT_EQ(account.Stats.NumWin, 9);
  EXPECT_EQ(account.Capital, 777.0);
  EXPECT_EQ(account.CumReturn, 12.5);
}

}  // namespace
}  // namespace sysfuncs::testing
