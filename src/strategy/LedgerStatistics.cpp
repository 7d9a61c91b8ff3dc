#include "strategy/LedgerStatistics.h"

#include "util/DateCodec.h"

#include <algorithm>
#include <cmath>

namespace sysfuncs {
namespace {

int64_t BarTime(const SeriesView& series, int32_t bar) {
  return static_cast<size_t>(bar) < series.Bars.size() ? series.Bars[bar].Time : 0;
}

bool IsFlat(const StrategyLedger& ledger) { return ledger.OpenEntries.empty(); }

// The last trade, when the series is flat and has one.
const TradeRecord* LastExit(const StrategyLedger& ledger) {
  return IsFlat(ledger) && !ledger.Trades.empty() ? &ledger.Trades.back() : nullptr;
}

// Sum over the long and short open entries of the profit at the High or the Low: the favourable
// price when `favourable`, else the adverse one. A single-price series reads the Close for both.
double OpenProfitAtExtreme(const SeriesView& series, bool favourable) {
  const double high = series.SinglePriceBars ? series.Bar.Close : series.Bar.High;
  const double low = series.SinglePriceBars ? series.Bar.Close : series.Bar.Low;
  double sum = 0.0;
  for (const EntryLot& entry : series.Ledger.OpenEntries) {
    const uint32_t kind = KindByte(entry.Kind);
    if (kind != kBuy && kind != kSellShort) continue;
    const bool isLong = kind == kBuy;
    const double price = isLong == favourable ? high : low;
    sum += PerLotProfit(series.Terms, isLong, entry.Price, price) * entry.Lots;
  }
  return sum;
}

}  // namespace

int32_t EntryDate(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0;
  return ToFormulaDate(BarTime(series, series.Ledger.OpenEntries.front().Bar));
}

double EntryTime(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0.0;
  return ToFormulaTime(BarTime(series, series.Ledger.OpenEntries.front().Bar));
}

double EntryPrice(const StrategyLedger& ledger) {
  return IsFlat(ledger) ? 0.0 : ledger.OpenEntries.front().Price;
}

int32_t LastEntryDate(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0;
  return ToFormulaDate(BarTime(series, series.Ledger.OpenEntries.back().Bar));
}

double LastEntryTime(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0.0;
  return ToFormulaTime(BarTime(series, series.Ledger.OpenEntries.back().Bar));
}

double LastEntryPrice(const StrategyLedger& ledger) {
  return IsFlat(ledger) ? 0.0 : ledger.OpenEntries.back().Price;
}

int32_t ExitDate(const SeriesView& series) {
  const TradeRecord* trade = LastExit(series.Ledger);
  return trade != nullptr ? ToFormulaDate(BarTime(series, trade->ExitBar)) : 0;
}

double ExitTime(const SeriesView& series) {
  const TradeRecord* trade = LastExit(series.Ledger);
  return trade != nullptr ? ToFormulaTime(BarTime(series, trade->ExitBar)) : 0.0;
}

double ExitPrice(const StrategyLedger& ledger) {
  const TradeRecord* trade = LastExit(ledger);
  return trade != nullptr ? trade->ExitPrice : 0.0;
}

double AvgEntryPrice(const StrategyLedger& ledger) {
  double lots = 0.0;
  double value = 0.0;
  for (const EntryLot& entry : ledger.OpenEntries) {
    lots += entry.Lots;
    value += entry.Lots * entry.Price;
  }
  return std::fabs(lots) <= kAmountTolerance ? 0.0 : value / std::fabs(lots);
}

int32_t BarsSinceEntry(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0;
  return series.CurrentBar - series.Ledger.OpenEntries.front().Bar;
}

int32_t BarsSinceLastEntry(const SeriesView& series) {
  if (IsFlat(series.Ledger)) return 0;
  return series.CurrentBar - series.Ledger.OpenEntries.back().Bar;
}

int32_t BarsSinceExit(const SeriesView& series) {
  const TradeRecord* trade = LastExit(series.Ledger);
  return trade != nullptr ? series.CurrentBar - trade->ExitBar : 0;
}

double ContractProfit(const SeriesView& series) {
  const int32_t position = MarketPosition(series.Ledger);
  if (IsFlat(series.Ledger)) return 0.0;
  return PerLotProfit(series.Terms, position > 0, AvgEntryPrice(series.Ledger), series.Bar.Close);
}

double PositionProfit(const SeriesView& series) {
  return ContractProfit(series) * std::fabs(CurrentContracts(series.Ledger));
}

double MaxPositionProfit(const SeriesView& series) {
  return std::max(series.Ledger.Stats.BestOpenProfit, OpenProfitAtExtreme(series, true));
}

double MaxPositionLoss(const SeriesView& series) {
  return std::min(series.Ledger.Stats.WorstOpenProfit, OpenProfitAtExtreme(series, false));
}

}  // namespace sysfuncs
