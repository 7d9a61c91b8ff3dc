#include "qxrun/sweep/SweepCommand.h"

#include "qxrun/Cli.h"
#include "qxrun/InputError.h"
#include "qxrun/ProgressBar.h"
#include "qxrun/host/HostServices.h"
#include "qxrun/report/SweepPage.h"
#include "qxrun/sweep/Cluster.h"
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

// What the command line asks for, checked, and the bars.
struct SweepPlan {
  RunInputs Inputs;
  SweepSetup Setup;
  std::vector<ParamAxis> Axes;
  std::vector<ParamPoint> Points;
  Objective Goal;
  int Jobs = 1;
  std::optional<WalkLengths> Walk;
  std::vector<QXDataSource> Sources;
  std::vector<int64_t> Times;  // of the main series' bars
  std::vector<WalkWindow> Windows;
};

SweepPlan PlanSweep(const SweepOptions& options, const Cluster* cluster) {
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
  plan.Jobs = options.Jobs         ? *options.Jobs
              : cluster != nullptr ? cluster->DefaultJobs()
                                   : DefaultJobs();
  if (options.Top <= 0) throw InputError("--top: must be positive");
  if (!options.WalkForward.empty()) plan.Walk = ParseWalkLengths(options.WalkForward);
  return plan;
}

// Loads the bars and checks what depends on them. Throws InputError.
void LoadBars(SweepPlan& plan, const Cluster* cluster) {
  plan.Sources = LoadSources(plan.Inputs.Settings);
  for (const QXBar& bar : plan.Sources[0].Bars) plan.Times.push_back(bar.Time);
  if (plan.Walk) {
    plan.Windows = WalkWindows(plan.Times, *plan.Walk);
    if (plan.Windows.empty()) {
      throw InputError("--walk-forward: the " + std::to_string(plan.Times.size()) + " bars of " +
                       plan.Inputs.Settings.Symbols[0].File.string() +
                       " hold no training window followed by a test window");
    }
  }
  if (cluster != nullptr && static_cast<size_t>(cluster->Size()) > plan.Points.size()) {
    throw InputError("mpirun: " + std::to_string(cluster->Size()) + " ranks for " +
                     std::to_string(plan.Points.size()) + " points; start at most " +
                     std::to_string(plan.Points.size()) + " ranks");
  }
}

void ReportWritten(const SweepOptions& options, const OutputFolder& folder, std::ostream& out) {
  if (options.Run.Quiet) return;
  out << "\nwrote " << folder.Written().size() << " files to " << folder.Path().string() << '\n';
}

// The walk-forward sweep: each window optimised and tested.
void WalkForwardSweep(const SweepOptions& options, SweepPlan& plan, const PointRunner& runner,
                      std::ostream& out) {
  std::optional<OutputFolder>& folder = plan.Inputs.Folder;
  WalkResult result;
  {
    HostServices services(plan.Inputs, folder ? folder->Path() : std::filesystem::current_path());
    ProgressBar progress(!options.Run.Quiet, "runs");
    result = RunWalkForward(plan.Setup, plan.Sources, plan.Points, plan.Goal, plan.Windows, runner,
                            [&progress](int64_t done, int64_t total) { progress(done, total); });
  }
  const WalkContext context{&plan.Setup.AxisNames, &plan.Points, &plan.Times, plan.Goal,
                            plan.Setup.Settings.Strategy.InitCapital};
  if (!options.Run.Quiet) PrintWalkForward(out, context, result);
  if (!folder) return;
  folder->Write("walkforward.csv",
                [&](std::ostream& file) { WriteWalkCsv(file, context, result); });
  folder->Write("walkforward.json",
                [&](std::ostream& file) { WriteWalkJson(file, context, result); });
  folder->Write("equity.csv", [&](std::ostream& file) { WriteWalkEquityCsv(file, result); });
  ReportWritten(options, *folder, out);
}

// The sweep of every point over all the bars.
void WholeSweep(const SweepOptions& options, SweepPlan& plan, const PointRunner& runner,
                std::ostream& out) {
  std::optional<OutputFolder>& folder = plan.Inputs.Folder;
  std::vector<std::vector<double>> rows;
  {
    HostServices services(plan.Inputs, folder ? folder->Path() : std::filesystem::current_path());
    ProgressBar progress(!options.Run.Quiet, "points");
    rows = runner(plan.Setup, plan.Sources, plan.Points,
                  [&progress](int64_t done, int64_t total) { progress(done, total); });
  }
  const std::string& formula = plan.Setup.Info->Name;
  if (!options.Run.Quiet) {
    PrintBest(out, plan.Setup.AxisNames, plan.Points, rows, plan.Goal,
              static_cast<size_t>(options.Top));
  }
  if (!folder) return;
  folder->Write("results.csv", [&](std::ostream& file) {
    WriteResultsCsv(file, plan.Setup.AxisNames, plan.Points, rows);
  });
  folder->Write("results.json", [&](std::ostream& file) {
    WriteResultsJson(file, formula, plan.Setup.AxisNames, plan.Points, rows, plan.Goal);
  });
  if (options.Run.Page) {
    SweepPageData page{formula + " sweep",
                       plan.Setup.AxisNames,
                       plan.Points,
                       FigureColumns(),
                       rows,
                       plan.Goal.Key,
                       {}};
    for (const std::string& column : FigureColumns()) {
      if (FindObjective(column).Minimise) page.SmallerIsBetter.push_back(column);
    }
    folder->Write("sweep.html", [&](std::ostream& file) { WriteSweepPage(file, page); });
  }
  ReportWritten(options, *folder, out);
}

}  // namespace

int SweepCommand(const SweepOptions& given, std::ostream& out, std::ostream& err) {
  const std::unique_ptr<Cluster> cluster = Cluster::Join();
  const bool lead = cluster == nullptr || cluster->Rank() == 0;
  SweepOptions options = given;
  if (!lead) {  // only the first rank prints and writes
    options.Run.OutFolder.clear();
    options.Run.Quiet = true;
  }
  std::optional<SweepPlan> plan;
  std::optional<InputError> error;
  try {
    plan.emplace(PlanSweep(options, cluster.get()));
    LoadBars(*plan, cluster.get());
  } catch (const InputError& caught) {
    if (cluster == nullptr) throw;
    error = caught;
  }
  if (cluster != nullptr && !cluster->AllAgree(!error)) {
    // Every rank stops; the first one says why, while the others wait: mpirun ends the whole job
    // as soon as one rank has stopped, which could cut the first rank off before it spoke.
    if (lead) {
      err << "qxrun: "
          << (error ? error->what()
                    : "mpirun: another rank could not read its input (run it alone there to see "
                      "why)")
          << std::endl;
    }
    cluster->AllAgree(true);
    return 2;
  }
  if (plan->Inputs.Folder) plan->Inputs.Folder->Make();
  const int jobs = plan->Jobs;
  const PointRunner runner =
      [&cluster, jobs](const SweepSetup& setup, std::vector<QXDataSource>& sources,
                       const std::vector<ParamPoint>& points, const PointProgress& progress) {
        return cluster != nullptr ? cluster->RunPoints(setup, sources, points, jobs, progress)
                                  : RunPoints(setup, sources, points, jobs, progress);
      };
  if (plan->Walk) {
    WalkForwardSweep(options, *plan, runner, out);
  } else {
    WholeSweep(options, *plan, runner, out);
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
