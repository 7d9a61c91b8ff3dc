#include "qxrun/sweep/ParamGrid.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <random>

namespace qxrun {
namespace {

// Grids larger than this are refused: a sweep of them would not end anyway.
constexpr double kMaxGridPoints = 1e8;

double ParseNumber(const std::string& text, const std::string& where) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (text.empty() || result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) {
    throw InputError(where + ": \"" + text + "\" is not a number");
  }
  return value;
}

double GridSize(const std::vector<ParamAxis>& axes) {
  double size = 1.0;
  for (const ParamAxis& axis : axes) size *= static_cast<double>(axis.Values.size());
  return size;
}

// The point at position `index` of the unconstrained grid.
void PointAt(const std::vector<ParamAxis>& axes, uint64_t index, ParamPoint& point) {
  point.resize(axes.size());
  for (size_t i = axes.size(); i-- > 0;) {
    const uint64_t size = axes[i].Values.size();
    point[i] = axes[i].Values[index % size];
    index /= size;
  }
}

bool Satisfies(const std::vector<Constraint>& constraints, const ParamPoint& point) {
  return std::all_of(constraints.begin(), constraints.end(),
                     [&point](const Constraint& constraint) { return constraint.Holds(point); });
}

}  // namespace

bool IsRangeText(const std::string& text) {
  const size_t equals = text.find('=');
  return equals != std::string::npos && text.find(':', equals) != std::string::npos;
}

ParamAxis ParseAxis(const std::string& text, const FormulaInfo& info) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw InputError("--param " + text + ": expected name=first:last:step");
  }
  ParamAxis axis;
  axis.Name = text.substr(0, equals);
  const std::string where = "--param " + axis.Name;
  const auto parameter =
      std::find_if(info.Parameters.begin(), info.Parameters.end(),
                   [&axis](const Parameter& candidate) { return candidate.Name == axis.Name; });
  if (parameter == info.Parameters.end()) {
    throw InputError(where + ": " + info.Name + " has no parameter " + axis.Name);
  }
  const std::string range = text.substr(equals + 1);
  const size_t colon = range.find(':');
  const size_t second = range.find(':', colon + 1);
  if (second == std::string::npos || range.find(':', second + 1) != std::string::npos) {
    throw InputError(where + ": \"" + range + "\" is not first:last:step");
  }
  const double first = ParseNumber(range.substr(0, colon), where);
  const double last = ParseNumber(range.substr(colon + 1, second - colon - 1), where);
  const double step = ParseNumber(range.substr(second + 1), where);
  if (!(step > 0.0)) throw InputError(where + ": the step of \"" + range + "\" is not positive");
  if (last < first) throw InputError(where + ": the range \"" + range + "\" is empty");
  // Values as first + k × step, so that no rounding accumulates; the last one is reached when
  // it lies within a millionth of a step.
  const double steps = std::floor((last - first) / step + 1e-6);
  if (steps + 1.0 > kMaxGridPoints)
    throw InputError(where + ": \"" + range + "\" is too many values");
  for (double k = 0.0; k <= steps; k += 1.0) {
    const double value = first + k * step;
    if (value < parameter->Min || value > parameter->Max) {
      throw InputError(where + ": " + std::to_string(value) + " is outside " + axis.Name +
                       "'s range [" + std::to_string(parameter->Min) + ", " +
                       std::to_string(parameter->Max) + "]");
    }
    if (parameter->Integral && value != std::round(value)) {
      throw InputError(where + ": " + axis.Name + " takes whole numbers, the range gives " +
                       std::to_string(value));
    }
    axis.Values.push_back(value);
  }
  return axis;
}

std::vector<ParamPoint> GridPoints(const std::vector<ParamAxis>& axes,
                                   const std::vector<Constraint>& constraints) {
  const double size = GridSize(axes);
  if (size > kMaxGridPoints) throw InputError("--param: the grid holds over 10^8 points");
  std::vector<ParamPoint> points;
  ParamPoint point;
  for (uint64_t index = 0; index < static_cast<uint64_t>(size); ++index) {
    PointAt(axes, index, point);
    if (Satisfies(constraints, point)) points.push_back(point);
  }
  return points;
}

std::vector<ParamPoint> RandomPoints(const std::vector<ParamAxis>& axes,
                                     const std::vector<Constraint>& constraints, int64_t count,
                                     uint64_t seed) {
  std::vector<ParamPoint> grid = GridPoints(axes, constraints);
  if (count >= static_cast<int64_t>(grid.size())) return grid;
  // A partial Fisher-Yates shuffle of the positions picks `count` of them; they are then put
  // back in grid order so that the results read like a grid's.
  std::vector<size_t> positions(grid.size());
  for (size_t i = 0; i < positions.size(); ++i) positions[i] = i;
  std::mt19937_64 generator(seed);
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    std::uniform_int_distribution<size_t> pick(i, positions.size() - 1);
    std::swap(positions[i], positions[pick(generator)]);
  }
  positions.resize(static_cast<size_t>(count));
  std::sort(positions.begin(), positions.end());
  std::vector<ParamPoint> points;
  points.reserve(positions.size());
  for (const size_t position : positions) points.push_back(std::move(grid[position]));
  return points;
}

}  // namespace qxrun
