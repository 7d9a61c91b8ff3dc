// What the strategy engine guarantees after every call and every checkout, whatever a formula
// asks: each check states its rule and aborts the process (a finding) when the rule is broken.
#ifndef SYSFUNCS_TESTS_FUZZ_ENGINE_INVARIANTS_H_
#define SYSFUNCS_TESTS_FUZZ_ENGINE_INVARIANTS_H_

#include "sysfuncs/sysfuncs.h"

#include <cstdint>
#include <vector>

namespace sysfuncs::fuzz {

// What the harness knows of the run beyond the host data object.
struct RunFacts {
  int32_t BarCount = 0;
  std::vector<double> TickSizes;  // by data source
  // A re-evaluation happened: the realised capital and the account's statistics then keep the
  // trades of the bar evaluated anew (a roll-back restores the series' records, not the account's
  // money or statistics).
  bool Reevaluated = false;
  // A bar before the last was evaluated anew: the roll-back restored statistics saved on the
  // last-but-one bar (or none), so they no longer sum the trade list.
  bool StaleRollback = false;
};

// The positions of every series before a call that may order, to check the orders it adds.
struct OrderMark {
  std::vector<size_t> OrderCounts;
  std::vector<double> Contracts;
};
OrderMark MarkOrders(const CQXBaseData& data);

// Every order added since `mark`, replayed over the position it started from: an exit closes no
// more than is held and only on the side held, an entry adds to its own side, and the replay
// ends at the position the ledger holds.
void CheckNewOrders(const CQXBaseData& data, const OrderMark& mark);

// The position and trade statistics of the addressed series, and the portfolio statistics: each
// finite.
void CheckSeriesStatistics(CSystemFuncs& funcs, size_t series);
void CheckPortfolioStatistics(CSystemFuncs& funcs);

// The position rules of every series: see the rules in the implementation.
void CheckPositions(const CQXBaseData& data);

// Everything after the checkout of bar `bar`: positions, statistics, trade counts, prices of
// historical orders, the capital and the equity curve. Reads statistics through `funcs`, which
// addresses each series in turn and restores CurrentData.
void CheckAfterCheckout(CQXBaseData& data, CSystemFuncs& funcs, int32_t bar, const RunFacts& facts);

}  // namespace sysfuncs::fuzz

#endif  // SYSFUNCS_TESTS_FUZZ_ENGINE_INVARIANTS_H_
