// Local calendar fields of bar times: a runtime conversion per call (what every calendar bar
// function costs without the cache) against the per-instance cache.
#include "util/DateCodec.h"
#include "util/LocalCalendar.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr int kBars = 100000;
constexpr int64_t kStart = 1704067200;  // 2024-01-01 00:00:00 UTC, in seconds

std::vector<int64_t> Times(int64_t step) {
  std::vector<int64_t> times;
  for (int i = 0; i < kBars; ++i) times.push_back(kStart + i * step);
  return times;
}

template <typename Convert>
void OverTimes(benchmark::State& state, int64_t step, Convert convert) {
  const std::vector<int64_t> times = Times(step);
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(convert(times[i]));
    if (++i == times.size()) i = 0;
  }
}

void BM_RuntimeConversion(benchmark::State& state) {
  OverTimes(state, state.range(0), [](int64_t s) { return sysfuncs::LocalFields(s); });
}
void BM_CachedCalendar(benchmark::State& state) {
  sysfuncs::LocalCalendar calendar;
  OverTimes(state, state.range(0), [&calendar](int64_t s) { return calendar.Fields(s); });
}

// Bar spacing in seconds: minute, hour and day bars.
BENCHMARK(BM_RuntimeConversion)->Arg(60)->Arg(3600)->Arg(86400);
BENCHMARK(BM_CachedCalendar)->Arg(60)->Arg(3600)->Arg(86400);

}  // namespace

BENCHMARK_MAIN();
