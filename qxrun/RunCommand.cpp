#include "qxrun/RunCommand.h"

#include "sysfuncs/sysfuncs.h"

#include "qxrun/InputError.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/data/BarFile.h"
#include "qxrun/formulas/Bundled.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/report/Figures.h"
#include "qxrun/report/OutputFolder.h"
#include "qxrun/report/PageBuilder.h"
#include "qxrun/report/Tables.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <unistd.h>

namespace qxrun {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::filesystem::path DefaultUserDir() {
  if (const char* home = std::getenv("QXRUN_HOME"); home != nullptr && *home != '\0') return home;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    return std::filesystem::path(home) / ".qxrun";
  }
  return ".qxrun";
}

// A progress bar on standard error, drawn only on a terminal and only after the first second.
class ProgressBar {
 public:
  explicit ProgressBar(bool enabled) : enabled_(enabled && isatty(STDERR_FILENO) == 1) {}
  ~ProgressBar() {
    if (drawn_) std::fputs("\r\033[K", stderr);
  }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void operator()(int32_t done, int32_t total) {
    if (!enabled_ || total <= 0 || SecondsSince(start_) < 1.0) return;
    constexpr int kWidth = 40;
    const int filled = static_cast<int>(static_cast<int64_t>(done) * kWidth / total);
    std::fprintf(stderr, "\r[%.*s%*s] %3d%% %d/%d bars", filled,
                 "########################################", kWidth - filled, "",
                 static_cast<int>(static_cast<int64_t>(done) * 100 / total), done, total);
    std::fflush(stderr);
    drawn_ = true;
  }

 private:
  bool enabled_;
  bool drawn_ = false;
  Clock::time_point start_ = Clock::now();
};

}  // namespace

int RunCommand(const RunOptions& options, std::ostream& out, std::ostream& err, RunTimes* times) {
  (void)err;
  // Everything the command line and the run file say is checked before a bar is read.
  RunSettings settings =
      options.RunFile.empty() ? DefaultRunSettings() : LoadRunFile(options.RunFile);
  std::vector<std::filesystem::path> dataFiles(options.DataFiles.begin(), options.DataFiles.end());
  ApplyDataFiles(settings, dataFiles);
  if (options.Capital) {
    if (!(*options.Capital > 0.0)) throw InputError("--capital: must be positive");
    settings.Strategy.InitCapital = *options.Capital;
  }
  if (options.Lots) {
    if (*options.Lots < 0) throw InputError("--lots: must not be negative");
    settings.Strategy.DefaultLotsValue = *options.Lots;
  }
  std::unique_ptr<FormulaLibrary> library;
  const FormulaInfo& info = FindFormula(options.Formula, library);
  const std::map<std::string, double> params =
      ResolveParameters(info, settings.Params, options.Params);
  if (static_cast<int32_t>(settings.Symbols.size()) < info.DataSources) {
    throw InputError("--data: " + info.Name + " needs " + std::to_string(info.DataSources) +
                     " bar files, " + std::to_string(settings.Symbols.size()) + " given");
  }
  std::optional<OutputFolder> folder;
  if (!options.OutFolder.empty()) folder.emplace(options.OutFolder);
  std::map<std::string, Quill::ITickDeepLevel> quotes;
  if (!settings.Quotes.empty()) quotes = LoadQuoteSnapshot(settings.Quotes);

  // Load.
  const Clock::time_point loadStart = Clock::now();
  std::vector<QXDataSource> sources(settings.Symbols.size());
  for (size_t i = 0; i < sources.size(); ++i) {
    const SymbolSettings& symbol = settings.Symbols[i];
    LoadBarFile(symbol.File, symbol.Columns, sources[i]);
    if (sources[i].Bars.empty()) throw InputError(symbol.File.string() + ": holds no bars");
    sources[i].MarketId = symbol.Terms.Market;
    sources[i].Symbol = symbol.Terms.Code;
  }
  const double loadSeconds = SecondsSince(loadStart);

  // Run. The input is good: the output folder may be made, for FileAppend lines among others.
  if (folder) folder->Make();
  const Clock::time_point runStart = Clock::now();
  const std::filesystem::path userDir =
      settings.UserDir.empty() ? DefaultUserDir() : settings.UserDir;
  MessageCentre centre(folder ? folder->Path() : std::filesystem::current_path());
  FileAdapter adapter(settings.Symbols, std::move(quotes), userDir);
  HostInstance instance(sources, settings, info.Name);
  {
    const char* user = std::getenv("USER");
    ModuleSession module(centre, adapter, userDir.string(), user != nullptr ? user : "qxrun");
    ProgressBar progress(!options.Quiet);
    instance.Run(info, params, [&progress](int32_t done, int32_t total) { progress(done, total); });
  }
  const double runSeconds = SecondsSince(runStart);

  // Report.
  const Clock::time_point writeStart = Clock::now();
  std::vector<double> lotValues;
  for (const SymbolSettings& symbol : settings.Symbols) {
    lotValues.push_back(symbol.Terms.ContractUnit *
                        static_cast<double>(static_cast<float>(symbol.Terms.BigPointValue)));
  }
  const StrategyAccount& account = instance.Account();
  const RunFigures figures =
      ComputeFigures(sources, lotValues, account, settings.Strategy.InitCapital);
  RunHeading heading;
  heading.Formula = info.Name;
  heading.Params.assign(params.begin(), params.end());
  for (size_t i = 0; i < sources.size(); ++i) {
    heading.Files.push_back(settings.Symbols[i].File.string());
    heading.Symbols.push_back(sources[i].Symbol);
  }
  heading.OutputMode = settings.Strategy.OutputMode;
  if (!options.Quiet) PrintReport(out, heading, figures);
  double pageSeconds = 0.0;
  if (folder) {
    const CQXBaseData& data = instance.Data();
    folder->Write("report.json", [&](std::ostream& file) {
      WriteReportJson(file, heading, figures, account.Report);
    });
    folder->Write("equity.csv", [&](std::ostream& file) {
      WriteEquityCsv(file, account, settings.Strategy.InitCapital);
    });
    folder->Write("trades.csv",
                  [&](std::ostream& file) { WriteTradesCsv(file, account, figures, sources); });
    folder->Write("orders.csv", [&](std::ostream& file) { WriteOrdersCsv(file, data); });
    folder->Write("plots.csv", [&](std::ostream& file) { WritePlotsCsv(file, data); });
    const Clock::time_point pageStart = Clock::now();
    if (options.Page && WriteReportPageFile(*folder, heading, figures, data)) {
      pageSeconds = SecondsSince(pageStart);
    }
    if (!options.Quiet) {
      out << "\nwrote " << folder->Written().size() << " files to " << folder->Path().string()
          << '\n';
      const std::filesystem::path page = folder->Path() / "report.html";
      if (std::filesystem::exists(page)) out << "report page: " << page.string() << '\n';
    }
  }
  const double writeSeconds = SecondsSince(writeStart) - pageSeconds;
  if (centre.FailedLines() > 0 && !options.Quiet) {
    out << "note: " << centre.FailedLines() << " FileAppend lines could not be written\n";
  }
  if (times != nullptr) {
    *times = RunTimes{loadSeconds, runSeconds, writeSeconds, pageSeconds,
                      static_cast<long>(sources[0].Bars.size())};
  }
  return 0;
}

}  // namespace qxrun
