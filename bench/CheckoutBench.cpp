// The pieces of the per-bar checkout on their own: a checkout with no position, a checkout with
// one open entry, and the equity point append with its drawdown update. Each prints ns per bar
// and the allocations per bar (0: none of these bars has an order).
#include "sysfuncs/sysfuncs.h"

#include "AllocationCounter.h"
#include "StrategyHost.h"
#include "strategy/EquityCurve.h"

#include <benchmark/benchmark.h>

#include <optional>
#include <vector>

namespace {

constexpr int kBars = 1 << 20;

// Checks out bar after bar, the formula body doing nothing but, with `entry`, a Buy of one lot on
// bar 0. A run starts over before the last-but-one bar (which copies the state aside); the
// starts are not timed and their allocations not counted. The finished drawdown episodes of an
// open position are listed in a growing vector: its rare growth is all that allocates.
void CheckOutBars(benchmark::State& state, bool entry) {
  const std::vector<std::vector<QXBar>> series = {MakeRandomWalkBars(kBars, 20240101)};
  StrategyHost host(series, 1);
  std::optional<CSystemFuncs> funcs;
  int32_t bar = 0;
  long allocations = 0;
  const auto startRun = [&] {
    host.data.CurrentBar = 0;
    funcs.emplace(&host.data);
    if (entry) funcs->Buy(1.0, 0.0);
    bar = 0;
  };
  startRun();
  // Every page of the reserved curve is touched once, so that no run pays for fresh pages.
  std::vector<EquityPoint>& curve = host.data.Account->EquityCurve;
  const size_t points = curve.size();
  curve.resize(kBars);
  curve.resize(points);
  long before = AllocationCount();
  for (auto _ : state) {
    host.data.CurrentBar = bar;
    funcs->BarCheckout();
    if (++bar == kBars - 2) {
      state.PauseTiming();
      allocations += AllocationCount() - before;
      startRun();
      before = AllocationCount();
      state.ResumeTiming();
    }
  }
  allocations += AllocationCount() - before;
  if (entry && funcs->MarketPosition() != 1) state.SkipWithError("the entry is not open");
  state.counters["allocs/bar"] = benchmark::Counter(static_cast<double>(allocations) /
                                                    static_cast<double>(state.iterations()));
}

void BM_CheckoutNoPosition(benchmark::State& state) { CheckOutBars(state, false); }
BENCHMARK(BM_CheckoutNoPosition);

void BM_CheckoutOneOpenEntry(benchmark::State& state) { CheckOutBars(state, true); }
BENCHMARK(BM_CheckoutOneOpenEntry);

// The equity point of a bar appended to a reserved curve, and the drawdown followed, over the
// equities of a random walk.
void BM_EquityPointAppendAndDrawDown(benchmark::State& state) {
  const std::vector<QXBar> bars = MakeRandomWalkBars(kBars, 20240102);
  StrategyAccount account;
  account.EquityCurve.resize(kBars);  // every page touched once
  account.EquityCurve.clear();
  account.Stats.Peak = account.Stats.Trough = bars[0].Close;
  size_t bar = 0;
  const long before = AllocationCount();
  long restarts = 0;
  for (auto _ : state) {
    if (bar == bars.size()) {
      state.PauseTiming();
      account.EquityCurve.clear();
      bar = 0;
      ++restarts;
      state.ResumeTiming();
    }
    EquityPoint point;
    point.Bar = static_cast<int32_t>(bar);
    point.Time = bars[bar].Time;
    point.Equity = bars[bar].Close;
    point.Capital = bars[bar].Open;
    sysfuncs::PutEquityPoint(account, point);
    sysfuncs::UpdateDrawDown(account.Stats, point.Equity, point.Time, false, nullptr);
    ++bar;
  }
  benchmark::DoNotOptimize(account.Stats.MaxDrawDown);
  // The list of finished drawdown episodes grows now and then; that is all that allocates.
  state.counters["allocs/bar"] = benchmark::Counter(
      static_cast<double>(AllocationCount() - before) / static_cast<double>(state.iterations()));
  state.counters["restarts"] = benchmark::Counter(static_cast<double>(restarts));
}
BENCHMARK(BM_EquityPointAppendAndDrawDown);

}  // namespace

BENCHMARK_MAIN();
