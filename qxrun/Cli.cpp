#include "qxrun/Cli.h"

namespace qxrun {

void AddRunOptions(CLI::App& command, RunOptions& options) {
  command.add_option("--data", options.DataFiles, "bar file (CSV); repeat for more data sources");
  command.add_option("--formula", options.Formula, "bundled formula name, or PATH.so[:NAME]")
      ->required();
  command.add_option("--param", options.Params, "formula parameter name=value; repeatable");
  command.add_option("--config", options.RunFile,
                     "run file (JSON): contract terms, costs, settings");
  command.add_option("--out", options.OutFolder,
                     "output folder: report.json, equity.csv, trades.csv, orders.csv, "
                     "plots.csv, report.html");
  command.add_option("--capital", options.Capital, "initial capital (overrides the run file)");
  command.add_option("--lots", options.Lots, "default lots (overrides the run file)");
  command.add_flag("--quiet", options.Quiet, "print nothing but errors");
  command.add_flag(
      "--no-page", [&options](int64_t) { options.Page = false; }, "write no report.html");
}

}  // namespace qxrun
