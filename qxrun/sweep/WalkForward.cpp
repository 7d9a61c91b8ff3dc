#include "qxrun/sweep/WalkForward.h"

#include "qxrun/InputError.h"
#include "qxrun/report/RunFiles.h"

#include <algorithm>
#include <charconv>
#include <ctime>

namespace qxrun {
namespace {

WalkLength ParseLength(const std::string& text, const std::string& where) {
  WalkLength length;
  std::string digits = text;
  if (!digits.empty()) {
    switch (digits.back()) {
      case 'd':
        length.Unit = PeriodUnit::kDays;
        break;
      case 'm':
        length.Unit = PeriodUnit::kMonths;
        break;
      case 'y':
        length.Unit = PeriodUnit::kYears;
        break;
      default:
        break;
    }
    if (length.Unit != PeriodUnit::kBars) digits.pop_back();
  }
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, length.Count);
  if (digits.empty() || result.ec != std::errc() || result.ptr != end || length.Count <= 0) {
    throw InputError("--walk-forward: " + where + "=\"" + text +
                     "\" is not a positive count of bars, or of days, months or years (30d, 6m, "
                     "2y)");
  }
  return length;
}

// `millis` moved on by `length` in local calendar terms (bars are not counted here).
int64_t AddPeriod(int64_t millis, const WalkLength& length) {
  const std::time_t seconds = static_cast<std::time_t>(millis / 1000);
  std::tm local{};
  localtime_r(&seconds, &local);
  if (length.Unit == PeriodUnit::kDays) local.tm_mday += static_cast<int>(length.Count);
  if (length.Unit == PeriodUnit::kMonths) local.tm_mon += static_cast<int>(length.Count);
  if (length.Unit == PeriodUnit::kYears) local.tm_year += static_cast<int>(length.Count);
  local.tm_isdst = -1;
  return static_cast<int64_t>(std::mktime(&local)) * 1000 + millis % 1000;
}

// The first bar at or after `time`.
size_t BarAtOrAfter(const std::vector<int64_t>& times, int64_t time) {
  return static_cast<size_t>(std::lower_bound(times.begin(), times.end(), time) - times.begin());
}

// The equity points of bars [from, to) of `curve`, moved so that the point before `from`
// (the initial capital when `from` is 0) lands on `base`, appended to `joined`.
void JoinCurve(const std::vector<EquityPoint>& curve, size_t from, size_t to, double initCapital,
               std::vector<EquityPoint>& joined, double base) {
  const double start = from == 0 ? initCapital : curve[from - 1].Equity;
  const double startCapital = from == 0 ? initCapital : curve[from - 1].Capital;
  for (size_t bar = from; bar < to && bar < curve.size(); ++bar) {
    EquityPoint point = curve[bar];
    point.Bar = static_cast<int32_t>(joined.size());
    point.Equity = base + point.Equity - start;
    point.Capital = base + point.Capital - startCapital;
    point.Available = point.Equity;
    joined.push_back(point);
  }
}

// The figures of the test bars alone: the curve from `from` on, moved to start at the initial
// capital, and the trades that ended there.
std::vector<double> TestFigures(const SweepSetup& setup, const std::vector<QXDataSource>& run,
                                const PointTrace& trace, size_t from) {
  const double initCapital = setup.Settings.Strategy.InitCapital;
  StrategyAccount account;
  JoinCurve(trace.EquityCurve, from, trace.EquityCurve.size(), initCapital, account.EquityCurve,
            initCapital);
  for (const TradeRecord& trade : trace.Trades) {
    if (trade.ExitBar >= static_cast<int32_t>(from)) account.Trades.push_back(trade);
  }
  return FigureValues(ComputeFigures(run, LotValues(setup.Settings), account, initCapital));
}

}  // namespace

WalkLengths ParseWalkLengths(const std::string& text) {
  WalkLengths lengths;
  bool train = false;
  bool test = false;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t comma = std::min(text.find(',', start), text.size());
    const std::string item = text.substr(start, comma - start);
    const size_t equals = item.find('=');
    const std::string key = item.substr(0, equals);
    if (equals == std::string::npos || (key != "train" && key != "test")) {
      throw InputError("--walk-forward: \"" + item + "\" is not train=N or test=M");
    }
    (key == "train" ? lengths.Train : lengths.Test) = ParseLength(item.substr(equals + 1), key);
    (key == "train" ? train : test) = true;
    start = comma + 1;
  }
  if (!train || !test) throw InputError("--walk-forward: give both train=N and test=M");
  return lengths;
}

std::vector<WalkWindow> WalkWindows(const std::vector<int64_t>& times, const WalkLengths& lengths) {
  std::vector<WalkWindow> windows;
  const size_t bars = times.size();
  if (bars == 0) return windows;
  int64_t startTime = times[0];
  size_t begin = 0;
  for (;;) {
    WalkWindow window;
    window.TrainBegin = begin;
    if (lengths.Train.Unit == PeriodUnit::kBars) {
      window.TrainEnd = begin + static_cast<size_t>(lengths.Train.Count);
    } else {
      window.TrainEnd = BarAtOrAfter(times, AddPeriod(startTime, lengths.Train));
    }
    if (window.TrainEnd >= bars) break;
    if (lengths.Test.Unit == PeriodUnit::kBars) {
      window.TestEnd = window.TrainEnd + static_cast<size_t>(lengths.Test.Count);
    } else {
      const int64_t trainEndTime = lengths.Train.Unit == PeriodUnit::kBars
                                       ? times[window.TrainEnd]
                                       : AddPeriod(startTime, lengths.Train);
      window.TestEnd = BarAtOrAfter(times, AddPeriod(trainEndTime, lengths.Test));
    }
    window.TestEnd = std::min(window.TestEnd, bars);
    if (window.TrainBegin < window.TrainEnd && window.TrainEnd < window.TestEnd) {
      windows.push_back(window);
    }
    // The next window starts one test length later.
    if (lengths.Test.Unit == PeriodUnit::kBars) {
      begin += static_cast<size_t>(lengths.Test.Count);
      if (begin >= bars) break;
      startTime = times[begin];
    } else {
      startTime = AddPeriod(startTime, lengths.Test);
      begin = BarAtOrAfter(times, startTime);
      if (begin >= bars) break;
    }
  }
  return windows;
}

std::vector<QXDataSource> SliceSources(const std::vector<QXDataSource>& sources, size_t begin,
                                       size_t end) {
  std::vector<QXDataSource> slices;
  if (sources.empty()) return slices;
  const std::vector<QXBar>& main = sources[0].Bars;
  end = std::min(end, main.size());
  if (begin >= end) return slices;
  const int64_t first = main[begin].Time;
  const int64_t last = main[end - 1].Time;
  for (const QXDataSource& source : sources) {
    QXDataSource& slice = slices.emplace_back();
    slice.MarketId = source.MarketId;
    slice.Symbol = source.Symbol;
    slice.BarType = source.BarType;
    slice.BarInterval = source.BarInterval;
    const auto from =
        std::lower_bound(source.Bars.begin(), source.Bars.end(), first,
                         [](const QXBar& bar, int64_t time) { return bar.Time < time; });
    const auto to =
        std::upper_bound(from, source.Bars.end(), last,
                         [](int64_t time, const QXBar& bar) { return time < bar.Time; });
    slice.Bars.assign(from, to);
  }
  return slices;
}

WalkResult RunWalkForward(const SweepSetup& setup, const std::vector<QXDataSource>& sources,
                          const std::vector<ParamPoint>& points, const Objective& objective,
                          const std::vector<WalkWindow>& windows, const PointRunner& runner,
                          const PointProgress& progress) {
  WalkResult result;
  const double initCapital = setup.Settings.Strategy.InitCapital;
  const int64_t total = static_cast<int64_t>(windows.size() * (points.size() + 1));
  int64_t done = 0;
  double outBase = initCapital;
  double inBase = initCapital;
  for (const WalkWindow& window : windows) {
    WalkStep& step = result.Steps.emplace_back();
    step.Window = window;
    std::vector<QXDataSource> train = SliceSources(sources, window.TrainBegin, window.TrainEnd);
    const std::vector<std::vector<double>> rows =
        runner(setup, train, points, [&](int64_t count, int64_t) {
          if (progress) progress(done + count, total);
        });
    done += static_cast<int64_t>(points.size());
    step.Best = RankPoints(rows, objective).front();
    step.InSample = rows[step.Best];
    PointTrace inTrace;
    RunPointFigures(setup, train, points[step.Best], &inTrace);
    JoinCurve(inTrace.EquityCurve, 0, inTrace.EquityCurve.size(), initCapital, result.InSampleCurve,
              inBase);
    inBase = result.InSampleCurve.back().Equity;

    std::vector<QXDataSource> run = SliceSources(sources, window.TrainBegin, window.TestEnd);
    PointTrace outTrace;
    RunPointFigures(setup, run, points[step.Best], &outTrace);
    const size_t from = window.TrainEnd - window.TrainBegin;
    step.OutOfSample = TestFigures(setup, run, outTrace, from);
    JoinCurve(outTrace.EquityCurve, from, outTrace.EquityCurve.size(), initCapital,
              result.OutOfSampleCurve, outBase);
    outBase = result.OutOfSampleCurve.back().Equity;
    if (progress) progress(++done, total);
  }
  StrategyAccount joined;
  joined.EquityCurve = result.OutOfSampleCurve;
  result.OutOfSample = ComputeFigures({}, {}, joined, initCapital);
  return result;
}

}  // namespace qxrun
