// How the pool ranks its symbols on one bar.
//
// Each symbol with a bar at the time competes on every criterion number it gave a sort value
// for; a symbol without a bar that day, or without a value for a criterion, takes no rank on it.
// The flag beside a sort value chooses the order: true ranks the largest value first
// (descending), false the smallest first (ascending); the flag of the first symbol in pool
// order that gave the criterion decides for all. Ranks start at 1. Equal values share the best
// rank of their group and the next value skips the shared places (1, 2, 2, 4). A value that is
// not a number, infinite or the invalid number of the formula language takes no rank.
#ifndef QXRUN_POOL_POOL_RANKING_H_
#define QXRUN_POOL_POOL_RANKING_H_

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace qxrun {

// Criterion number -> (value, flag), as a formula gives them.
using SortValues = std::map<int32_t, std::pair<double, bool>>;
// Criterion number -> rank.
using PoolRanks = std::map<int32_t, int32_t>;

// The ranks of each symbol: `values[i]` are the sort values the i-th symbol gave on the bar
// (nullptr: none, or no bar); the result's i-th map holds its ranks.
std::vector<PoolRanks> RankPool(const std::vector<const SortValues*>& values);

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_RANKING_H_
