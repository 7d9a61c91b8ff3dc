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

// Appends to `trades` the trade of `lots` lots of `entry` closed at `price`, and returns it.
// `fullExitCost` is the exit cost of the exit's `exitLots` off their entries' trading day: a trade
// that takes all of them and is not waived the commission costs exactly that.
const TradeRecord& AppendTrade(std::vector<TradeRecord>& trades, const OrderContext& context,
                               const EntryLot& entry, double lots, double price, uint32_t origin,
                               double exitLots, double fullExitCost) {
  const bool isLong = IsLongKind(entry.Kind);
  const bool sameDay =
      context.Cost.SameDayExitFree && OnEntryTradingDay(context.MainBars, entry.Bar, context.Bar);
  const double entryCost = entry.Cost * lots / entry.Lots;
  const double exitCost = lots == exitLots && !sameDay
                              ? fullExitCost
                              : ExitCost(context.Terms, context.Cost, lots, price, sameDay);
  double grossProfit = 0.0;
  double netProfit = 0.0;
  double tradeReturn = 0.0;
  WithRuleKind(context.Terms.MarginKind, [&](auto kind) {
    grossProfit = PerLotProfitOfKind<kind()>(context.Terms, isLong, entry.Price, price) * lots;
    netProfit = grossProfit - entryCost - exitCost;
    tradeReturn = ReturnOnMarginOfKind<kind()>(context.Terms, context.Cost, netProfit, entry.Price);
  });
  const uint32_t exitKind = (isLong ? kSell : kBuyToCover) | origin;
  return trades.emplace_back(TradeRecord{entry.Kind, exitKind, entry.Bar, context.Bar,
                                         entry.DataIndex, lots, entry.Price, price, entryCost,
                                         exitCost, grossProfit, netProfit, tradeReturn});
}

// The account's booking: the shared rule, and the gross profit and loss by side.
void BookAccountValue(AccountStatistics& stats, double value, int32_t lots, int32_t bars,
                      bool isLong) {
  const int sign = BookValue(stats, value, lots, bars);
  if (sign > 0) (isLong ? stats.GrossProfitLong : stats.GrossProfitShort) += value;
  if (sign < 0) (isLong ? stats.GrossLossLong : stats.GrossLossShort) += value;
}

}  // namespace

void BookTrade(LedgerStatistics& stats, const TradeRecord& trade, bool percentMode) {
  BookValue(stats, BookedValue(trade, percentMode), WholeLotsOf(trade), BarsHeld(trade));
}

void BookTrade(AccountStatistics& stats, const TradeRecord& trade, bool percentMode) {
  BookAccountValue(stats, BookedValue(trade, percentMode), WholeLotsOf(trade), BarsHeld(trade),
                   IsLongKind(trade.EntryKind));
}

ExitTotals MatchExit(OrderContext& context, double lots, double price, uint32_t origin) {
  return MatchExit(context, lots, price, origin,
                   ExitCost(context.Terms, context.Cost, lots, price, false));
}

ExitTotals MatchExit(OrderContext& context, double lots, double price, uint32_t origin,
                     double fullExitCost) {
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
    const TradeRecord& trade = AppendTrade(context.Ledger.Trades, context, entry, tradeLots, price,
                                           origin, lots, fullExitCost);
    // Both blocks book the same value, lots and bars.
    const double value = BookedValue(trade, percentMode);
    const int32_t wholeLots = WholeLotsOf(trade);
    const int32_t bars = BarsHeld(trade);
    BookValue(context.Ledger.Stats, value, wholeLots, bars);
    BookAccountValue(context.Account.Stats, value, wholeLots, bars, IsLongKind(trade.EntryKind));
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
