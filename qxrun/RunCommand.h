// `qxrun run`: load, run, report.
#ifndef QXRUN_RUN_COMMAND_H_
#define QXRUN_RUN_COMMAND_H_

#include "qxrun/RunInputs.h"

#include <ostream>

namespace qxrun {

// Seconds spent in each phase of a run.
struct RunTimes {
  double Load = 0.0;
  double Run = 0.0;
  double Write = 0.0;
  double Page = 0.0;
  long Bars = 0;
};

// Runs a back-test. Bad input throws InputError before anything is written. Returns the exit
// code. `times`, when given, receives the time of each phase.
int RunCommand(const RunOptions& options, std::ostream& out, std::ostream& err,
               RunTimes* times = nullptr);

}  // namespace qxrun

#endif  // QXRUN_RUN_COMMAND_H_
