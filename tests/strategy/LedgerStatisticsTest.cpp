#include "strategy/LedgerStatistics.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <vector>

namespace sysfuncs::testing {
namespace {

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

TEST(LedgerStatistics, EverythingIsZeroWithoutPositionOrTrades) {
  Series series;
  const SeriesView view = series.View();
  const LedgerStatistics& stats = series.ledger.Stats;
  EXPECT_EQ(MarketPosition(series.ledger), 0);
  EXPECT_EQ(EntryDate(view) + LastEntryDate(view) + ExitDate(view), 0);
  EXPECT_EQ(EntryTime(view) + ExitTime(view) + EntryPrice(series.ledger), 0.0);
  EXPECT_EQ(BarsSinceEntry(view) + BarsSinceLastEntry(view) + BarsSinceExit(view), 0);
  EXPECT_EQ(AvgEntryPrice(series.ledger) + PositionProfit(view), 0.0);
  EXPECT_EQ(MaxPositionProfit(view) + MaxPositionLoss(view), 0.0);
  EXPECT_EQ(PercentProfit(stats), 0.0);
  EXPECT_EQ(AvgBarsWinTrade(stats) + AvgBarsLosTrade(stats) + AvgBarsEvenTrade(stats), 0);
}

TEST(LedgerStatistics, PositionFiguresFromTheOpenEntries) {
  Series series;
  series.ledger.OpenEntries = {EntryLot{kBuy, 0, 0, 1.0, 10.0, 0.0},
                               EntryLot{kBuy, 1, 0, 2.0, 13.0, 0.0}};
  const SeriesView view = series.View();
  EXPECT_EQ(MarketPosition(series.ledger), 1);
  EXPECT_EQ(AvgEntryPrice(series.ledger), 12.0);  // (10 + 26) / 3
  EXPECT_EQ(PositionProfit(view), 90.0);          // (15 - 12) x 10 x 3
  EXPECT_EQ(EntryDate(view), 20240304);
  EXPECT_DOUBLE_EQ(LastEntryTime(view), 0.0931);
  EXPECT_EQ(BarsSinceLastEntry(view), 1);
  // Best case at the High: (16 - 10) x 10 + (16 - 13) x 20; worst at the Low: -20 - 100.
  EXPECT_EQ(MaxPositionProfit(view), 120.0);
  EXPECT_EQ(MaxPositionLoss(view), -120.0);
  EXPECT_EQ(MaxPositionProfit(series.View(true)), 90.0);  // single price: the Close
  series.ledger.Stats.BestOpenProfit = 200.0;
  EXPECT_EQ(MaxPositionProfit(view), 200.0);

  series.ledger.OpenEntries = {EntryLot{kSellShort, 1, 0, 2.0, 13.0, 0.0}};
  EXPECT_EQ(CurrentContracts(series.ledger), -2.0);
  EXPECT_EQ(ContractProfit(view), -20.0);     // (13 - 15) x 10
  EXPECT_EQ(MaxPositionProfit(view), 200.0);  // the record beats (13 - 8) x 20 = 100
  EXPECT_EQ(MaxPositionLoss(view), -60.0);    // (13 - 16) x 20
}

TEST(LedgerStatistics, ExitFiguresOnlyWhileFlat) {
  Series series;
  series.ledger.Trades = {TradeRecord{kBuy, kSell, 0, 1, 0, 1.0, 10.0, 12.0}};
  series.ledger.OpenEntries = {EntryLot{kBuy, 2, 0, 1.0, 15.0, 0.0}};
  const SeriesView view = series.View();
  EXPECT_EQ(ExitDate(view) + BarsSinceExit(view), 0);
  EXPECT_EQ(ExitPrice(series.ledger), 0.0);
  series.ledger.OpenEntries.clear();
  EXPECT_EQ(ExitPrice(series.ledger), 12.0);
  EXPECT_DOUBLE_EQ(ExitTime(view), 0.0931);
  EXPECT_EQ(BarsSinceExit(view), 1);
}

TEST(LedgerStatistics, RatiosOfTheTradeCounts) {
  LedgerStatistics stats;
  stats.NumWin = 3;
  stats.NumLos = 1;
  stats.TotalBarsWin = 8;
  EXPECT_EQ(PercentProfit(stats), 0.75);
  EXPECT_EQ(AvgBarsWinTrade(stats), 2);  // 8 / 3 in whole numbers
}

}  // namespace
}  // namespace sysfuncs::testing
