// What a walk-forward sweep reports: each window's best point with its in-sample and
// out-of-sample figures, and the joined out-of-sample curve against the in-sample one.
#ifndef QXRUN_SWEEP_WALK_REPORT_H_
#define QXRUN_SWEEP_WALK_REPORT_H_

#include "qxrun/sweep/WalkForward.h"

#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

struct WalkContext {
  const std::vector<std::string>* AxisNames = nullptr;
  const std::vector<ParamPoint>* Points = nullptr;
  const std::vector<int64_t>* Times = nullptr;  // bar times of the main series
  Objective Goal;
  double InitCapital = 0.0;
};

// The windows, then the joined out-of-sample figures beside the mean of the in-sample ones.
void PrintWalkForward(std::ostream& out, const WalkContext& context, const WalkResult& result);

// walkforward.csv: one row per window: its bars and dates, the best point, and the objective,
// net profit and CAGR in and out of sample.
void WriteWalkCsv(std::ostream& out, const WalkContext& context, const WalkResult& result);

// walkforward.json: the windows with every figure in and out of sample, and the joined
// out-of-sample figures.
void WriteWalkJson(std::ostream& out, const WalkContext& context, const WalkResult& result);

// equity.csv of a walk-forward: per test bar, the joined out-of-sample equity; then the joined
// in-sample curve of the training runs ("in_sample" rows, numbered, as training windows overlap
// in time).
void WriteWalkEquityCsv(std::ostream& out, const WalkResult& result);

}  // namespace qxrun

#endif  // QXRUN_SWEEP_WALK_REPORT_H_
