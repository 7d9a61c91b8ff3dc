// Synthetic minute bars for the strategy benchmarks.
#ifndef SYSFUNCS_BENCH_SYNTHETIC_BARS_H_
#define SYSFUNCS_BENCH_SYNTHETIC_BARS_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <vector>

inline constexpr int64_t kBenchStart = 1704067200000;  // 2024-01-01 00:00:00 UTC

// `count` minute bars of a random walk in whole price units from 3000 (never below 100), so that
// every price lies on the tick of 1; `seed` picks the walk.
std::vector<QXBar> MakeRandomWalkBars(int count, uint64_t seed);

#endif  // SYSFUNCS_BENCH_SYNTHETIC_BARS_H_
