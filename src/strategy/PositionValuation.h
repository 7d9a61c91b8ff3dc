// Valuation of a series' open position on the bar being checked out.
#ifndef SYSFUNCS_STRATEGY_POSITION_VALUATION_H_
#define SYSFUNCS_STRATEGY_POSITION_VALUATION_H_

#include "sysfuncs/HostData.h"

#include "strategy/LedgerStatistics.h"
#include "strategy/MoneyRules.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace sysfuncs {

// Margin, lots and open profit of a position, by side, at the bar's Close, and its best-case and
// worst-case open profit within the bar.
struct PositionValue {
  double LongMargin = 0.0;
  double ShortMargin = 0.0;
  double LongLots = 0.0;
  double ShortLots = 0.0;
  double OpenProfit = 0.0;  // at the Close
  double OpenReturn = 0.0;  // sum of the entries' profit at the Close x 100 / margin of one lot
  double BestProfit = 0.0;  // at the High for long entries, at the Low for short ones
  double WorstProfit = 0.0;

  PositionValue& operator+=(const PositionValue& other) {
    LongMargin += other.LongMargin;
    ShortMargin += other.ShortMargin;
    LongLots += other.LongLots;
    ShortLots += other.ShortLots;
    OpenProfit += other.OpenProfit;
    OpenReturn += other.OpenReturn;
    BestProfit += other.BestProfit;
    WorstProfit += other.WorstProfit;
    return *this;
  }
};

// Moves a series' running open-profit extremes out to a position's best and worst case; a flat
// series moves them towards 0.
inline void MoveOpenExtremes(LedgerStatistics& stats, double best, double worst) {
  stats.BestOpenProfit = std::max(stats.BestOpenProfit, best);
  stats.WorstOpenProfit = std::min(stats.WorstOpenProfit, worst);
}
inline void UpdateOpenExtremes(LedgerStatistics& stats, const PositionValue& value) {
  MoveOpenExtremes(stats, value.BestProfit, value.WorstProfit);
}

// The figures of one open entry on a bar.
struct EntryValue {
  bool IsLong = false;
  double Margin = 0.0;
  double AtClose = 0.0;  // open profit at the Close
  double Return = 0.0;   // AtClose x 100 / margin of one lot at the entry price
  double Best = 0.0;     // at the High for a long entry, at the Low for a short one
  double Worst = 0.0;
};

// Values `entry` on bar `barIndex` (`bar`) under rule kind kKind. An entry made on that bar, and
// every entry of a single-price series, is valued at the Close only; earlier entries reach the
// High and the Low.
template <int32_t kKind>
inline EntryValue ValueEntryOfKind(const EntryLot& entry, const QXBar& bar, int32_t barIndex,
                                   bool singlePriceBars, const ContractTerms& terms,
                                   const CostSetting& cost) {
  const bool isLong = IsLongKind(entry.Kind);
  const bool closeOnly = singlePriceBars || entry.Bar >= barIndex;
  const double high = closeOnly ? bar.Close : bar.High;
  const double low = closeOnly ? bar.Close : bar.Low;
  const double atClose =
      PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, bar.Close) * entry.Lots;
  const double atHigh = PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, high) * entry.Lots;
  const double atLow = PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, low) * entry.Lots;
  return EntryValue{
      .IsLong = isLong,
      .Margin = MarginOfKind<kKind>(terms, cost, entry.Lots, bar.Close),
      .AtClose = atClose,
      .Return = ReturnOnMarginOfKind<kKind>(terms, cost, atClose, entry.Price) * 100.0,
      .Best = isLong ? atHigh : atLow,
      .Worst = isLong ? atLow : atHigh};
}

// Adds an entry's figures to the sums of a position (or of several positions).
inline void AddEntryValue(PositionValue& value, const EntryValue& entry, double lots) {
  (entry.IsLong ? value.LongMargin : value.ShortMargin) += entry.Margin;
  (entry.IsLong ? value.LongLots : value.ShortLots) += lots;
  value.OpenProfit += entry.AtClose;
  value.OpenReturn += entry.Return;
  value.BestProfit += entry.Best;
  value.WorstProfit += entry.Worst;
}

// Values `entries` on bar `barIndex` (`bar`): the sums of their ValueEntryOfKind, in list order.
// The rule is picked once per position, not once per entry.
inline PositionValue ValuePosition(const std::vector<EntryLot>& entries, const QXBar& bar,
                                   int32_t barIndex, bool singlePriceBars,
                                   const ContractTerms& terms, const CostSetting& cost) {
  return WithRuleKind(terms.MarginKind, [&](auto kind) {
    PositionValue value;
    for (const EntryLot& entry : entries) {
      AddEntryValue(value,
                    ValueEntryOfKind<kind()>(entry, bar, barIndex, singlePriceBars, terms, cost),
                    entry.Lots);
    }
    return value;
  });
}

// Adds a position of one entry to `total` and moves its series' open-profit extremes, as adding
// its ValuePosition and updating the extremes with that would, without the position's own sums:
// a sum of one figure from 0 is that figure, except that -0 becomes +0, and a total (which is
// never -0) and the extremes take either alike. Inline: most positions hold one entry.
inline void AddOneEntryPosition(PositionValue& total, LedgerStatistics& stats,
                                const EntryLot& entry, const QXBar& bar, int32_t barIndex,
                                bool singlePriceBars, const ContractTerms& terms,
                                const CostSetting& cost) {
  WithRuleKind(terms.MarginKind, [&](auto kind) {
    const EntryValue value =
        ValueEntryOfKind<kind()>(entry, bar, barIndex, singlePriceBars, terms, cost);
    AddEntryValue(total, value, entry.Lots);
    MoveOpenExtremes(stats, value.Best, value.Worst);
  });
}

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_POSITION_VALUATION_H_
