// Position and trade statistics of one series. Each statistic is a small function of the ledger
// (or of its statistics block) that the facade and the end-of-run report share; its comment gives
// the formula and the value with no position and no trades.
//
// The trade statistics are templates over the statistics block, so that they read a series'
// LedgerStatistics and the account's AccountStatistics alike. Counts, runs and bars are weighted
// by lots.
#ifndef SYSFUNCS_STRATEGY_LEDGER_STATISTICS_H_
#define SYSFUNCS_STRATEGY_LEDGER_STATISTICS_H_

#include "sysfuncs/HostData.h"

#include "strategy/MoneyRules.h"

#include <cstdint>
#include <vector>

namespace sysfuncs {

// What the position statistics of one series read: its ledger, its bars, the bar in progress and
// its contract terms.
struct SeriesView {
  const StrategyLedger& Ledger;
  const std::vector<QXBar>& Bars;
  const QXBar& Bar;  // the series' bar at CurrentBar
  int32_t CurrentBar = 0;
  ContractTerms Terms;
  bool SinglePriceBars = false;  // High and Low read as the Close
};

inline uint32_t KindByte(uint32_t kind) { return kind & 0xFF; }
inline bool IsLongKind(uint32_t kind) { return KindByte(kind) == kBuy; }

// --- Position.

// 1 when the first open entry is a Buy, -1 when it is a SellShort, else 0; 0 when flat.
inline int32_t MarketPosition(const StrategyLedger& ledger) { return ledger.Position(); }
// Sum of the open entries' lots, oldest first; 0 when flat.
inline double OpenLots(const StrategyLedger& ledger) {
  double lots = 0.0;
  for (const EntryLot& entry : ledger.OpenEntries) lots += entry.Lots;
  return lots;
}
// Signed sum of the open lots: positive long, negative short; 0 when flat.
inline double CurrentContracts(const StrategyLedger& ledger) {
  const double lots = OpenLots(ledger);
  return MarketPosition(ledger) < 0 ? -lots : lots;
}
// Number of open entries; 0 when flat.
inline int32_t CurrentEntries(const StrategyLedger& ledger) {
  return static_cast<int32_t>(ledger.OpenEntries.size());
}
// Date (YYYYMMDD) and time (0.HHMMSS) of the first open entry's bar, and its price; 0 when flat.
int32_t EntryDate(const SeriesView& series);
double EntryTime(const SeriesView& series);
double EntryPrice(const StrategyLedger& ledger);
// The same of the last open entry; 0 when flat.
int32_t LastEntryDate(const SeriesView& series);
double LastEntryTime(const SeriesView& series);
double LastEntryPrice(const StrategyLedger& ledger);
// Date, time and price of the last trade's exit while flat; 0 while a position is open or
// without trades.
int32_t ExitDate(const SeriesView& series);
double ExitTime(const SeriesView& series);
double ExitPrice(const StrategyLedger& ledger);
// Sum(lots x price) / |sum(lots)| over the open entries; 0 when |sum(lots)| <= 0.0001.
double AvgEntryPrice(const StrategyLedger& ledger);
// CurrentBar - bar of the first (last) open entry; 0 when flat.
int32_t BarsSinceEntry(const SeriesView& series);
int32_t BarsSinceLastEntry(const SeriesView& series);
// CurrentBar - the last trade's exit bar while flat; 0 while a position is open or without trades.
int32_t BarsSinceExit(const SeriesView& series);
// Profit of one lot from the average entry price to the Close, for the position's side; 0 flat.
double ContractProfit(const SeriesView& series);
// ContractProfit x |CurrentContracts|; 0 when flat.
double PositionProfit(const SeriesView& series);
// max(BestOpenProfit, sum of the open entries' profits at the High (long) or Low (short)).
double MaxPositionProfit(const SeriesView& series);
// min(WorstOpenProfit, sum of the open entries' profits at the Low (long) or High (short)).
double MaxPositionLoss(const SeriesView& series);
// Signed contracts after the latest entry; 0 after any exit and with no entry.
inline double MaxContracts(const LedgerStatistics& stats) { return stats.MaxContractsRecord; }
// Signed contracts of the largest magnitude ever held; 0 with no entry.
inline double MaxContractsHeld(const LedgerStatistics& stats) {
  return stats.MaxContractsHeldRecord;
}
// Highest number of open entries ever held; 0 with no entry.
inline int32_t MaxEntries(const LedgerStatistics& stats) { return stats.MaxEntriesRecord; }

// --- Trades, for a ledger's or the account's statistics block.

// Winning, losing and even trades; 0 with no trades.
template <class Block>
int32_t NumWinTrades(const Block& stats) {
  return stats.NumWin;
}
template <class Block>
int32_t NumLosTrades(const Block& stats) {
  return stats.NumLos;
}
template <class Block>
int32_t NumEvenTrades(const Block& stats) {
  return stats.NumEven;
}
// NumWin + NumLos + NumEven; 0 with no trades.
template <class Block>
int32_t TotalTrades(const Block& stats) {
  return stats.NumWin + stats.NumLos + stats.NumEven;
}
// NumWin / TotalTrades as a fraction between 0 and 1; 0 with fewer than one trade.
template <class Block>
double PercentProfit(const Block& stats) {
  const int32_t total = TotalTrades(stats);
  return total < 1 ? 0.0 : static_cast<double>(stats.NumWin) / total;
}
// Bars held by winning, losing and even trades; 0 with no trades.
template <class Block>
int32_t TotalBarsWinTrades(const Block& stats) {
  return stats.TotalBarsWin;
}
template <class Block>
int32_t TotalBarsLosTrades(const Block& stats) {
  return stats.TotalBarsLos;
}
template <class Block>
int32_t TotalBarsEvenTrades(const Block& stats) {
  return stats.TotalBarsEven;
}
// TotalBarsWin / NumWin in whole numbers; 0 with no winning trade (the same for losing and even).
template <class Block>
int32_t AvgBarsWinTrade(const Block& stats) {
  return stats.NumWin == 0 ? 0 : stats.TotalBarsWin / stats.NumWin;
}
template <class Block>
int32_t AvgBarsLosTrade(const Block& stats) {
  return stats.NumLos == 0 ? 0 : stats.TotalBarsLos / stats.NumLos;
}
template <class Block>
int32_t AvgBarsEvenTrade(const Block& stats) {
  return stats.NumEven == 0 ? 0 : stats.TotalBarsEven / stats.NumEven;
}
// Largest trade result (never below 0) and smallest (never above 0); 0 with no trades.
template <class Block>
double LargestWinTrade(const Block& stats) {
  return stats.LargestWin;
}
template <class Block>
double LargestLosTrade(const Block& stats) {
  return stats.LargestLos;
}
// Sum of the winning results, sum of the losing results (<= 0), and both together; 0 with no
// trades.
template <class Block>
double GrossProfit(const Block& stats) {
  return stats.GrossProfit;
}
template <class Block>
double GrossLoss(const Block& stats) {
  return stats.GrossLoss;
}
template <class Block>
double NetProfit(const Block& stats) {
  return stats.GrossProfit + stats.GrossLoss;
}
// Longest runs of winning and of losing trades; 0 with no trades.
template <class Block>
int32_t MaxConsecWinners(const Block& stats) {
  return stats.MaxConsecWin;
}
template <class Block>
int32_t MaxConsecLosers(const Block& stats) {
  return stats.MaxConsecLos;
}

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_LEDGER_STATISTICS_H_
