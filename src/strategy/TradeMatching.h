// Matching an exit against the open entries of a position: one trade record per entry touched,
// booked into the series' and the account's statistics.
#ifndef SYSFUNCS_STRATEGY_TRADE_MATCHING_H_
#define SYSFUNCS_STRATEGY_TRADE_MATCHING_H_

#include "sysfuncs/HostData.h"

#include "strategy/MoneyRules.h"

#include <cstdint>
#include <vector>

namespace sysfuncs {

// The series an order executes on and the rules it follows: references into the host's records,
// valid for the one order.
struct OrderContext {
  StrategyLedger& Ledger;
  StrategyAccount& Account;
  const CostSetting& Cost;
  ContractTerms Terms;
  const CQXBaseData& Settings;         // the instance's strategy settings
  const std::vector<QXBar>& MainBars;  // the main series: its bar times decide same-day exits
  int32_t Bar = 0;                     // CurrentBar
  int64_t DataIndex = 0;               // CurrentData
};

// Totals of the trades one exit produced.
struct ExitTotals {
  double ExitCost = 0.0;
  double NetProfit = 0.0;
  double Return = 0.0;  // sum of the trades' returns on margin (a fraction, not percent)
};

// The value a trade is booked with: its net profit, or its return in percent in PercentMode.
inline double BookedValue(const TradeRecord& trade, bool percentMode) {
  return percentMode ? trade.Return * 100.0 : trade.NetProfit;
}

// Books a trade's value into a statistics block. With q the whole lots of the trade and
// h = (ExitBar - EntryBar) x q: the largest win and loss follow every value; a value above
// 0.0001 counts q wins and h bars, adds to the gross profit and to the winning run and ends the
// losing run; below -0.0001 the mirror; anything else counts q even trades and leaves the runs.
void BookTrade(LedgerStatistics& stats, const TradeRecord& trade, bool percentMode);
// The same, also splitting the gross profit and loss by the side of the closed position.
void BookTrade(AccountStatistics& stats, const TradeRecord& trade, bool percentMode);

// Closes `lots` lots (between 1 and the position) at `price` on bar `context.Bar`: walks the open
// entries oldest first (newest first with LIFO exits), records and books one trade per entry
// touched and removes or shrinks the entries consumed. `origin` is or-ed into the trades' exit
// kinds. Realised capital is left to the caller.
ExitTotals MatchExit(OrderContext& context, double lots, double price, uint32_t origin);
// The same, for a caller that has the exit's cost at hand: `fullExitCost` is
// ExitCost(context.Terms, context.Cost, lots, price, false).
ExitTotals MatchExit(OrderContext& context, double lots, double price, uint32_t origin,
                     double fullExitCost);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_TRADE_MATCHING_H_
