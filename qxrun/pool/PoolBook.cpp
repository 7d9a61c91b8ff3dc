#include "qxrun/pool/PoolBook.h"

#include <algorithm>

namespace qxrun {
namespace {

constexpr int32_t kNoDecision = -999;

struct Holding {
  int8_t Side = 0;
  int32_t EntryBar = 0;
  double EntryPrice = 0.0;
};

}  // namespace

std::vector<int64_t> PoolTimes(const std::vector<const std::vector<QXBar>*>& series) {
  std::vector<int64_t> times;
  for (const std::vector<QXBar>* bars : series) {
    for (const QXBar& bar : *bars) times.push_back(bar.Time);
  }
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  return times;
}

PoolBook BookPool(const std::vector<PoolSymbol>& symbols, double lots, double initCapital) {
  PoolBook book;
  std::vector<const std::vector<QXBar>*> series;
  for (const PoolSymbol& symbol : symbols) series.push_back(symbol.Bars);
  book.Times = PoolTimes(series);
  const size_t count = symbols.size();
  std::vector<size_t> next(count, 0);  // each symbol's next bar
  std::vector<Holding> holdings(count);
  std::vector<double> lastClose(count, 0.0);
  double capital = initCapital;
  const auto close = [&](size_t symbol, int32_t bar, double price, uint32_t origin) {
    Holding& holding = holdings[symbol];
    TradeRecord& trade = book.Trades.emplace_back();
    trade.EntryKind = holding.Side > 0 ? kBuy : kSellShort;
    trade.ExitKind = (holding.Side > 0 ? kSell : kBuyToCover) | origin;
    trade.EntryBar = holding.EntryBar;
    trade.ExitBar = bar;
    trade.DataIndex = static_cast<int64_t>(symbol);
    trade.Lots = lots;
    trade.EntryPrice = holding.EntryPrice;
    trade.ExitPrice = price;
    const double money = lots * symbols[symbol].LotValue;
    trade.GrossProfit = (price - holding.EntryPrice) * holding.Side * money;
    trade.NetProfit = trade.GrossProfit;
    // Return on the value of the position at its entry.
    const double margin = holding.EntryPrice * money;
    trade.Return = margin > 0.0 ? trade.NetProfit / margin : 0.0;
    capital += trade.NetProfit;
    holding.Side = 0;
  };

  for (size_t date = 0; date < book.Times.size(); ++date) {
    const int64_t time = book.Times[date];
    for (size_t symbol = 0; symbol < count; ++symbol) {
      const std::vector<QXBar>& bars = *symbols[symbol].Bars;
      if (next[symbol] >= bars.size() || bars[next[symbol]].Time != time) continue;
      const int32_t bar = static_cast<int32_t>(next[symbol]++);
      const double price = bars[static_cast<size_t>(bar)].Close;
      lastClose[symbol] = price;
      const auto record = symbols[symbol].CheckPoints->find(time);
      if (record == symbols[symbol].CheckPoints->end()) continue;
      const int32_t signal = record->second.Signal;
      if (signal == kNoDecision) continue;
      // A disabled decision, or one that is neither long nor short, holds nothing.
      const int8_t target = record->second.Enabled != 0 && (signal == 1 || signal == -1)
                                ? static_cast<int8_t>(signal)
                                : 0;
      Holding& holding = holdings[symbol];
      if (holding.Side == target) continue;
      if (holding.Side != 0) close(symbol, bar, price, 0);
      if (target != 0) holding = Holding{target, bar, price};
    }
    EquityPoint& point = book.EquityCurve.emplace_back();
    point.Bar = static_cast<int32_t>(date);
    point.Time = time;
    double open = 0.0;
    std::vector<int8_t>& held = book.Held.emplace_back(count, 0);
    for (size_t symbol = 0; symbol < count; ++symbol) {
      const Holding& holding = holdings[symbol];
      held[symbol] = holding.Side;
      if (holding.Side == 0) continue;
      open +=
          (lastClose[symbol] - holding.EntryPrice) * holding.Side * lots * symbols[symbol].LotValue;
      (holding.Side > 0 ? point.LongLots : point.ShortLots) += lots;
    }
    point.Capital = capital;
    point.Equity = capital + open;
    point.Available = point.Equity;
  }
  for (size_t symbol = 0; symbol < count; ++symbol) {
    if (holdings[symbol].Side != 0) {
      close(symbol, static_cast<int32_t>(symbols[symbol].Bars->size()) - 1, lastClose[symbol],
            kOriginSettlement);
    }
  }
  if (!book.EquityCurve.empty()) book.EquityCurve.back().Capital = capital;
  return book;
}

}  // namespace qxrun
