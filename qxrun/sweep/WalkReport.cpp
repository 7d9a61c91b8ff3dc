#include "qxrun/sweep/WalkReport.h"

#include "qxrun/report/Tables.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>

namespace qxrun {
namespace {

size_t Column(const std::string& key) {
  const std::vector<std::string>& columns = FigureColumns();
  return static_cast<size_t>(std::find(columns.begin(), columns.end(), key) - columns.begin());
}

std::string Day(int64_t millis) { return LocalDateTime(millis).substr(0, 10); }

std::string PointText(const WalkContext& context, size_t point) {
  std::string text;
  for (size_t a = 0; a < context.AxisNames->size(); ++a) {
    text += (a == 0 ? "" : " ") + (*context.AxisNames)[a] + "=" +
            ExactNumber((*context.Points)[point][a]);
  }
  return text;
}

// The change of equity over a run, from its figures.
double Profit(const std::vector<double>& figures) {
  return figures[Column("final_equity")] - figures[Column("initial_capital")];
}

// The mean of one figure over the windows' in-sample rows.
double InSampleMean(const WalkResult& result, size_t column) {
  double sum = 0.0;
  for (const WalkStep& step : result.Steps) sum += step.InSample[column];
  return result.Steps.empty() ? 0.0 : sum / static_cast<double>(result.Steps.size());
}

}  // namespace

void PrintWalkForward(std::ostream& out, const WalkContext& context, const WalkResult& result) {
  const std::vector<int64_t>& times = *context.Times;
  const size_t goal = context.Goal.Column;
  const size_t cagr = Column("cagr");
  out << "Walk-forward: " << result.Steps.size() << " windows, best point by " << context.Goal.Key
      << '\n';
  out << std::left << std::setw(24) << "training" << std::setw(24) << "test" << std::setw(24)
      << "best point" << std::right << std::setw(12) << "in-sample" << std::setw(12) << "out"
      << std::setw(14) << "out profit" << '\n';
  for (const WalkStep& step : result.Steps) {
    const WalkWindow& w = step.Window;
    out << std::left << std::setw(24) << Day(times[w.TrainBegin]) + " " + Day(times[w.TrainEnd - 1])
        << std::setw(24) << Day(times[w.TrainEnd]) + " " + Day(times[w.TestEnd - 1])
        << std::setw(24) << PointText(context, step.Best) << std::right << std::fixed
        << std::setprecision(4) << std::setw(12) << step.InSample[goal] << std::setw(12)
        << step.OutOfSample[goal] << std::setprecision(2) << std::setw(14)
        << Profit(step.OutOfSample) << '\n'
        << std::defaultfloat;
  }
  const std::vector<double> joined = FigureValues(result.OutOfSample);
  const double inCagr = InSampleMean(result, cagr);
  out << std::fixed << std::setprecision(4) << "\nout of sample (joined): " << context.Goal.Key
      << ' ' << joined[goal] << ", net profit " << std::setprecision(2)
      << result.OutOfSample.NetProfit << ", CAGR " << joined[cagr] * 100.0 << "%\n"
      << std::setprecision(4) << "in sample (mean of the windows): " << context.Goal.Key << ' '
      << InSampleMean(result, goal) << ", CAGR " << std::setprecision(2) << inCagr * 100.0 << "%\n";
  if (inCagr != 0.0) {
    out << "walk-forward efficiency (out-of-sample CAGR / in-sample CAGR): " << std::setprecision(2)
        << joined[cagr] / inCagr << '\n';
  }
  out << std::defaultfloat;
}

void WriteWalkCsv(std::ostream& out, const WalkContext& context, const WalkResult& result) {
  const std::vector<int64_t>& times = *context.Times;
  const std::string& key = context.Goal.Key;
  out << "window,train_first_bar,train_last_bar,test_last_bar,train_first,train_last,test_first,"
         "test_last";
  for (const std::string& name : *context.AxisNames) out << ',' << name;
  out << ",in_" << key << ",out_" << key << ",in_net_profit,out_net_profit,in_cagr,out_cagr\n";
  const size_t cagr = Column("cagr");
  for (size_t i = 0; i < result.Steps.size(); ++i) {
    const WalkStep& step = result.Steps[i];
    const WalkWindow& w = step.Window;
    out << i << ',' << w.TrainBegin << ',' << w.TrainEnd - 1 << ',' << w.TestEnd - 1 << ','
        << Day(times[w.TrainBegin]) << ',' << Day(times[w.TrainEnd - 1]) << ','
        << Day(times[w.TrainEnd]) << ',' << Day(times[w.TestEnd - 1]);
    for (const double value : (*context.Points)[step.Best]) out << ',' << ExactNumber(value);
    out << ',' << ExactNumber(step.InSample[context.Goal.Column]) << ','
        << ExactNumber(step.OutOfSample[context.Goal.Column]) << ','
        << ExactNumber(Profit(step.InSample)) << ',' << ExactNumber(Profit(step.OutOfSample)) << ','
        << ExactNumber(step.InSample[cagr]) << ',' << ExactNumber(step.OutOfSample[cagr]);
    out << '\n';
  }
}

void WriteWalkJson(std::ostream& out, const WalkContext& context, const WalkResult& result) {
  const std::vector<std::string>& columns = FigureColumns();
  const auto figures = [&columns](const std::vector<double>& values) {
    nlohmann::json json = nlohmann::json::object();
    for (size_t c = 0; c < columns.size(); ++c) {
      json[columns[c]] = std::isnan(values[c]) ? nlohmann::json() : nlohmann::json(values[c]);
    }
    return json;
  };
  const std::vector<int64_t>& times = *context.Times;
  nlohmann::json windows = nlohmann::json::array();
  for (const WalkStep& step : result.Steps) {
    const WalkWindow& w = step.Window;
    nlohmann::json params = nlohmann::json::object();
    for (size_t a = 0; a < context.AxisNames->size(); ++a) {
      params[(*context.AxisNames)[a]] = (*context.Points)[step.Best][a];
    }
    windows.push_back(
        {{"train", {LocalDateTime(times[w.TrainBegin]), LocalDateTime(times[w.TrainEnd - 1])}},
         {"test", {LocalDateTime(times[w.TrainEnd]), LocalDateTime(times[w.TestEnd - 1])}},
         {"params", params},
         {"in_sample", figures(step.InSample)},
         {"out_of_sample", figures(step.OutOfSample)}});
  }
  const nlohmann::json json = {{"objective", context.Goal.Key},
                               {"windows", windows},
                               {"out_of_sample", figures(FigureValues(result.OutOfSample))}};
  out << json.dump(1) << '\n';
}

void WriteWalkEquityCsv(std::ostream& out, const WalkResult& result) {
  out << "curve,step,time,equity\n";
  for (const EquityPoint& point : result.OutOfSampleCurve) {
    out << "out_of_sample," << point.Bar << ',' << LocalDateTime(point.Time) << ','
        << ExactNumber(point.Equity) << '\n';
  }
  for (const EquityPoint& point : result.InSampleCurve) {
    out << "in_sample," << point.Bar << ',' << LocalDateTime(point.Time) << ','
        << ExactNumber(point.Equity) << '\n';
  }
}

}  // namespace qxrun
