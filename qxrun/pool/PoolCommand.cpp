#include "qxrun/pool/PoolCommand.h"

#include "qxrun/Cli.h"
#include "qxrun/InputError.h"
#include "qxrun/ProgressBar.h"
#include "qxrun/host/HostServices.h"
#include "qxrun/pool/PoolBook.h"
#include "qxrun/pool/PoolFiles.h"
#include "qxrun/pool/PoolPage.h"
#include "qxrun/pool/PoolRun.h"
#include "qxrun/report/RunFiles.h"

#include <algorithm>
#include <map>
#include <memory>

namespace qxrun {
namespace {

// Each symbol must share a date with another, or the pool ranks nothing.
void CheckOverlap(const std::vector<PoolMember>& members) {
  if (members.size() < 2) return;
  std::map<int64_t, int> symbolsAt;
  for (const PoolMember& member : members) {
    for (const QXBar& bar : member.Sources[0].Bars) ++symbolsAt[bar.Time];
  }
  for (const PoolMember& member : members) {
    const std::vector<QXBar>& bars = member.Sources[0].Bars;
    const bool shares = std::any_of(bars.begin(), bars.end(),
                                    [&](const QXBar& bar) { return symbolsAt[bar.Time] > 1; });
    if (!shares) {
      throw InputError("--data " + member.Settings.Symbols[0].File.string() +
                       ": no bar on a date of another symbol of the pool");
    }
  }
}

}  // namespace

std::vector<std::string> PoolFiles(const std::vector<std::string>& arguments) {
  std::vector<std::string> files;
  for (const std::string& argument : arguments) {
    std::error_code error;
    if (!std::filesystem::is_directory(argument, error)) {
      files.push_back(argument);
      continue;
    }
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(argument, error)) {
      const std::string extension = entry.path().extension().string();
      if (entry.is_regular_file() && (extension == ".txt" || extension == ".csv")) {
        found.push_back(entry.path().string());
      }
    }
    if (found.empty())
      throw InputError("--data " + argument + ": no bar files (.txt, .csv) in the folder");
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
  }
  return files;
}

int PoolCommand(const RunOptions& options, std::ostream& out, std::ostream& err) {
  (void)err;
  RunOptions expanded = options;
  expanded.DataFiles = PoolFiles(options.DataFiles);
  RunInputs inputs = PrepareRun(expanded);
  const RunSettings& settings = inputs.Settings;
  const FormulaInfo& info = *inputs.Info;
  if (info.DataSources != 1) {
    throw InputError("--formula " + info.Name + ": needs " + std::to_string(info.DataSources) +
                     " data sources; a pool gives each instance one");
  }
  std::vector<QXDataSource> sources = LoadSources(settings);
  std::vector<PoolMember> members(sources.size());
  for (size_t i = 0; i < sources.size(); ++i) {
    members[i].Settings = settings;
    members[i].Settings.Symbols = {settings.Symbols[i]};
    members[i].Sources.push_back(sources[i]);
  }
  CheckOverlap(members);

  std::optional<OutputFolder>& folder = inputs.Folder;
  if (folder) folder->Make();
  {
    HostServices services(inputs, folder ? folder->Path() : std::filesystem::current_path());
    ProgressBar progress(!options.Quiet, "dates");
    RunPool(members, info, inputs.Params,
            [&progress](int64_t done, int64_t total) { progress(done, total); });
  }

  // One lot per held symbol, unless the run file sets other fixed lots.
  const StrategySettings& strategy = settings.Strategy;
  const double lots = strategy.DefaultLotsMode == 0 && strategy.DefaultLotsValue > 0
                          ? strategy.DefaultLotsValue
                          : 1.0;
  const std::vector<double> lotValues = LotValues(settings);
  std::vector<PoolSymbol> symbols;
  for (size_t i = 0; i < members.size(); ++i) {
    const StrategyAccount& account = members[i].Instance->Account();
    symbols.push_back(PoolSymbol{sources[i].Symbol, &members[i].Sources[0].Bars,
                                 &account.CheckPoints, &account.RankingTable, lotValues[i]});
  }
  const PoolBook book = BookPool(symbols, lots, strategy.InitCapital);
  StrategyAccount account;
  account.EquityCurve = book.EquityCurve;
  account.Trades = book.Trades;
  const RunFigures figures = ComputeFigures(sources, lotValues, account, strategy.InitCapital);
  const RunHeading heading = MakeHeading(info, inputs.Params, settings, sources);
  if (!options.Quiet) {
    PrintReport(out, heading, figures);
    out << "\nheld at the end:";
    const std::vector<int8_t>* last = book.Held.empty() ? nullptr : &book.Held.back();
    int held = 0;
    for (size_t i = 0; last != nullptr && i < symbols.size(); ++i) {
      if ((*last)[i] != 0)
        out << ' ' << symbols[i].Code << ((*last)[i] > 0 ? "" : " (short)"), ++held;
    }
    out << (held == 0 ? " nothing\n" : "\n");
  }
  if (folder) {
    folder->Write("report.json", [&](std::ostream& file) {
      WriteReportJson(file, heading, figures, PerformanceReport{});
    });
    folder->Write("equity.csv",
                  [&](std::ostream& file) { WriteEquityCsv(file, account, strategy.InitCapital); });
    folder->Write("trades.csv",
                  [&](std::ostream& file) { WriteTradesCsv(file, account, figures, sources); });
    folder->Write("holdings.csv",
                  [&](std::ostream& file) { WriteHoldingsCsv(file, symbols, book); });
    folder->Write("decisions.csv", [&](std::ostream& file) { WriteDecisionsCsv(file, symbols); });
    if (options.Page) {
      folder->Write("report.html", [&](std::ostream& file) {
        WritePoolPage(file, heading, figures, symbols, book);
      });
    }
    if (!options.Quiet) {
      out << "\nwrote " << folder->Written().size() << " files to " << folder->Path().string()
          << '\n';
    }
  }
  return 0;
}

Command AddPoolCommand(CLI::App& app) {
  auto options = std::make_shared<RunOptions>();
  Command command = MakeCommand(
      app, "pool",
      "run a stock picker on every symbol of a pool, ranked by its sort values each bar", options,
      &PoolCommand);
  AddRunOptions(*command.App, *options);
  return command;
}

}  // namespace qxrun
