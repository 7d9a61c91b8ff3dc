// `qxrun sweep`: a formula back-tested at every point of a parameter grid (or a random sample of
// it), on all cores, optionally walk-forward, optionally across the ranks of an MPI job.
#ifndef QXRUN_SWEEP_SWEEP_COMMAND_H_
#define QXRUN_SWEEP_SWEEP_COMMAND_H_

#include "qxrun/RunInputs.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

struct SweepOptions {
  RunOptions Run;  // --param holds ranges (name=first:last:step) and fixed values
  std::optional<int64_t> Random;
  uint64_t Seed = 1;
  std::vector<std::string> Constraints;
  std::string Objective = "sharpe";
  std::optional<int> Jobs;
  std::string WalkForward;  // "train=N,test=M"
  int Top = 10;
};

// Runs the sweep; returns the exit code. Bad input throws InputError before anything is written.
int SweepCommand(const SweepOptions& options, std::ostream& out, std::ostream& err);

}  // namespace qxrun

#endif  // QXRUN_SWEEP_SWEEP_COMMAND_H_
