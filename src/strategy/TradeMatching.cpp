#include "strategy/TradeMatching.h"

#include "strategy/LedgerStatistics.h"
#include "util/DateCodec.h"
#include "util/TradingDay.h"

#include <algorithm>
#include <cmath>

namespace sysfuncs {
namespace {

// Lots are whole numbers held as doubles: a lot count is taken up to these tolerances.
constexpr double kPartialFillTolerance = 0.1;
constexpr double kExactFillTolerance = 0.01;

// The booking rule shared by a ledger's and the account's statistics. Returns the value's sign:
// 1 win, -1 loss, 0 even.
template <class Block>
int BookValue(Block& stats, double value, int32_t lots, int32_t bars) {
  stats.LargestWin = std::max(stats.LargestWin, value);
  stats.LargestLos = std::min(stats.LargestLos, value);
  if (value > kAmountTolerance) {
    stats.NumWin += lots;
    stats.TotalBarsWin += bars;
    stats.GrossProfit += value;
    stats.WinRun += lots;
    stats.LosRun = 0;
    stats.MaxConsecWin = std::max(stats.MaxConsecWin, stats.WinRun);
    return 1;
  }
  if (value < -kAmountTolerance) {
    stats.NumLos += lots;
    stats.TotalBarsLos += bars;
    stats.GrossLoss += value;
    stats.LosRun += lots;
    stats.WinRun = 0;
    stats.MaxConsecLos = std::max(stats.MaxConsecLos, stats.LosRun);
    return -1;
  }
  stats.NumEven += lots;
  stats.TotalBarsEven += bars;
  return 0;
}

int32_t WholeLotsOf(const TradeRecord& trade) { return static_cast<int32_t>(trade.Lots); }

int32_t BarsHeld(const TradeRecord& trade) {
  return (trade.ExitBar - trade.EntryBar) * WholeLotsOf(trade);
}

// Whether the entry and exit bars of a trade lie on one trading day, by the main series' bar
// times whichever series the trade belongs to.
bool OnEntryTradingDay(const std::vector<QXBar>& mainBars, int32_t entryBar, int32_t exitBar) {
  const size_t count = mainBars.size();
  if (static_cast<size_t>(entryBar) >= count || static_cast<size_t>(exitBar) >= count) return false;
  return SameTradingDay(InstantSeconds(mainBars[entryBar].Time),
                        InstantSeconds(mainBars[exitBar].Time));
}

TradeRecord MakeTrade(const OrderContext& context, const EntryLot& entry, double lots, double price,
                      uint32_t origin) {
  const bool isLong = IsLongKind(entry.Kind);
  const bool sameDay =
      context.Cost.SameDayExitFree && OnEntryTradingDay(context.MainBars, entry.Bar, context.Bar);
  TradeRecord trade;
  trade.EntryKind = entry.Kind;
  trade.ExitKind = (isLong ? kSell : kBuyToCover) | origin;
  trade.EntryBar = entry.Bar;
  trade.ExitBar = context.Bar;
  trade.DataIndex = entry.DataIndex;
  trade.Lots = lots;
  trade.EntryPrice = entry.Price;
  trade.ExitPrice = price;
  trade.EntryCost = entry.Cost * lots / entry.Lots;
  trade.ExitCost = ExitCost(context.Terms, context.Cost, lots, price, sameDay);
  trade.GrossProfit = PerLotProfit(context.Terms, isLong, entry.Price, price) * lots;
  trade.NetProfit = trade.GrossProfit - trade.EntryCost - trade.ExitCost;
  trade.Return = ReturnOnMargin(context.Terms, context.Cost, trade.NetProfit, entry.Price);
  return trade;
}

}  // namespace

void BookTrade(LedgerStatistics& stats, const TradeRecord& trade, bool percentMode) {
  BookValue(stats, BookedValue(trade, percentMode), WholeLotsOf(trade), BarsHeld(trade));
}

void BookTrade(AccountStatistics& stats, const TradeRecord& trade, bool percentMode) {
  const double value = BookedValue(trade, percentMode);
  const int sign = BookValue(stats, value, WholeLotsOf(trade), BarsHeld(trade));
  const bool isLong = IsLongKind(trade.EntryKind);
  if (sign > 0) (isLong ? stats.GrossProfitLong : stats.GrossProfitShort) += value;
  if (sign < 0) (isLong ? stats.GrossLossLong : stats.GrossLossShort) += value;
}

ExitTotals MatchExit(OrderContext& context, double lots, double price, uint32_t origin) {
  std::vector<EntryLot>& entries = context.Ledger.OpenEntries;
  const bool lifo = context.Settings.LifoExits;
  const bool percentMode = context.Settings.PercentMode;
  ExitTotals totals;
  double remaining = lots;
  size_t consumed = 0;  // entries used up, counted from the end the walk starts at
  while (consumed < entries.size()) {
    EntryLot& entry = lifo ? entries[entries.size() - 1 - consumed] : entries[consumed];
    const double held = entry.Lots;
    // A trade takes the rest of the exit unless that leaves less than 0.1 lot of the entry.
    const double tradeLots = held - remaining > kPartialFillTolerance ? remaining : held;
    const TradeRecord trade = MakeTrade(context, entry, tradeLots, price, origin);
    BookTrade(context.Ledger.Stats, trade, percentMode);
    BookTrade(context.Account.Stats, trade, percentMode);
    context.Ledger.Trades.push_back(trade);
    context.Account.Trades.push_back(trade);
    totals.ExitCost += trade.ExitCost;
    totals.NetProfit += trade.NetProfit;
    totals.Return += trade.Return;

    if (std::fabs(held - remaining) < kExactFillTolerance) {
      ++consumed;
      break;
    }
    if (remaining > held) {
      remaining -= held;
      ++consumed;
      continue;
    }
    // The entry stays with what the exit left of it, and the matching share of its cost.
    entry.Lots = held - remaining;
    entry.Cost *= (held - remaining) / held;
    break;
  }
  if (lifo) {
    entries.erase(entries.end() - static_cast<std::ptrdiff_t>(consumed), entries.end());
  } else {
    entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(consumed));
  }
  return totals;
}

}  // namespace sysfuncs
