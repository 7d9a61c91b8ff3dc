// The command line of qxrun: each mode registers its sub-command and says how it runs.
#ifndef QXRUN_CLI_H_
#define QXRUN_CLI_H_

#include "qxrun/RunInputs.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

namespace qxrun {

struct Command {
  CLI::App* App = nullptr;
  // Runs the command once the line is parsed; returns the exit code. Throws InputError on bad
  // input.
  std::function<int(std::ostream& out, std::ostream& err)> Run;
};

// The options every mode that runs a formula shares: --data, --formula, --param, --config,
// --out, --capital, --lots, --quiet, --no-page. `options` must outlive the parse.
void AddRunOptions(CLI::App& command, RunOptions& options);

// `qxrun run` (RunCommand.cpp) and `qxrun formulas` (FormulasCommand.cpp).
Command AddRunCommand(CLI::App& app);
Command AddFormulasCommand(CLI::App& app);
// `qxrun sweep` (sweep/SweepCommand.cpp) and `qxrun pool` (pool/PoolCommand.cpp).
Command AddSweepCommand(CLI::App& app);
Command AddPoolCommand(CLI::App& app);

}  // namespace qxrun

#endif  // QXRUN_CLI_H_
