#include "qxrun/sweep/SweepCommand.h"

#include "qxrun/Cli.h"
#include "qxrun/InputError.h"
#include "qxrun/ProgressBar.h"
#include "qxrun/host/HostServices.h"
#include "qxrun/sweep/ParamGrid.h"
#include "qxrun/sweep/PointRuns.h"
#include "qxrun/sweep/SweepResults.h"
#include "qxrun/sweep/WalkForward.h"
#include "qxrun/sweep/WalkReport.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>

namespace qxrun {
namespace {

// What the command line asks for, checked.
struct SweepPlan {
  RunInputs Inputs;
  SweepSetup Setup;
  std::vector<ParamAxis> Axes;
  std::vector<ParamPoint> Points;
  Objective Goal;
  int Jobs = 1;
  std::optional<WalkSpec> Walk;
};

// The walk-forward sweep: windows over the main series, each optimised and tested.
int WalkForwardSweep(const SweepOptions& options, SweepPlan& plan,
                     const std::vector<QXDataSource>& sources, std::ostream& out) {
  std::vector<int64_t> times;
  for (const QXBar& bar : sources[0].Bars) times.push_back(bar.Time);
  const std::vector<WalkWindow> windows = WalkWindows(times, *plan.Walk);
  if (windows.empty()) {
    throw InputError("--walk-forward: the " + std::to_string(times.size()) + " bars of " +
                     plan.Inputs.Settings.Symbols[0].File.string() +
                     " hold no training window followed by a test window");
  }
  std::optional<OutputFolder>& folder = plan.Inputs.Folder;
  if (folder) folder->Make();
  WalkResult result;
  {
    HostServices services(plan.Inputs, folder ? folder->Path() : std::filesystem::current_path());
    ProgressBar progress(!options.Run.Quiet, "runs");
    result = RunWalkForward(plan.Setup, sources, plan.Points, plan.Goal, windows, plan.Jobs,
                            [&progress](int64_t done, int64_t total) { progress(done, total); });
  }
  const WalkContext context{&plan.Setup.AxisNames, &plan.Points, &times, plan.Goal,
                            plan.Setup.Settings.Strategy.InitCapital};
  if (!options.Run.Quiet) PrintWalkForward(out, context, result);
  if (folder) {
    folder->Write("walkforward.csv",
                  [&](std::ostream& file) { WriteWalkCsv(file, context, result); });
    folder->Write("walkforward.json",
                  [&](std::ostream& file) { WriteWalkJson(file, context, result); });
    folder->Write("equity.csv", [&](std::ostream& file) { WriteWalkEquityCsv(file, result); });
    if (!options.Run.Quiet) {
      out << "\nwrote " << folder->Written().size() << " files to " << folder->Path().string()
          << '\n';
    }
  }
  return 0;
}

SweepPlan PlanSweep(const SweepOptions& options) {
  RunOptions fixed = options.Run;
  fixed.Params.clear();
  std::vector<std::string> ranges;
  for (const std::string& text : options.Run.Params) {
    (IsRangeText(text) ? ranges : fixed.Params).push_back(text);
  }
  SweepPlan plan;
  plan.Inputs = PrepareRun(fixed);
  const FormulaInfo& info = *plan.Inputs.Info;
  std::set<std::string> seen;
  for (const std::string& text : ranges) {
    ParamAxis axis = ParseAxis(text, info);
    if (!seen.insert(axis.Name).second) {
      throw InputError("--param " + axis.Name + ": swept twice");
    }
    plan.Axes.push_back(std::move(axis));
  }
  if (plan.Axes.empty()) {
    throw InputError("--param: give at least one range to sweep, as name=first:last:step");
  }
  for (const std::string& text : fixed.Params) {
    const std::string name = text.substr(0, text.find('='));
    if (seen.count(name) != 0) throw InputError("--param " + name + ": both swept and fixed");
  }
  plan.Setup.Info = &info;
  plan.Setup.Settings = plan.Inputs.Settings;
  plan.Setup.BaseParams = plan.Inputs.Params;
  for (const ParamAxis& axis : plan.Axes) plan.Setup.AxisNames.push_back(axis.Name);

  std::vector<Constraint> constraints;
  for (const std::string& text : options.Constraints) {
    constraints.emplace_back(text, plan.Setup.AxisNames);
  }
  plan.Goal = FindObjective(options.Objective);
  if (options.Random && *options.Random <= 0) throw InputError("--random: must be positive");
  plan.Points = options.Random ? RandomPoints(plan.Axes, constraints, *options.Random, options.Seed)
                               : GridPoints(plan.Axes, constraints);
  if (plan.Points.empty()) throw InputError("--constraint: no point of the grid satisfies them");
  if (options.Jobs && *options.Jobs <= 0) throw InputError("--jobs: must be positive");
  plan.Jobs = options.Jobs ? *options.Jobs : DefaultJobs();
  if (options.Top <= 0) throw InputError("--top: must be positive");
  if (!options.WalkForward.empty()) plan.Walk = ParseWalkSpec(options.WalkForward);
  return plan;
}

}  // namespace

int SweepCommand(const SweepOptions& options, std::ostream& out, std::ostream& err) {
  (void)err;
  SweepPlan plan = PlanSweep(options);
  std::vector<QXDataSource> sources = LoadSources(plan.Inputs.Settings);
  if (plan.Walk) return WalkForwardSweep(options, plan, sources, out);
  std::optional<OutputFolder>& folder = plan.Inputs.Folder;
  if (folder) folder->Make();

  std::vector<std::vector<double>> rows;
  {
    HostServices services(plan.Inputs, folder ? folder->Path() : std::filesystem::current_path());
    ProgressBar progress(!options.Run.Quiet, "points");
    rows = RunPoints(plan.Setup, sources, plan.Points, plan.Jobs,
                     [&progress](int64_t done, int64_t total) { progress(done, total); });
  }

  const std::string& formula = plan.Setup.Info->Name;
  if (!options.Run.Quiet) {
    PrintBest(out, plan.Setup.AxisNames, plan.Points, rows, plan.Goal,
              static_cast<size_t>(options.Top));
  }
  if (folder) {
    folder->Write("results.csv", [&](std::ostream& file) {
      WriteResultsCsv(file, plan.Setup.AxisNames, plan.Points, rows);
    });
    folder->Write("results.json", [&](std::ostream& file) {
      WriteResultsJson(file, formula, plan.Setup.AxisNames, plan.Points, rows, plan.Goal);
    });
    if (!options.Run.Quiet) {
      out << "\nwrote " << folder->Written().size() << " files to " << folder->Path().string()
          << '\n';
    }
  }
  return 0;
}

Command AddSweepCommand(CLI::App& app) {
  auto options = std::make_shared<SweepOptions>();
  Command command = MakeCommand(
      app, "sweep", "back-test a formula at every point of a parameter grid, on every core",
      options, &SweepCommand);
  AddRunOptions(*command.App, options->Run);
  CLI::App& sub = *command.App;
  sub.add_option("--random", options->Random, "run N points drawn at random from the grid");
  sub.add_option("--seed", options->Seed, "seed of the random draw (default 1)");
  sub.add_option("--constraint", options->Constraints,
                 "condition on the swept parameters, e.g. \"fast<slow\"; repeatable");
  sub.add_option("--objective", options->Objective,
                 "figure that orders the points (default sharpe): net_profit, cagr, ...");
  sub.add_option("--jobs", options->Jobs, "worker threads (default: every core)");
  sub.add_option("--walk-forward", options->WalkForward,
                 "train=N,test=M: optimise on each training window, run the best on the next "
                 "test window (bars, or with d, m, y: days, months, years)");
  sub.add_option("--top", options->Top, "best points shown on the terminal (default 10)");
  return command;
}

}  // namespace qxrun
