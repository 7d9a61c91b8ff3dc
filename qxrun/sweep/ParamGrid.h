// The points of a parameter sweep: each swept parameter takes the values of a range, the grid is
// every combination of them, and a random sweep draws some of the grid's points.
#ifndef QXRUN_SWEEP_PARAM_GRID_H_
#define QXRUN_SWEEP_PARAM_GRID_H_

#include "qxrun/Formula.h"
#include "qxrun/sweep/Constraint.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qxrun {

// One swept parameter and its values, in increasing order.
struct ParamAxis {
  std::string Name;
  std::vector<double> Values;
};

// Whether "name=value" text is a range ("name=first:last:step") rather than a single value.
bool IsRangeText(const std::string& text);

// Parses "name=first:last:step": first, first + step, ... up to last (included when the steps
// reach it). Each value must be one the formula's parameter takes. Throws InputError naming the
// --param when the parameter is unknown, a bound is not a number, the step is not positive or
// the range is empty.
ParamAxis ParseAxis(const std::string& text, const FormulaInfo& info);

// A point: one value per axis, in the axes' order.
using ParamPoint = std::vector<double>;

// Every combination of the axes' values that satisfies all constraints, the last axis varying
// fastest.
std::vector<ParamPoint> GridPoints(const std::vector<ParamAxis>& axes,
                                   const std::vector<Constraint>& constraints);

// `count` points drawn without repetition from the constrained grid with a generator seeded by
// `seed`, in grid order; the whole grid when it holds no more than `count` points.
std::vector<ParamPoint> RandomPoints(const std::vector<ParamAxis>& axes,
                                     const std::vector<Constraint>& constraints, int64_t count,
                                     uint64_t seed);

}  // namespace qxrun

#endif  // QXRUN_SWEEP_PARAM_GRID_H_
