// qxrun: runs strategy formulas on bar files with libsysfuncs and reports the results.
#include "qxrun/Cli.h"
#include "qxrun/InputError.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <vector>

namespace {

constexpr const char* kVersion = "0.1.0";

}  // namespace

int main(int argc, char** argv) {
  qxrun::NameLocalZone();
  CLI::App app{"qxrun: run trading-strategy formulas on bar files and report the results"};
  app.set_version_flag("--version", std::string("qxrun ") + kVersion);
  app.require_subcommand(1);
  const std::vector<qxrun::Command> commands = {
      qxrun::AddRunCommand(app),   qxrun::AddFormulasCommand(app), qxrun::AddReplayCommand(app),
      qxrun::AddSweepCommand(app), qxrun::AddPoolCommand(app),
  };

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
    for (const qxrun::Command& command : commands) {
      if (command.App->parsed()) return command.Run(std::cout, std::cerr);
    }
    return 2;
  } catch (const qxrun::InputError& error) {
    std::fprintf(stderr, "qxrun: %s\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qxrun: internal error: %s\n", error.what());
    return 1;
  }
}
