// A moving-average crossover strategy (fast/slow simple averages of the Close over 10/30 bars,
// long above, short below, market orders, one lot) run through the shared library as a host runs
// it (formula body, then BarCheckout, on every bar) and, beside it, as a plain C++ loop that
// makes the same trades and keeps the same per-bar equity point and drawdown.
//
// The first repetition runs on fresh memory (cold: every page of the equity curves is touched
// for the first time); the later ones reuse the heap (warm), alternating which side runs first.
// Times are CPU times of the thread. Prints the cold figures and the medians of the warm ones,
// for one series and for two series trading the same crossover, and fails loudly when the
// library and the plain loop disagree on the trades, the final equity or the largest drawdown.
//
// Usage: strategy_bench [bars (1000000)] [repetitions (9)] [only (1 or 2): one measurement, for
// a profiler]
// With STRATEGY_BENCH_MALLOC=default in the environment, malloc keeps its own settings, as in a
// typical host: the large blocks are then mapped apart from the heap, and freed ones unmapped.
#include "sysfuncs/sysfuncs.h"

#include "AllocationCounter.h"
#include "StrategyHost.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <time.h>
#include <vector>

namespace {

constexpr int kFast = 10;
constexpr int kSlow = 30;

// The running sum of the last kLength values, over a ring buffer.
template <int kLength>
class MovingSum {
 public:
  double Add(double value) {
    sum_ += value - ring_[next_];
    ring_[next_] = value;
    if (++next_ == kLength) next_ = 0;
    return sum_;
  }

 private:
  double ring_[kLength] = {};
  double sum_ = 0.0;
  int next_ = 0;
};

// The crossover signal: +1 while the fast average is above the slow one, -1 otherwise, 0 until
// both averages are defined.
class Crossover {
 public:
  int Add(double close) {
    const double fast = fast_.Add(close) / kFast;
    const double slow = slow_.Add(close) / kSlow;
    if (count_ < kSlow) ++count_;
    if (count_ < kSlow) return 0;
    return fast > slow ? 1 : -1;
  }

 private:
  MovingSum<kFast> fast_;
  MovingSum<kSlow> slow_;
  int count_ = 0;
};

struct Outcome {
  double seconds = 0.0;
  double finalEquity = 0.0;
  double maxDrawDown = 0.0;
  size_t trades = 0;
  long allocations = 0;  // during the bars, construction excluded
};

// CPU time of the calling thread, user and system (page faults included): unlike the wall clock,
// it does not count the time other processes of a shared machine hold the cores.
double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// One run of the formula over every bar of every series. A run starts over at bar 0 on the same
// data object, as a host re-running a formula does.
template <int kSeries>
__attribute__((noinline)) Outcome RunLibrary(CQXBaseData& data) {
  const double start = CpuSeconds();
  data.CurrentBar = 0;
  data.CurrentData = 0;
  CSystemFuncs funcs(&data);
  const long allocationsBefore = AllocationCount();
  std::array<Crossover, kSeries> crossovers;
  const int32_t bars = data.BarCount;
  for (int32_t bar = 0; bar < bars; ++bar) {
    data.CurrentBar = bar;
    for (int32_t index = 0; index < kSeries; ++index) {
      data.CurrentData = index;
      const int signal = crossovers[index].Add(funcs.Close());
      if (signal != 0 && funcs.MarketPosition() != signal) {
        if (signal > 0) {
          funcs.Buy(1.0, 0.0);
        } else {
          funcs.SellShort(1.0, 0.0);
        }
      }
    }
    data.CurrentData = 0;
    funcs.BarCheckout();
  }
  Outcome outcome;
  outcome.seconds = CpuSeconds() - start;
  outcome.allocations = AllocationCount() - allocationsBefore;
  outcome.finalEquity = data.Account->EquityCurve.back().Equity;
  outcome.maxDrawDown = data.Account->Stats.MaxDrawDown;
  for (int index = 0; index < kSeries; ++index) outcome.trades += data.Ledgers[index].Trades.size();
  return outcome;
}

// The same strategy by hand: one lot of lot value 1 per series, commission on entry and exit,
// and one equity point and the drawdown on every bar.
template <int kSeries>
__attribute__((noinline)) Outcome RunPlainLoop(const std::vector<std::vector<QXBar>>& series,
                                               std::vector<EquityPoint>& curve) {
  struct Position {
    Crossover crossover;
    int side = 0;  // 1 long, -1 short
    double entryPrice = 0.0;
  };
  const double start = CpuSeconds();
  const int32_t bars = static_cast<int32_t>(series[0].size());
  curve.clear();
  curve.reserve(static_cast<size_t>(bars));
  std::array<Position, kSeries> positions;
  double capital = kBenchInitCapital;
  double peak = kBenchInitCapital;
  double trough = kBenchInitCapital;
  double maxDrawDown = 0.0;
  size_t trades = 0;
  for (int32_t bar = 0; bar < bars; ++bar) {
    EquityPoint point;
    double openProfit = 0.0;
    for (int index = 0; index < kSeries; ++index) {
      Position& position = positions[index];
      const double close = series[index][bar].Close;
      const int signal = position.crossover.Add(close);
      if (signal != 0 && position.side != signal) {
        if (position.side != 0) {
          capital += (close - position.entryPrice) * position.side - 2.0 * kBenchCommission;
          point.BarCost += kBenchCommission;
          ++trades;
        }
        position.side = signal;
        position.entryPrice = close;
        point.BarCost += kBenchCommission;
      }
      if (position.side == 0) continue;
      const double margin = close * kBenchMarginRate;
      if (position.side > 0) {
        point.LongMargin += margin;
        point.LongLots += 1.0;
      } else {
        point.ShortMargin += margin;
        point.ShortLots += 1.0;
      }
      openProfit += (close - position.entryPrice) * position.side;
    }
    point.Bar = bar;
    point.Time = series[0][bar].Time;
    point.Equity = capital + openProfit;
    point.Available = point.Equity - point.LongMargin - point.ShortMargin;
    point.Capital = capital;
    curve.push_back(point);
    if (point.Equity > peak) {
      peak = trough = point.Equity;
    } else if (point.Equity < trough) {
      trough = point.Equity;
      maxDrawDown = std::min(maxDrawDown, point.Equity - peak);
    }
  }
  return Outcome{CpuSeconds() - start, curve.back().Equity, maxDrawDown, trades, 0};
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

// Stops the program when the two sides of a run disagree.
void RequireSameResults(const char* what, const Outcome& library, const Outcome& plain) {
  if (library.finalEquity == plain.finalEquity && library.trades == plain.trades &&
      library.maxDrawDown == plain.maxDrawDown) {
    return;
  }
  std::fprintf(stderr,
               "RESULTS DIFFER (%s): final equity %.4f vs %.4f, trades %zu vs %zu, max drawdown "
               "%.4f vs %.4f (library vs plain loop)\n",
               what, library.finalEquity, plain.finalEquity, library.trades, plain.trades,
               library.maxDrawDown, plain.maxDrawDown);
  std::exit(1);
}

// Times of the repetitions of one strategy on both sides, the first (cold) kept apart.
struct Timings {
  double coldLibrary = 0.0;
  double coldPlain = 0.0;
  std::vector<double> library;  // warm
  std::vector<double> plain;
  std::vector<double> ratios;  // library speed / plain speed, per warm repetition
  Outcome last;
};

template <int kSeries>
Timings Measure(const char* what, StrategyHost& host, const std::vector<std::vector<QXBar>>& series,
                int repetitions) {
  Timings timings;
  std::vector<EquityPoint> curve;
  for (int repeat = 0; repeat < repetitions; ++repeat) {
    Outcome library;
    Outcome plain;
    if (repeat % 2 == 0) {
      library = RunLibrary<kSeries>(host.data);
      plain = RunPlainLoop<kSeries>(series, curve);
    } else {
      plain = RunPlainLoop<kSeries>(series, curve);
      library = RunLibrary<kSeries>(host.data);
    }
    RequireSameResults(what, library, plain);
    if (repeat == 0) {
      timings.coldLibrary = library.seconds;
      timings.coldPlain = plain.seconds;
    } else {
      timings.library.push_back(library.seconds);
      timings.plain.push_back(plain.seconds);
      timings.ratios.push_back(plain.seconds / library.seconds);
    }
    timings.last = library;
  }
  return timings;
}

double NanosPerBar(double seconds, int bars) { return seconds * 1e9 / bars; }

}  // namespace

int main(int argc, char** argv) {
  const int bars = argc > 1 ? std::atoi(argv[1]) : 1000000;
  const int repetitions = argc > 2 ? std::atoi(argv[2]) : 9;
  const int only = argc > 3 ? std::atoi(argv[3]) : 0;
  if (bars < kSlow + 2 || repetitions < 2) {
    std::fprintf(stderr, "usage: strategy_bench [bars >= %d] [repetitions >= 2]\n", kSlow + 2);
    return 2;
  }
  // The module runs with a platform that knows the symbols, as under a host.
  StrategyAdapter adapter;
  SysFuncs_Init(nullptr, &adapter, "", "");
  // Freed memory stays in the heap, so that only the first repetition pays for fresh pages.
  const char* mallocSetup = std::getenv("STRATEGY_BENCH_MALLOC");
  if (mallocSetup == nullptr || std::string(mallocSetup) != "default") {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
  }

  const std::vector<std::vector<QXBar>> series = {MakeRandomWalkBars(bars, 20240101),
                                                  MakeRandomWalkBars(bars, 20240102)};
  if (only == 1 || only == 2) {
    StrategyHost host(series, only);
    const Timings timings = only == 1 ? Measure<1>("one series", host, series, repetitions)
                                      : Measure<2>("two series", host, series, repetitions);
    std::printf("%d series: library %.2f ns/bar, plain loop %.2f ns/bar (warm medians)\n", only,
                NanosPerBar(Median(timings.library), bars),
                NanosPerBar(Median(timings.plain), bars));
    SysFuncs_Exit();
    return 0;
  }
  StrategyHost one(series, 1);
  const Timings single = Measure<1>("one series", one, series, repetitions);
  StrategyHost two(series, 2);
  const Timings pair = Measure<2>("two series", two, series, repetitions);

  const double library = Median(single.library);
  const double plain = Median(single.plain);
  std::printf("bars                        %d, 1 cold + %d warm repetitions\n", bars,
              repetitions - 1);
  std::printf("                            ns/bar cold   ns/bar warm (median)   M bars/s warm\n");
  std::printf("plain loop                  %11.2f   %20.2f   %13.1f\n",
              NanosPerBar(single.coldPlain, bars), NanosPerBar(plain, bars), bars / plain / 1e6);
  std::printf("library                     %11.2f   %20.2f   %13.1f\n",
              NanosPerBar(single.coldLibrary, bars), NanosPerBar(library, bars),
              bars / library / 1e6);
  std::printf("ratio library/plain         %11.3f   %20.3f   (warm target >= 0.5)\n",
              single.coldPlain / single.coldLibrary, Median(single.ratios));
  const double pairLibrary = Median(pair.library);
  std::printf("two series: library         %.2f ns/bar, plain %.2f ns/bar, ratio %.3f\n",
              NanosPerBar(pairLibrary, bars), NanosPerBar(Median(pair.plain), bars),
              Median(pair.ratios));
  std::printf("two series: second series   %.2f ns/bar (the first: %.2f)\n",
              NanosPerBar(pairLibrary - library, bars), NanosPerBar(library, bars));
  std::printf("allocations per bar         %.4f one series, %.4f two (%.2f per trade)\n",
              static_cast<double>(single.last.allocations) / bars,
              static_cast<double>(pair.last.allocations) / bars,
              static_cast<double>(single.last.allocations) /
                  static_cast<double>(std::max<size_t>(single.last.trades, 1)));
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory                 %.1f MB (ru_maxrss)\n", usage.ru_maxrss / 1024.0);
  std::printf(
      "results                     identical: %zu and %zu trades, final equity %.2f and "
      "%.2f, max drawdown %.2f and %.2f\n",
      single.last.trades, pair.last.trades, single.last.finalEquity, pair.last.finalEquity,
      single.last.maxDrawDown, pair.last.maxDrawDown);
  SysFuncs_Exit();
  return 0;
}
