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

// ValuePosition under rule kind kKind of the money rules: the rule is picked once per position,
// not once per value.
template <int32_t kKind>
inline PositionValue ValueEntriesOfKind(const std::vector<EntryLot>& entries, const QXBar& bar,
                                        int32_t barIndex, bool singlePriceBars,
                                        const ContractTerms& terms, const CostSetting& cost) {
  PositionValue value;
  for (const EntryLot& entry : entries) {
    const bool isLong = IsLongKind(entry.Kind);
    const bool closeOnly = singlePriceBars || entry.Bar >= barIndex;
    const double high = closeOnly ? bar.Close : bar.High;
    const double low = closeOnly ? bar.Close : bar.Low;
    const double atClose =
        PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, bar.Close) * entry.Lots;
    const double atHigh = PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, high) * entry.Lots;
    const double atLow = PerLotProfitOfKind<kKind>(terms, isLong, entry.Price, low) * entry.Lots;
    const double margin = MarginOfKind<kKind>(terms, cost, entry.Lots, bar.Close);
    (isLong ? value.LongMargin : value.ShortMargin) += margin;
    (isLong ? value.LongLots : value.ShortLots) += entry.Lots;
    value.OpenProfit += atClose;
    value.OpenReturn += ReturnOnMarginOfKind<kKind>(terms, cost, atClose, entry.Price) * 100.0;
    value.BestProfit += isLong ? atHigh : atLow;
    value.WorstProfit += isLong ? atLow : atHigh;
  }
  return value;
}

// Values `entries` on bar `barIndex` (`bar`). An entry made on that bar, and every entry of a
// single-price series, is valued at the Close only; earlier entries reach the High and the Low.
// Inline: the checkout values every open position on every bar.
inline PositionValue ValuePosition(const std::vector<EntryLot>& entries, const QXBar& bar,
                                   int32_t barIndex, bool singlePriceBars,
                                   const ContractTerms& terms, const CostSetting& cost) {
  return WithRuleKind(terms.MarginKind, [&](auto kind) {
    return ValueEntriesOfKind<kind()>(entries, bar, barIndex, singlePriceBars, terms, cost);
  });
}

// Moves the series' running open-profit extremes out to the position's best and worst case; a
// flat series moves them towards 0.
inline void UpdateOpenExtremes(LedgerStatistics& stats, const PositionValue& value) {
  stats.BestOpenProfit = std::max(stats.BestOpenProfit, value.BestProfit);
  stats.WorstOpenProfit = std::min(stats.WorstOpenProfit, value.WorstProfit);
}

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_POSITION_VALUATION_H_
