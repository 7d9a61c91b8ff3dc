// qxrun: runs strategy formulas on bar files with libsysfuncs and reports the results.
#include "sysfuncs/sysfuncs.h"

#include "qxrun/InputError.h"
#include "qxrun/RunCommand.h"
#include "qxrun/formulas/Bundled.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>

namespace {

constexpr const char* kVersion = "0.1.0";

void ListFormulas() {
  for (const qxrun::FormulaInfo* info : qxrun::BundledFormulas()) {
    std::printf("%s  -  %s\n", info->Name.c_str(), info->Summary.c_str());
    for (const qxrun::Parameter& parameter : info->Parameters) {
      std::printf("    %-12s default %-8g range [%g, %g]%s  %s\n", parameter.Name.c_str(),
                  parameter.Default, parameter.Min, parameter.Max,
                  parameter.Integral ? " whole" : "", parameter.Help.c_str());
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"qxrun: run trading-strategy formulas on bar files and report the results"};
  app.set_version_flag("--version", std::string("qxrun ") + kVersion);
  app.require_subcommand(1);

  qxrun::RunOptions options;
  CLI::App* run = app.add_subcommand("run", "back-test a formula: every bar once");
  run->add_option("--data", options.DataFiles, "bar file (CSV); repeat for more data sources");
  run->add_option("--formula", options.Formula, "bundled formula name, or PATH.so[:NAME]")
      ->required();
  run->add_option("--param", options.Params, "formula parameter name=value; repeatable");
  run->add_option("--config", options.RunFile, "run file (JSON): contract terms, costs, settings");
  run->add_option("--out", options.OutFolder,
                  "output folder: report.json, equity.csv, trades.csv, orders.csv, plots.csv, "
                  "report.html");
  run->add_option("--capital", options.Capital, "initial capital (overrides the run file)");
  run->add_option("--lots", options.Lots, "default lots (overrides the run file)");
  run->add_flag("--quiet", options.Quiet, "print nothing but errors");
  bool noPage = false;
  run->add_flag("--no-page", noPage, "write no report.html");

  app.add_subcommand("formulas", "list the bundled formulas and their parameters");

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    return app.exit(help);
  } catch (const CLI::CallForVersion& version) {
    return app.exit(version);
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "qxrun: %s\n", error.what());
    return 2;
  }

  try {
    if (app.got_subcommand("formulas")) {
      ListFormulas();
      return 0;
    }
    options.Page = !noPage;
    return qxrun::RunCommand(options, std::cout, std::cerr);
  } catch (const qxrun::InputError& error) {
    std::fprintf(stderr, "qxrun: %s\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qxrun: internal error: %s\n", error.what());
    return 1;
  }
}
