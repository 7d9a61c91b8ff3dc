// The start of a run, the copy of the state the last bar starts from, and the roll-back that
// evaluates a bar anew.
#ifndef SYSFUNCS_STRATEGY_STRATEGY_STATE_H_
#define SYSFUNCS_STRATEGY_STRATEGY_STATE_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <vector>

namespace sysfuncs {

// Starts the account over: realised capital InitCapital; Peak and Trough InitCapital (0 in
// PercentMode); returns, drawdowns and portfolio statistics 0; episode, trade and bar-order lists
// empty; the report detail's times `firstBarTime`, its drawdown basis extremes the Peak and its
// equity extremes InitCapital.
void ResetAccount(StrategyAccount& account, double initCapital, bool percentMode,
                  int64_t firstBarTime);

// Empties a ledger's orders, trades, open entries and saved open entries and zeroes its
// statistics block. The block's saved copy stays: a roll-back after a reset brings back the
// statistics saved on the last-but-one bar, as the roll-back trusts its copies.
void ResetLedger(StrategyLedger& ledger);

// Empties the curve, reserves room for `barCount` points and puts one point on it for each bar
// before `currentBar`: its index and time, Capital and Equity `initCapital`, all else 0.
void PrefillEquityCurve(std::vector<EquityPoint>& curve, const std::vector<QXBar>& mainBars,
                        int32_t barCount, int32_t currentBar, double initCapital);

// Copies aside the account's statistics block and, for each ledger, its statistics block and
// open entries: the state the last bar starts from.
void SaveLastBarStart(StrategyAccount& account, std::vector<StrategyLedger>& ledgers);

// Scans `records` from the end, by the bar `barOf` gives: a record of `bar` removes the list's
// last record, a record of an earlier bar ends the scan, a later one is passed over. With the
// list in bar order this drops exactly the records of `bar`; the scan keeps this form on purpose.
template <class Record, class BarOf>
void DropRecordsOfBar(std::vector<Record>& records, int32_t bar, BarOf barOf) {
  for (size_t index = records.size(); index > 0;) {
    --index;
    const int32_t recordBar = barOf(records[index]);
    if (recordBar < bar) return;
    if (recordBar == bar) records.pop_back();
  }
}

// Trades closed on `bar`, by the scan of DropRecordsOfBar.
void DropTradesOfBar(std::vector<TradeRecord>& trades, int32_t bar);

// Takes a ledger back to the start of `bar`: statistics and open entries from their saved copies,
// then the orders and trades of `bar` dropped. Shallow on purpose: only `bar`'s records are
// trusted to be newer than the copies.
void RollBackLedger(StrategyLedger& ledger, int32_t bar);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_STRATEGY_STATE_H_
