// Walk-forward optimisation: the sweep finds the best point on a training window, and that point
// runs on the test window that follows; the windows roll forward by the test length. The test
// windows joined give an out-of-sample equity curve.
//
// A test run starts at its training window's first bar, so the formula is warmed up by the bars
// the optimiser saw, and only the equity changes over the test bars count; positions still open
// at the test window's end are closed at its last close. Each window's test run starts with the
// initial capital; the joined curve adds up the windows' changes in money.
#ifndef QXRUN_SWEEP_WALK_FORWARD_H_
#define QXRUN_SWEEP_WALK_FORWARD_H_

#include "sysfuncs/HostData.h"

#include "qxrun/sweep/ParamGrid.h"
#include "qxrun/sweep/PointRuns.h"
#include "qxrun/sweep/SweepResults.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qxrun {

enum class PeriodUnit { kBars, kDays, kMonths, kYears };

struct WalkLength {
  int64_t Count = 0;
  PeriodUnit Unit = PeriodUnit::kBars;
};

struct WalkLengths {
  WalkLength Train;
  WalkLength Test;
};

// Parses "train=N,test=M"; a length is a count of bars, or of days, months or years with the
// suffix d, m or y ("250", "2y", "6m"). Throws InputError naming --walk-forward.
WalkLengths ParseWalkLengths(const std::string& text);

// Bars [TrainBegin, TrainEnd) train, [TrainEnd, TestEnd) test.
struct WalkWindow {
  size_t TrainBegin = 0;
  size_t TrainEnd = 0;
  size_t TestEnd = 0;
};

// The windows over bars stamped `times` (increasing). Calendar lengths count from the first
// bar's time in local time; a window starts at the first bar at or after its start. The last
// test window may be shorter than the others. Windows without a training or a test bar are left
// out.
std::vector<WalkWindow> WalkWindows(const std::vector<int64_t>& times, const WalkLengths& lengths);

// The sources restricted to the main series' bars [begin, end): the other series keep the bars
// stamped within the same times.
std::vector<QXDataSource> SliceSources(const std::vector<QXDataSource>& sources, size_t begin,
                                       size_t end);

struct WalkStep {
  WalkWindow Window;
  size_t Best = 0;                  // position of the best point
  std::vector<double> InSample;     // the best point's figures on the training window
  std::vector<double> OutOfSample;  // its figures on the test bars alone (FigureValues)
};

struct WalkResult {
  std::vector<WalkStep> Steps;
  std::vector<EquityPoint> OutOfSampleCurve;  // the test windows joined, one point per test bar
  std::vector<EquityPoint> InSampleCurve;     // the training runs of the best points joined
  RunFigures OutOfSample;                     // the figures of the joined curve
};

// Runs the walk-forward sweep of `points` over `sources`, each window's points through `runner`.
WalkResult RunWalkForward(const SweepSetup& setup, const std::vector<QXDataSource>& sources,
                          const std::vector<ParamPoint>& points, const Objective& objective,
                          const std::vector<WalkWindow>& windows, const PointRunner& runner,
                          const PointProgress& progress = {});

}  // namespace qxrun

#endif  // QXRUN_SWEEP_WALK_FORWARD_H_
