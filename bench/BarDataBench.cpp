// Bar-data functions through the shared library, as a host calls them: ns per call, and the
// allocations made per call (which must be 0).
#include "sysfuncs/sysfuncs.h"

#include "AllocationCounter.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr int kBars = 100000;
constexpr int64_t kStart = 1704067200000;  // 2024-01-01 00:00:00 UTC

double PackTick(float price, uint32_t volume) {
  uint32_t upper;
  std::memcpy(&upper, &price, sizeof upper);
  const uint64_t bits = (static_cast<uint64_t>(upper) << 32) | volume;
  double packed;
  std::memcpy(&packed, &bits, sizeof packed);
  return packed;
}

// A host with one series of kBars bars, `step` milliseconds apart.
struct Host {
  Host(int64_t step, bool packed) {
    QXDataSource source;
    source.Symbol = "bench";
    source.BarType = packed ? 2 : 1;
    source.BarInterval = packed ? 0 : 1;
    for (int i = 0; i < kBars; ++i) {
      const double price = 3000.0 + (i % 100);
      QXBar bar{kStart + i * step, price, price + 1, price - 1, price, 10, 20};
      if (packed) {
        bar.High = PackTick(static_cast<float>(price + 1), 5);
        bar.Low = PackTick(static_cast<float>(price - 1), 7);
      }
      source.Bars.push_back(bar);
    }
    sources.push_back(source);
    data.DataSources = &sources;
    data.DataCount = 1;
    data.BarCount = kBars;
    data.SourceInfos.resize(1);
    data.CostSettings.resize(1);
    data.Ledgers.resize(1);
  }
  std::vector<QXDataSource> sources;
  CQXBaseData data;
};

// Runs `call` on every bar in turn, as a host moving CurrentBar does.
template <typename Call>
void OverBars(benchmark::State& state, int64_t step, bool packed, Call call) {
  Host host(step, packed);
  CSystemFuncs funcs(&host.data);
  int32_t bar = 0;
  const long allocationsBefore = AllocationCount();
  for (auto _ : state) {
    host.data.CurrentBar = bar;
    benchmark::DoNotOptimize(call(funcs));
    if (++bar == kBars) bar = 0;
  }
  state.counters["allocs/call"] = benchmark::Counter(
      static_cast<double>(AllocationCount() - allocationsBefore) / state.iterations());
}

constexpr int64_t kMinute = 60000;
constexpr int64_t kDay = 86400000;

void BM_Close(benchmark::State& state) {
  OverBars(state, kMinute, false, [](CSystemFuncs& f) { return f.Close(); });
}
void BM_HighPackedTicks(benchmark::State& state) {
  OverBars(state, kMinute, true, [](CSystemFuncs& f) { return f.High(); });
}
void BM_DateMinuteBars(benchmark::State& state) {
  OverBars(state, kMinute, false, [](CSystemFuncs& f) { return f.Date(); });
}
void BM_TimeMinuteBars(benchmark::State& state) {
  OverBars(state, kMinute, false, [](CSystemFuncs& f) { return f.Time(); });
}
void BM_DateDailyBars(benchmark::State& state) {
  OverBars(state, kDay, false, [](CSystemFuncs& f) { return f.Date(); });
}
void BM_TimeDailyBars(benchmark::State& state) {
  OverBars(state, kDay, false, [](CSystemFuncs& f) { return f.Time(); });
}

BENCHMARK(BM_Close);
BENCHMARK(BM_HighPackedTicks);
BENCHMARK(BM_DateMinuteBars);
BENCHMARK(BM_TimeMinuteBars);
BENCHMARK(BM_DateDailyBars);
BENCHMARK(BM_TimeDailyBars);

}  // namespace

BENCHMARK_MAIN();
