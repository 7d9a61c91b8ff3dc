// The runs of a sweep: each point is a back-test over bars loaded once and shared read-only by
// every worker; its result is one row of every report figure.
#ifndef QXRUN_SWEEP_POINT_RUNS_H_
#define QXRUN_SWEEP_POINT_RUNS_H_

#include "sysfuncs/HostData.h"

#include "qxrun/Formula.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/report/Figures.h"
#include "qxrun/sweep/ParamGrid.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qxrun {

// What every point of a sweep shares.
struct SweepSetup {
  const FormulaInfo* Info = nullptr;
  RunSettings Settings;
  std::map<std::string, double> BaseParams;  // every parameter; the swept ones are replaced
  std::vector<std::string> AxisNames;        // the swept parameters, in a point's order
};

// The figures of a result row: every figure of the report table under its key, and for the
// figures with sides also "<key>_long" and "<key>_short".
const std::vector<std::string>& FigureColumns();
std::vector<double> FigureValues(const RunFigures& figures);

// The parameter values of a point.
std::map<std::string, double> PointParams(const SweepSetup& setup, const ParamPoint& point);

// The equity curve and trades of a run, kept when a caller asks for them.
struct PointTrace {
  std::vector<EquityPoint> EquityCurve;
  std::vector<TradeRecord> Trades;
};

// A back-test of one point over `sources`; returns its figures. `sources` is only read.
RunFigures RunPointFigures(const SweepSetup& setup, std::vector<QXDataSource>& sources,
                           const ParamPoint& point, PointTrace* trace = nullptr);

// Called after each finished point with the points done so far; calls are serialised.
using PointProgress = std::function<void(int64_t done, int64_t total)>;

// Every point's figure row (`FigureValues`), in the points' order, computed by `jobs` threads
// that take the next point as they finish one.
std::vector<std::vector<double>> RunPoints(const SweepSetup& setup,
                                           std::vector<QXDataSource>& sources,
                                           const std::vector<ParamPoint>& points, int jobs,
                                           const PointProgress& progress = {});

// How the points of a sweep are handed out to `workers` that each ask for more as they finish:
// chunk k covers points [starts[k], starts[k + 1]). Each chunk is the points still left over
// twice the workers (at least one), so the first requests take large shares and the last ones
// single points: few requests, and a worker that finishes early takes more.
std::vector<int64_t> GuidedChunkStarts(int64_t total, int64_t workers);

// Runs every point and returns its row, in the points' order: on this machine's threads, or
// across the ranks of a cluster.
using PointRunner = std::function<std::vector<std::vector<double>>(
    const SweepSetup& setup, std::vector<QXDataSource>& sources,
    const std::vector<ParamPoint>& points, const PointProgress& progress)>;

// Keeps the blocks a point frees on the heap for the next point. Called before the points run.
void KeepFreedBlocks();

// Threads to use by default: the processor's hardware threads, at least 1.
int DefaultJobs();

}  // namespace qxrun

#endif  // QXRUN_SWEEP_POINT_RUNS_H_
