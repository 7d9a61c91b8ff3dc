#include "strategy/PositionValuation.h"

#include "strategy/LedgerStatistics.h"

namespace sysfuncs {

PositionValue ValuePosition(const std::vector<EntryLot>& entries, const QXBar& bar,
                            int32_t barIndex, bool singlePriceBars, const ContractTerms& terms,
                            const CostSetting& cost) {
  PositionValue value;
  for (const EntryLot& entry : entries) {
    const bool isLong = IsLongKind(entry.Kind);
    const bool closeOnly = singlePriceBars || entry.Bar >= barIndex;
    const double high = closeOnly ? bar.Close : bar.High;
    const double low = closeOnly ? bar.Close : bar.Low;
    const double atClose = PerLotProfit(terms, isLong, entry.Price, bar.Close) * entry.Lots;
    const double atHigh = PerLotProfit(terms, isLong, entry.Price, high) * entry.Lots;
    const double atLow = PerLotProfit(terms, isLong, entry.Price, low) * entry.Lots;
    const double margin = Margin(terms, cost, entry.Lots, bar.Close);
    (isLong ? value.LongMargin : value.ShortMargin) += margin;
    (isLong ? value.LongLots : value.ShortLots) += entry.Lots;
    value.OpenProfit += atClose;
    value.OpenReturn += ReturnOnMargin(terms, cost, atClose, entry.Price) * 100.0;
    value.BestProfit += isLong ? atHigh : atLow;
    value.WorstProfit += isLong ? atLow : atHigh;
  }
  return value;
}

}  // namespace sysfuncs
