// The host of the strategy benchmarks: synthetic minute bars, and a data object over them with
// the settings of the runs.
#ifndef SYSFUNCS_BENCH_STRATEGY_HOST_H_
#define SYSFUNCS_BENCH_STRATEGY_HOST_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/HostData.h"

#include <cstdint>
#include <vector>

inline constexpr int64_t kBenchStart = 1704067200000;  // 2024-01-01 00:00:00 UTC
inline constexpr double kBenchInitCapital = 1000000.0;
inline constexpr double kBenchMarginRate = 0.1;
inline constexpr double kBenchCommission = 2.0;  // money per lot, entries and exits alike

// `count` minute bars of a random walk in whole price units from 3000 (never below 100), so that
// every price lies on the tick of 1; `seed` picks the walk.
std::vector<QXBar> MakeRandomWalkBars(int count, uint64_t seed);

// A platform that knows every symbol as the contract the runs assume: money value 1 per price
// unit and lot, margin the rate times the price (kind 4), tick 1. A host has one; without it the
// property list of every series but the first is asked for again on each use.
class StrategyAdapter : public CDataAdapter {
 public:
  bool GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property) override;
};

// A host's data object over the first `count` of `series` (all of the same length), each traded
// under the same settings: margin rate 0.1, commission 2 per lot, one entry of one lot at most.
struct StrategyHost {
  StrategyHost(const std::vector<std::vector<QXBar>>& series, int count);
  std::vector<QXDataSource> sources;
  CQXBaseData data;
};

#endif  // SYSFUNCS_BENCH_STRATEGY_HOST_H_
