// The money rules, the matching and booking of exits against entries, and the statistics read
// from the ledger and the account.
#include "strategy/LedgerStatistics.h"
#include "strategy/MoneyRules.h"
#include "strategy/PortfolioStatistics.h"
#include "strategy/TradeMatching.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <vector>

namespace sysfuncs::testing {
namespace {

// ContractSize 10, LotValue 300, tick 0.2.
ContractTerms Terms(int32_t kind) { return ContractTerms{kind, 10.0, 300.0, 0.2}; }

TEST(MoneyRules, MarginCommissionAndProfitByKind) {
  // 2 lots at 50, margin rate 0.1, commission rate 3; profit of a long lot from 40 to 50.
  struct Row {
    int32_t marginKind;
    uint32_t commissionKind;
    double margin, commission, profit;
  } rows[] = {
      {1, 1, 100.0, 600.0, 100.0},     // 10 x 2 x 50 x 0.1; 0.2 x 3 x 2 x 10 x 50; 10 x 10
      {2, 1, 2.0, 12.0, 2.0},          // 10 x 2 x 0.1; 0.2 x 3 x 2 x 10; 10 x 10 / 50
      {3, 1, 2.0, 12.0, 2.0},          //
      {4, 1, 3000.0, 360.0, 3000.0},   // 300 x 2 x 50 x 0.1; 0.2 x 3 x 2 x 300; 300 x 10
      {5, 1, 30000.0, 360.0, 3000.0},  // the full value 300 x 2 x 50: no rate
      {7, 1, 0.0, 0.0, 0.0},           //
      {1, 2, 100.0, 9.0, 100.0},       // turnover 300 x 2 x 50 x 3 / 10000, any margin kind
      {4, 0, 3000.0, 6.0, 3000.0},     // money per lot 3 x 2
  };
  for (const Row& row : rows) {
    const CostSetting cost{
        .MarginRate = 0.1, .CommissionKind = row.commissionKind, .CommissionRate = 3.0};
    const ContractTerms terms = Terms(row.marginKind);
    const int32_t kind = row.marginKind;
    EXPECT_DOUBLE_EQ(Margin(terms, cost, 2.0, 50.0), row.margin) << "margin kind " << kind;
    EXPECT_DOUBLE_EQ(Commission(terms, cost, 2.0, 50.0), row.commission)
        << "margin kind " << kind << ", commission kind " << row.commissionKind;
    EXPECT_DOUBLE_EQ(PerLotProfit(terms, true, 40.0, 50.0), row.profit) << "kind " << kind;
    EXPECT_DOUBLE_EQ(PerLotProfit(terms, false, 40.0, 50.0), -row.profit) << "kind " << kind;
  }
  EXPECT_EQ(PerLotProfit(Terms(2), true, 40.0, 0.0), 0.0);  // relative to a price of 0: none
}

TEST(MoneyRules, SlippageAndTheCommissionWaivers) {
  CostSetting cost{.CommissionRate = 3.0, .Slippage = 1.5};          // commission 6, slippage 3
  EXPECT_DOUBLE_EQ(Slippage(Terms(4), cost, 2.7), 3.0);              // whole lots only
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, true), 9.0);  // waiver not enabled
  cost.NoEntryCommission = cost.SameDayExitFree = true;
  EXPECT_DOUBLE_EQ(EntryCost(Terms(4), cost, 2.0, 50.0), 3.0);
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, true), 3.0);
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, false), 9.0);
}

TEST(MoneyRules, TickRoundingWithinOnePercentOfATick) {
  constexpr auto kUp = PriceDirection::kBuy;
  constexpr auto kDown = PriceDirection::kSell;
  struct Row {
    double price;
    PriceDirection direction;
    double rounded;
  } rows[] = {
      {10.004, kUp, 10.01},      // buy 0.4 tick above 10.00: up
      {10.00005, kUp, 10.00},    // buy 0.5% of a tick above: stays
      {10.009, kDown, 10.00},    // sell 0.1 tick below 10.01: down
      {10.00995, kDown, 10.01},  // sell 0.5% of a tick below 10.01: up
      {10.02, kUp, 10.02},      {10.02, kDown, 10.02},
  };
  for (const Row& row : rows) {
    EXPECT_NEAR(RoundToTick(row.price, 0.01, row.direction), row.rounded, 1e-9)
        << row.price << (row.direction == kUp ? " buy" : " sell");
  }
  EXPECT_EQ(RoundToTick(10.004, 0.0, kUp), 10.004);  // no grid: unchanged
}

// Records of one series: lot value 10, margin rate 0.1, no costs unless set.
struct Book {
  ExitTotals Exit(int32_t bar, double lots, double price) {
    OrderContext context{ledger,   account,  cost, ContractTerms{4, 1.0, 10.0, 1.0},
                         settings, mainBars, bar,  0};
    return MatchExit(context, lots, price, kOriginRollover);
  }
  StrategyLedger ledger;
  StrategyAccount account;
  CostSetting cost{0.1};
  CQXBaseData settings;
  std::vector<QXBar> mainBars = EvenBars(0, 60000, 4);
};

// Which entries an exit takes first (FIFO, LIFO) is met in the scenarios.
TEST(TradeMatching, SplitsProrateTheCostAndATenthOfALotOrLessGoesWhole) {
  struct Row {
    double held, tradeLots, lotsLeft;
    size_t entriesLeft;
  } rows[] = {
      {2.2, 2.0, 0.2, 1},      // a real split
      {2.05, 2.05, 0.05, 1},   // the trade takes all 2.05 lots, yet 0.05 stays open
      {2.005, 2.005, 0.0, 0},  // within 0.01 lot: used up exactly
  };
  for (const Row& row : rows) {
    Book book;  // the entry cost 1 per lot is prorated between the trade and what stays open
    book.ledger.OpenEntries = {EntryLot{kBuy, 0, 0, row.held, 10.0, row.held}};
    book.Exit(1, 2.0, 11.0);
    EXPECT_DOUBLE_EQ(book.ledger.Trades.at(0).Lots, row.tradeLots) << row.held;
    EXPECT_NEAR(book.ledger.Trades[0].EntryCost, row.tradeLots, 1e-12) << row.held;
    EXPECT_EQ(book.ledger.Trades[0].ExitKind, uint32_t{kSell} | kOriginRollover) << row.held;
    ASSERT_EQ(book.ledger.OpenEntries.size(), row.entriesLeft) << row.held;
    if (row.entriesLeft > 0) {
      EXPECT_NEAR(book.ledger.OpenEntries[0].Lots, row.lotsLeft, 1e-12) << row.held;
      EXPECT_NEAR(book.ledger.OpenEntries[0].Cost, row.lotsLeft, 1e-12) << row.held;
    }
  }
}

// Booking the return in PercentMode is met in the percent scenario.
TEST(TradeMatching, BookingWeighsByLotsAndKeepsRuns) {
  struct Row {
    double lots;
    int32_t bars;
    double net;
  } trades[] = {{3.0, 2, 30.0}, {1.0, 1, -5.0}, {1.0, 4, 0.00005}, {2.0, 3, -7.0}};
  LedgerStatistics ledger;
  AccountStatistics account;
  for (const Row& row : trades) {
    const TradeRecord trade{kSellShort, kBuyToCover, 0,   row.bars, 0,   row.lots,
                            0.0,        0.0,         0.0, 0.0,      0.0, row.net};
    BookTrade(ledger, trade, false);
    BookTrade(account, trade, false);
  }
  // 3 wins; 1 loss ends the winning run; 0.00005 is even and leaves the runs; 2 losses more.
  // Bars won 2 x 3 lots, lost 1 x 1 + 3 x 2.
  EXPECT_EQ(std::vector<int32_t>({ledger.NumWin, ledger.NumLos, ledger.NumEven, ledger.TotalBarsWin,
                                  ledger.TotalBarsLos, ledger.MaxConsecWin, ledger.MaxConsecLos,
                                  ledger.WinRun}),
            std::vector<int32_t>({3, 3, 1, 6, 7, 3, 3, 0}));
  EXPECT_EQ(std::vector<double>({ledger.LargestLos, account.GrossProfitShort,
                                 account.GrossLossShort, account.GrossProfitLong}),
            std::vector<double>({-7, 30, -12, 0}));
}

TEST(TradeMatching, SameDayExitsAreFreeByTheMainSeriesBarTimes) {
  Book book;
  book.cost.CommissionRate = 2.0;
  book.cost.SameDayExitFree = true;
  book.mainBars = {MakeBar(ShanghaiInstant(2024, 3, 1, 21, 5), 0, 0, 0, 0),  // Friday night
                   MakeBar(ShanghaiInstant(2024, 3, 1, 21, 15), 0, 0, 0, 0),
                   MakeBar(ShanghaiInstant(2024, 3, 4, 16, 59), 0, 0, 0, 0),  // Monday
                   MakeBar(ShanghaiInstant(2024, 3, 4, 17, 1), 0, 0, 0, 0)};
  struct Row {
    int32_t entryBar, exitBar;
    double exitCost;
  } rows[] = {{0, 1, 0.0}, {0, 2, 0.0}, {2, 3, 2.0}, {1, 3, 2.0}};
  for (const Row& row : rows) {
    // The entry belongs to series 1; the main series' times decide.
    book.ledger.OpenEntries = {EntryLot{kBuy, row.entryBar, 1, 1.0, 10.0, 0.0}};
    book.Exit(row.exitBar, 1.0, 10.0);
    EXPECT_EQ(book.ledger.Trades.back().ExitCost, row.exitCost)
        << "entry bar " << row.entryBar << ", exit bar " << row.exitBar;
  }
}

// Bar 2 (High 16, Low 8, Close 15) of 1-minute bars from 2024-03-04 09:30; lot value 10.
struct Series {
  SeriesView View(bool singlePrice = false) const {
    return SeriesView{ledger, bars, bars[2], 2, ContractTerms{4, 1.0, 10.0, 1.0}, singlePrice};
  }
  StrategyLedger ledger;
  std::vector<QXBar> bars = {MakeBar(ShanghaiInstant(2024, 3, 4, 9, 30), 10, 11, 9, 10),
                             MakeBar(ShanghaiInstant(2024, 3, 4, 9, 31), 12, 14, 11, 13),
                             MakeBar(ShanghaiInstant(2024, 3, 4, 9, 32), 12, 16, 8, 15)};
};

TEST(LedgerStatistics, PositionAndExitFigures) {
  Series series;
  const SeriesView view = series.View();
  series.ledger.OpenEntries = {EntryLot{kBuy, 0, 0, 1.0, 10.0, 0.0},
                               EntryLot{kBuy, 1, 0, 2.0, 13.0, 0.0}};
  EXPECT_EQ(AvgEntryPrice(series.ledger), 12.0);  // (10 + 26) / 3
  EXPECT_EQ(EntryDate(view), 20240304);
  EXPECT_DOUBLE_EQ(LastEntryTime(view), 0.0931);
  EXPECT_EQ(BarsSinceLastEntry(view), 1);
  // Best case at the High: (16 - 10) x 10 + (16 - 13) x 20; worst at the Low: -20 - 100.
  EXPECT_EQ(MaxPositionProfit(view), 120.0);
  EXPECT_EQ(MaxPositionLoss(view), -120.0);
  EXPECT_EQ(MaxPositionProfit(series.View(true)), 90.0);  // single price: (15 - 12) x 30
  series.ledger.Stats.BestOpenProfit = 200.0;
  EXPECT_EQ(MaxPositionProfit(view), 200.0);  // the record beats 120
  series.ledger.OpenEntries = {EntryLot{kSellShort, 1, 0, 2.0, 13.0, 0.0}};
  EXPECT_EQ(MaxPositionLoss(view), -60.0);  // a short's worst is at the High: (13 - 16) x 20
  series.ledger.Trades = {TradeRecord{kBuy, kSell, 0, 1, 0, 1.0, 10.0, 12.0}};
  EXPECT_EQ(ExitPrice(series.ledger) + ExitDate(view) + BarsSinceExit(view), 0.0);  // held
  series.ledger.OpenEntries.clear();
  EXPECT_EQ(ExitPrice(series.ledger), 12.0);
  EXPECT_DOUBLE_EQ(ExitTime(view), 0.0931);
  EXPECT_EQ(BarsSinceExit(view), 1);
}

TEST(PortfolioStatistics, RatiosOfTheTradeCountsAndPortfolioPercentInWholeNumbers) {
  struct Row {
    int32_t wins, losses, barsWin;
    double portfolio, series;
    int32_t avgBarsWin;
  } rows[] = {{3, 1, 8, 0.0, 0.75, 2},  // 3 / 4 in whole numbers; 8 / 3 likewise
              {4, 0, 4, 1.0, 1.0, 1},
              {0, 0, 0, 0.0, 0.0, 0}};
  for (const Row& row : rows) {
    AccountStatistics stats;
    stats.NumWin = row.wins;
    stats.NumLos = row.losses;
    stats.TotalBarsWin = row.barsWin;
    EXPECT_EQ(PortfolioPercentProfit(stats), row.portfolio) << row.wins << "/" << row.losses;
    EXPECT_EQ(PercentProfit(stats), row.series) << row.wins << "/" << row.losses;
    EXPECT_EQ(AvgBarsWinTrade(stats), row.avgBarsWin) << row.wins << "/" << row.losses;
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

}  // namespace
}  // namespace sysfuncs::testing
