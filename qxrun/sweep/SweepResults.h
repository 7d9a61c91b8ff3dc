// The results of a sweep: the objective that orders the points, the results table (CSV and
// JSON, one row per point with every report figure) and the best points for the terminal.
#ifndef QXRUN_SWEEP_SWEEP_RESULTS_H_
#define QXRUN_SWEEP_SWEEP_RESULTS_H_

#include "qxrun/sweep/ParamGrid.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// A figure to optimise: its column among the figure columns, and whether less is better
// (drawdowns, volatility, losing streaks).
struct Objective {
  std::string Key;
  size_t Column = 0;
  bool Minimise = false;
};

// The objective named `key` (any figure column). Throws InputError listing the names when there
// is no such figure.
Objective FindObjective(const std::string& key);

// The positions of `rows` from the best to the worst by the objective; a point without a value
// (NaN) comes last, and equal values keep the points' order.
std::vector<size_t> RankPoints(const std::vector<std::vector<double>>& rows,
                               const Objective& objective);

// A number in its shortest form that reads back to the same double ("" for NaN).
std::string ExactNumber(double value);

// results.csv: a header of the parameter names and the figure columns, then one row per point.
void WriteResultsCsv(std::ostream& out, const std::vector<std::string>& axisNames,
                     const std::vector<ParamPoint>& points,
                     const std::vector<std::vector<double>>& rows);

// results.json: {"formula", "objective", "parameters", "points": [{"params": {...}, "figures":
// {...}}, ...], "best": [point positions, best first]}.
void WriteResultsJson(std::ostream& out, const std::string& formula,
                      const std::vector<std::string>& axisNames,
                      const std::vector<ParamPoint>& points,
                      const std::vector<std::vector<double>>& rows, const Objective& objective);

// The `count` best points with their objective, net profit, trades and max drawdown %.
void PrintBest(std::ostream& out, const std::vector<std::string>& axisNames,
               const std::vector<ParamPoint>& points, const std::vector<std::vector<double>>& rows,
               const Objective& objective, size_t count);

}  // namespace qxrun

#endif  // QXRUN_SWEEP_SWEEP_RESULTS_H_
