// The command line of qxrun: each mode registers its sub-command and says how it runs.
#ifndef QXRUN_CLI_H_
#define QXRUN_CLI_H_

#include "qxrun/RunInputs.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <ostream>

namespace qxrun {

struct Command {
  CLI::App* App = nullptr;
  // Runs the command once the line is parsed; returns the exit code. Throws InputError on bad
  // input.
  std::function<int(std::ostream& out, std::ostream& err)> Run;
};

// A sub-command `name` that runs `run` with the options its flags fill in.
template <typename Options>
Command MakeCommand(CLI::App& app, const char* name, const char* help,
                    std::shared_ptr<Options> options,
                    int (*run)(const Options&, std::ostream&, std::ostream&)) {
  Command command;
  command.App = app.add_subcommand(name, help);
  command.Run = [options, run](std::ostream& out, std::ostream& err) {
    return run(*options, out, err);
  };
  return command;
}

// The options every mode that runs a formula shares: --data, --formula, --param, --config,
// --out, --capital, --lots, --quiet, --no-page. `options` must outlive the parse.
void AddRunOptions(CLI::App& command, RunOptions& options);

// `qxrun run` (RunCommand.cpp) and `qxrun formulas` (FormulasCommand.cpp).
Command AddRunCommand(CLI::App& app);
Command AddFormulasCommand(CLI::App& app);
// `qxrun replay` (replay/ReplayCommand.cpp).
Command AddReplayCommand(CLI::App& app);
// `qxrun sweep` (sweep/SweepCommand.cpp) and `qxrun pool` (pool/PoolCommand.cpp).
Command AddSweepCommand(CLI::App& app);
Command AddPoolCommand(CLI::App& app);

}  // namespace qxrun

#endif  // QXRUN_CLI_H_
