#include "strategy/TradeMatching.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <vector>

namespace sysfuncs::testing {
namespace {

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

TEST(TradeMatching, FifoAndLifoWithTheSplitEntryProrated) {
  for (const bool lifo : {false, true}) {
    Book book;
    book.settings.LifoExits = lifo;
    book.ledger.OpenEntries = {EntryLot{kBuy, 0, 0, 1.0, 10.0, 4.0},
                               EntryLot{kBuy, 1, 0, 2.0, 13.0, 6.0}};
    const ExitTotals totals = book.Exit(3, 2.0, 15.0);
    const std::vector<TradeRecord>& trades = book.ledger.Trades;
    const std::vector<EntryLot>& left = book.ledger.OpenEntries;
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(trades[0].ExitKind, uint32_t{kSell} | kOriginRollover);
    EXPECT_EQ(book.account.Trades.size(), trades.size());
    if (!lifo) {
      // The first entry whole, then 1 of the 2 lots at 13 with half of their cost.
      ASSERT_EQ(trades.size(), 2u);
      EXPECT_EQ(trades[0].NetProfit, 46.0);  // (15 - 10) x 10 - 4
      EXPECT_EQ(trades[1].EntryCost, 3.0);
      EXPECT_EQ(trades[1].NetProfit, 17.0);             // (15 - 13) x 10 - 3
      EXPECT_DOUBLE_EQ(trades[1].Return, 17.0 / 13.0);  // a lot's margin at 13: 13 x 10 x 0.1
      EXPECT_EQ(totals.NetProfit, 63.0);
      EXPECT_EQ(left[0].Lots, 1.0);
      EXPECT_EQ(left[0].Cost, 3.0);
    } else {
      ASSERT_EQ(trades.size(), 1u);
      EXPECT_EQ(trades[0].NetProfit, 34.0);  // (15 - 13) x 10 x 2 - 6
      EXPECT_EQ(left[0].Price, 10.0);
    }
  }
}

TEST(TradeMatching, SplitsLeavingATenthOfALotOrLessTakeTheWholeEntry) {
  struct Row {
    double held, tradeLots, lotsLeft;
    size_t entriesLeft;
  } rows[] = {
      {2.2, 2.0, 0.2, 1},      // a real split
      {2.05, 2.05, 0.05, 1},   // the trade takes all 2.05 lots, yet 0.05 stays open
      {2.005, 2.005, 0.0, 0},  // within 0.01 lot: used up exactly
  };
  for (const Row& row : rows) {
    Book book;
    book.ledger.OpenEntries = {EntryLot{kBuy, 0, 0, row.held, 10.0, 0.0}};
    book.Exit(1, 2.0, 11.0);
    EXPECT_DOUBLE_EQ(book.ledger.Trades.at(0).Lots, row.tradeLots) << row.held;
    ASSERT_EQ(book.ledger.OpenEntries.size(), row.entriesLeft) << row.held;
    if (row.entriesLeft > 0) {
      EXPECT_NEAR(book.ledger.OpenEntries[0].Lots, row.lotsLeft, 1e-12) << row.held;
    }
  }
}

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
  EXPECT_EQ(ledger.NumWin, 3);
  EXPECT_EQ(ledger.NumLos, 3);
  EXPECT_EQ(ledger.NumEven, 1);
  EXPECT_EQ(ledger.TotalBarsWin, 6);  // 2 bars x 3 lots
  EXPECT_EQ(ledger.TotalBarsLos, 7);  // 1 x 1 + 3 x 2
  EXPECT_EQ(ledger.MaxConsecWin, 3);
  EXPECT_EQ(ledger.MaxConsecLos, 3);
  EXPECT_EQ(ledger.LargestLos, -7.0);
  EXPECT_EQ(ledger.GrossLoss, -12.0);
  EXPECT_EQ(account.GrossProfitShort, 30.0);
  EXPECT_EQ(account.GrossLossShort, -12.0);
  EXPECT_EQ(account.GrossProfitLong, 0.0);

  LedgerStatistics losing;
  const TradeRecord loss{kBuy, kSell, 0, 1, 0, 1.0, 0, 0, 0, 0, 0, -4.0, 0.5};
  BookTrade(losing, loss, false);
  EXPECT_EQ(losing.LargestWin, 0.0);
  BookTrade(losing, loss, true);  // PercentMode books the return: 50 percent
  EXPECT_EQ(losing.GrossProfit, 50.0);
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

}  // namespace
}  // namespace sysfuncs::testing
