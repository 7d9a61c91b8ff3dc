#include "qxrun/sweep/SweepResults.h"

#include "qxrun/InputError.h"
#include "qxrun/sweep/PointRuns.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <numeric>

namespace qxrun {
namespace {

// Figures where a smaller value is the better one.
constexpr const char* kSmallerIsBetter[] = {
    "volatility",        "max_drawdown_pct",      "average_drawdown_pct", "max_drawdown_bars",
    "max_drawdown_days", "average_drawdown_bars", "max_loss_streak",      "losers"};

size_t ColumnOf(const std::string& key) {
  const std::vector<std::string>& columns = FigureColumns();
  return static_cast<size_t>(std::find(columns.begin(), columns.end(), key) - columns.begin());
}

}  // namespace

Objective FindObjective(const std::string& key) {
  const std::vector<std::string>& columns = FigureColumns();
  const size_t column = ColumnOf(key);
  if (column == columns.size()) {
    std::string names;
    for (const std::string& name : columns) {
      if (name.ends_with("_long") || name.ends_with("_short")) continue;
      names += (names.empty() ? "" : ", ") + name;
    }
    throw InputError("--objective: no figure \"" + key + "\" (figures: " + names + ")");
  }
  std::string base = key;
  for (const char* side : {"_long", "_short"}) {
    if (base.ends_with(side)) base.resize(base.size() - std::char_traits<char>::length(side));
  }
  const bool minimise = std::any_of(std::begin(kSmallerIsBetter), std::end(kSmallerIsBetter),
                                    [&base](const char* name) { return base == name; });
  return Objective{key, column, minimise};
}

std::vector<size_t> RankPoints(const std::vector<std::vector<double>>& rows,
                               const Objective& objective) {
  std::vector<size_t> order(rows.size());
  std::iota(order.begin(), order.end(), size_t{0});
  const auto better = [&](size_t a, size_t b) {
    const double x = rows[a][objective.Column];
    const double y = rows[b][objective.Column];
    if (std::isnan(y)) return !std::isnan(x);
    if (std::isnan(x)) return false;
    return objective.Minimise ? x < y : x > y;
  };
  std::stable_sort(order.begin(), order.end(), better);
  return order;
}

std::string ExactNumber(double value) {
  if (std::isnan(value)) return "";
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

void WriteResultsCsv(std::ostream& out, const std::vector<std::string>& axisNames,
                     const std::vector<ParamPoint>& points,
                     const std::vector<std::vector<double>>& rows) {
  bool first = true;
  const auto cell = [&out, &first](const std::string& text) {
    if (!first) out << ',';
    out << text;
    first = false;
  };
  for (const std::string& name : axisNames) cell(name);
  for (const std::string& name : FigureColumns()) cell(name);
  out << '\n';
  for (size_t i = 0; i < points.size(); ++i) {
    first = true;
    for (const double value : points[i]) cell(ExactNumber(value));
    for (const double value : rows[i]) cell(ExactNumber(value));
    out << '\n';
  }
}

void WriteResultsJson(std::ostream& out, const std::string& formula,
                      const std::vector<std::string>& axisNames,
                      const std::vector<ParamPoint>& points,
                      const std::vector<std::vector<double>>& rows, const Objective& objective) {
  const std::vector<std::string>& columns = FigureColumns();
  nlohmann::json list = nlohmann::json::array();
  for (size_t i = 0; i < points.size(); ++i) {
    nlohmann::json params = nlohmann::json::object();
    for (size_t a = 0; a < axisNames.size(); ++a) params[axisNames[a]] = points[i][a];
    nlohmann::json figures = nlohmann::json::object();
    for (size_t c = 0; c < columns.size(); ++c) {
      // NaN (a side figure of a figure without sides) has no JSON form: null.
      figures[columns[c]] = std::isnan(rows[i][c]) ? nlohmann::json() : nlohmann::json(rows[i][c]);
    }
    list.push_back({{"params", std::move(params)}, {"figures", std::move(figures)}});
  }
  const nlohmann::json json = {{"formula", formula},
                               {"objective", objective.Key},
                               {"minimise", objective.Minimise},
                               {"parameters", axisNames},
                               {"points", std::move(list)},
                               {"best", RankPoints(rows, objective)}};
  out << json.dump(1) << '\n';
}

void PrintBest(std::ostream& out, const std::vector<std::string>& axisNames,
               const std::vector<ParamPoint>& points, const std::vector<std::vector<double>>& rows,
               const Objective& objective, size_t count) {
  const std::vector<size_t> order = RankPoints(rows, objective);
  const size_t netProfit = ColumnOf("net_profit");
  const size_t trades = ColumnOf("trades");
  const size_t drawdown = ColumnOf("max_drawdown_pct");
  out << "Best " << std::min(count, order.size()) << " of " << points.size() << " points by "
      << objective.Key << (objective.Minimise ? " (smallest first)" : "") << ":\n";
  out << std::left;
  for (const std::string& name : axisNames) out << std::setw(10) << name;
  out << std::right << std::setw(16) << objective.Key << std::setw(18) << "net_profit"
      << std::setw(8) << "trades" << std::setw(12) << "max_dd%" << '\n';
  for (size_t n = 0; n < order.size() && n < count; ++n) {
    const size_t i = order[n];
    out << std::left;
    for (const double value : points[i]) out << std::setw(10) << ExactNumber(value);
    out << std::right << std::fixed << std::setprecision(4) << std::setw(16)
        << rows[i][objective.Column] << std::setprecision(2) << std::setw(18) << rows[i][netProfit]
        << std::setprecision(0) << std::setw(8) << rows[i][trades] << std::setprecision(2)
        << std::setw(12) << rows[i][drawdown] * 100.0 << '\n';
    out << std::defaultfloat;
  }
}

}  // namespace qxrun
