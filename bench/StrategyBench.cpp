// A moving-average crossover strategy over 1,000,000 synthetic bars, run through the shared
// library as a host runs it (formula body, then BarCheckout, on every bar) and, beside it, as a
// plain C++ loop that trades the same way and keeps the same per-bar equity curve and drawdown.
// Prints the speed of both, their ratio, the peak memory of the process, and checks that both
// reach the same final equity, trade count and largest drawdown.
#include "sysfuncs/sysfuncs.h"

#include "AllocationCounter.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>
#include <sys/resource.h>
#include <vector>

namespace {

constexpr int kBars = 1000000;
constexpr int kFast = 10;
constexpr int kSlow = 30;
constexpr int kRepeats = 3;
constexpr int64_t kStart = 1704067200000;  // 2024-01-01 00:00:00 UTC
constexpr double kInitCapital = 1000000.0;
constexpr double kMarginRate = 0.1;
constexpr double kCommission = 2.0;  // money per lot, entries and exits alike

// A random walk in whole price units, so that every Close lies on the tick of 1.
std::vector<QXBar> MakeBars() {
  std::mt19937_64 random(20240101);
  std::uniform_int_distribution<int> step(-2, 2);
  std::uniform_int_distribution<int> wick(0, 3);
  std::vector<QXBar> bars;
  bars.reserve(kBars);
  double close = 3000.0;
  for (int i = 0; i < kBars; ++i) {
    const double open = close;
    close = std::max(100.0, close + step(random));
    const double high = std::max(open, close) + wick(random);
    const double low = std::min(open, close) - wick(random);
    bars.push_back(QXBar{kStart + int64_t{i} * 60000, open, high, low, close, 100.0, 0.0});
  }
  return bars;
}

// Simple averages of the Close over the last kFast and kSlow bars.
class Crossover {
 public:
  // Adds a bar's Close; true once both averages are defined.
  bool Add(double close) {
    fastSum_ += close - (count_ >= kFast ? window_[(count_ - kFast) % kSlow] : 0.0);
    slowSum_ += close - (count_ >= kSlow ? window_[count_ % kSlow] : 0.0);
    window_[count_ % kSlow] = close;
    return ++count_ >= kSlow;
  }
  bool FastAbove() const { return fastSum_ / kFast > slowSum_ / kSlow; }

 private:
  double window_[kSlow] = {};
  double fastSum_ = 0.0;
  double slowSum_ = 0.0;
  int count_ = 0;
};

struct Outcome {
  double seconds = 0.0;
  double finalEquity = 0.0;
  double maxDrawDown = 0.0;
  size_t trades = 0;
  long allocations = 0;  // during the bars, construction excluded
};

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// The host's data object over the bar series, with the strategy settings of the run.
void SetUpHost(CQXBaseData& data, std::vector<QXDataSource>& sources) {
  data.DataSources = &sources;
  data.DataCount = 1;
  data.BarCount = kBars;
  data.SourceInfos.resize(1);
  data.CostSettings.resize(1);
  data.CostSettings[0].MarginRate = kMarginRate;
  data.CostSettings[0].CommissionRate = kCommission;
  data.Ledgers.resize(1);
  data.InitCapital = kInitCapital;
  data.MaxOpenEntries = 1;
  data.MaxPositionLots = 1;
}

// One run of the formula over every bar. A run starts over at bar 0 on the same data object, as
// a host re-running a formula does.
Outcome RunLibrary(CQXBaseData& data) {
  const auto start = std::chrono::steady_clock::now();
  data.CurrentBar = 0;
  CSystemFuncs funcs(&data);
  const long allocationsBefore = AllocationCount();
  Crossover crossover;
  for (int32_t bar = 0; bar < kBars; ++bar) {
    data.CurrentBar = bar;
    if (crossover.Add(funcs.Close())) {
      if (crossover.FastAbove()) {
        if (funcs.MarketPosition() != 1) funcs.Buy(1.0, 0.0);
      } else if (funcs.MarketPosition() != -1) {
        funcs.SellShort(1.0, 0.0);
      }
    }
    funcs.BarCheckout();
  }
  Outcome outcome;
  outcome.seconds = Seconds(start);
  outcome.allocations = AllocationCount() - allocationsBefore;
  outcome.finalEquity = data.Account->EquityCurve.back().Equity;
  outcome.maxDrawDown = data.Account->Stats.MaxDrawDown;
  outcome.trades = data.Ledgers[0].Trades.size();
  return outcome;
}

// The same strategy by hand: one lot, lot value 1, commission on entry and exit, and the same
// equity point and drawdown on every bar.
Outcome RunPlainLoop(const std::vector<QXBar>& bars, std::vector<EquityPoint>& curve) {
  const auto start = std::chrono::steady_clock::now();
  curve.clear();
  curve.reserve(kBars);
  Crossover crossover;
  double capital = kInitCapital;
  int side = 0;  // 1 long, -1 short
  double entryPrice = 0.0;
  double peak = kInitCapital;
  double trough = kInitCapital;
  double maxDrawDown = 0.0;
  double maxRatio = 0.0;
  size_t trades = 0;
  for (int32_t bar = 0; bar < kBars; ++bar) {
    const double close = bars[bar].Close;
    double barCost = 0.0;
    if (crossover.Add(close)) {
      const int wanted = crossover.FastAbove() ? 1 : -1;
      if (side != wanted) {
        if (side != 0) {
          capital += (close - entryPrice) * side - 2.0 * kCommission;
          barCost += kCommission;
          ++trades;
        }
        side = wanted;
        entryPrice = close;
        barCost += kCommission;
      }
    }
    EquityPoint& point = curve.emplace_back();
    point.Bar = bar;
    point.Time = bars[bar].Time;
    const double margin = side != 0 ? close * kMarginRate : 0.0;
    (side > 0 ? point.LongMargin : point.ShortMargin) = margin;
    (side > 0 ? point.LongLots : point.ShortLots) = side != 0 ? 1.0 : 0.0;
    point.Equity = capital + (side != 0 ? (close - entryPrice) * side : 0.0);
    point.Available = point.Equity - margin;
    point.BarCost = barCost;
    point.Capital = capital;
    if (point.Equity > peak) {
      peak = trough = point.Equity;
    } else if (point.Equity < trough) {
      trough = point.Equity;
      maxDrawDown = std::min(maxDrawDown, point.Equity - peak);
      maxRatio = std::max(maxRatio, (peak - point.Equity) / peak);
    }
  }
  return Outcome{Seconds(start), curve.back().Equity, maxDrawDown, trades};
}

}  // namespace

int main() {
  std::vector<QXDataSource> sources(1);
  sources[0].Symbol = "bench";
  sources[0].BarType = 1;
  sources[0].BarInterval = 1;
  sources[0].Bars = MakeBars();
  CQXBaseData data;
  SetUpHost(data, sources);
  std::vector<EquityPoint> plainCurve;

  Outcome library;
  Outcome plain;
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    const Outcome libraryRun = RunLibrary(data);
    const Outcome plainRun = RunPlainLoop(sources[0].Bars, plainCurve);
    if (repeat == 0 || libraryRun.seconds < library.seconds) library = libraryRun;
    if (repeat == 0 || plainRun.seconds < plain.seconds) plain = plainRun;
  }

  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const double libraryRate = kBars / library.seconds;
  const double plainRate = kBars / plain.seconds;
  std::printf(
      "bars                      %d (best of %d runs, each over warm memory after the first)\n",
      kBars, kRepeats);
  std::printf("library bars/s            %.0f\n", libraryRate);
  std::printf("plain loop bars/s         %.0f\n", plainRate);
  std::printf("ratio library/plain       %.3f (target >= 0.25)\n", libraryRate / plainRate);
  std::printf(
      "allocations per bar       %.3f (library; on bars with orders only: %.2f per trade)\n",
      static_cast<double>(library.allocations) / kBars,
      static_cast<double>(library.allocations) / static_cast<double>(library.trades));
  std::printf("peak memory               %.1f MB (ru_maxrss)\n", usage.ru_maxrss / 1024.0);
  std::printf("final equity  library     %.2f  plain %.2f\n", library.finalEquity,
              plain.finalEquity);
  std::printf("trades        library     %zu  plain %zu\n", library.trades, plain.trades);
  std::printf("max drawdown  library     %.2f  plain %.2f\n", library.maxDrawDown,
              plain.maxDrawDown);
  const bool same = library.finalEquity == plain.finalEquity && library.trades == plain.trades &&
                    library.maxDrawDown == plain.maxDrawDown;
  std::printf("results                   %s\n", same ? "identical" : "DIFFERENT");
  return same ? 0 : 1;
}
