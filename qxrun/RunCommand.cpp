#include "qxrun/RunCommand.h"

#include "sysfuncs/sysfuncs.h"

#include "qxrun/Cli.h"
#include "qxrun/ProgressBar.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/report/RunFiles.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace qxrun {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

int RunCommand(const RunOptions& options, std::ostream& out, std::ostream& err, RunTimes* times) {
  (void)err;
  RunInputs inputs = PrepareRun(options);
  const RunSettings& settings = inputs.Settings;
  const FormulaInfo& info = *inputs.Info;

  const Clock::time_point loadStart = Clock::now();
  std::vector<QXDataSource> sources = LoadSources(settings);
  const double loadSeconds = SecondsSince(loadStart);

  // The input is good: the output folder may be made, for FileAppend lines among others.
  std::optional<OutputFolder>& folder = inputs.Folder;
  if (folder) folder->Make();
  const Clock::time_point runStart = Clock::now();
  MessageCentre centre(folder ? folder->Path() : std::filesystem::current_path());
  FileAdapter adapter(settings.Symbols, std::move(inputs.Quotes), inputs.UserDir);
  HostInstance instance(sources, settings, info.Name);
  {
    const char* user = std::getenv("USER");
    ModuleSession module(centre, adapter, inputs.UserDir.string(),
                         user != nullptr ? user : "qxrun");
    ProgressBar progress(!options.Quiet);
    instance.Run(info, inputs.Params,
                 [&progress](int32_t done, int32_t total) { progress(done, total); });
  }
  const double runSeconds = SecondsSince(runStart);

  const Clock::time_point writeStart = Clock::now();
  const RunFigures figures = ComputeRunFigures(settings, sources, instance.Account());
  const RunHeading heading = MakeHeading(info, inputs.Params, settings, sources);
  if (!options.Quiet) PrintReport(out, heading, figures);
  double pageSeconds = 0.0;
  if (folder) {
    pageSeconds = WriteRunFiles(*folder, heading, figures, instance.Data(), sources,
                                settings.Strategy.InitCapital, options.Page);
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

Command AddRunCommand(CLI::App& app) {
  auto options = std::make_shared<RunOptions>();
  Command command;
  command.App = app.add_subcommand("run", "back-test a formula: every bar once");
  AddRunOptions(*command.App, *options);
  command.Run = [options](std::ostream& out, std::ostream& err) {
    return RunCommand(*options, out, err);
  };
  return command;
}

}  // namespace qxrun
