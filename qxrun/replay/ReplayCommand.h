// `qxrun replay`: a live session on recorded bars, orders going to the paper broker.
#ifndef QXRUN_REPLAY_REPLAY_COMMAND_H_
#define QXRUN_REPLAY_REPLAY_COMMAND_H_

#include "qxrun/RunInputs.h"

#include <optional>
#include <ostream>
#include <string>

namespace qxrun {

struct ReplayOptions {
  RunOptions Run;
  std::string From;                // the first bar formed from ticks: "YYYY-MM-DD[ HH:MM[:SS]]"
  std::optional<int64_t> Last;     // or the last N bars
  std::string Ticks;               // tick file; none: ticks made from the bars
  std::string Path = "nearer";     // "nearer" or "ohlc"
  std::optional<double> Speed;     // times real time; none: as fast as possible
  std::string Confirm = "auto";    // "auto" or "ask"
  std::string Account = "paper";   // the paper account bound to the formula
  std::optional<double> Deposit;   // opens the account with this money, or pays it in
  std::optional<double> Withdraw;  // takes this money out of the account
  int32_t Spread = 1;              // ask - bid, in ticks
  bool Fresh = false;              // a new session instead of going on with the last one
};

// Seconds and counts of a replay, for the benchmark.
struct ReplayTimes {
  double Replay = 0.0;  // the tick loop
  int64_t Ticks = 0;
  int64_t Evaluations = 0;
  int64_t Orders = 0;
};

// Runs a replay. Bad input (and a store that cannot be read or written) throws InputError.
// Returns the exit code.
int ReplayCommand(const ReplayOptions& options, std::ostream& out, std::ostream& err,
                  ReplayTimes* times = nullptr);

}  // namespace qxrun

#endif  // QXRUN_REPLAY_REPLAY_COMMAND_H_
