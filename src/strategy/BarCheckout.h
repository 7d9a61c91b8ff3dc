// The per-bar checkout of the strategy: the pieces that work on plain records.
#ifndef SYSFUNCS_STRATEGY_BAR_CHECKOUT_H_
#define SYSFUNCS_STRATEGY_BAR_CHECKOUT_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <map>
#include <vector>

namespace sysfuncs {

// Whether a rollover list (in bar order) holds a rollover that falls in bar `bar`.
bool HasRolloverOnBar(const std::vector<RolloverPoint>& rollovers, int32_t bar);

// The stock-picking decision to follow through after bar `bar`: the check point with the
// greatest key when it was made on `bar`, is a decision (not -999) and is enabled; else null.
const CheckPointRecord* FollowThroughDecision(const std::map<int64_t, CheckPointRecord>& points,
                                              int32_t bar);

// Sum of the costs of a series' orders executed on `bar` (the orders at the end of the list).
double CostOfBarOrders(const std::vector<OrderRecord>& orders, int32_t bar);

// Whether a series executed orders on `bar`: its order list ends with one of that bar.
inline bool HasOrdersOnBar(const StrategyLedger& ledger, int32_t bar) {
  return !ledger.Orders.empty() && ledger.Orders.back().Bar == bar;
}

// Records the orders every series executed on `bar` in the account's BarOrders, in series order,
// in place of those recorded for it before. REQUIRES: some ledger HasOrdersOnBar.
void RecordBarOrders(StrategyAccount& account, const std::vector<StrategyLedger>& ledgers,
                     int32_t bar);

// Removes the recorded orders of `bar` when they end the list: a bar without orders that may
// have had some when it was evaluated before. A bar with none recorded costs one test.
inline void ForgetBarOrders(std::vector<OrderRecord>& barOrders, int32_t bar) {
  while (!barOrders.empty() && barOrders.back().Bar == bar) barOrders.pop_back();
}

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_BAR_CHECKOUT_H_
