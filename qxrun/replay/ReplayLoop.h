// The replay: history bars evaluated once each, then every later bar formed tick by tick with
// the newest bar evaluated anew on every tick, as a live platform does.
#ifndef QXRUN_REPLAY_REPLAY_LOOP_H_
#define QXRUN_REPLAY_REPLAY_LOOP_H_

#include "sysfuncs/HostData.h"

#include "qxrun/host/HostRun.h"
#include "qxrun/replay/QuoteFeed.h"
#include "qxrun/replay/TickPath.h"

#include <cstdint>
#include <vector>

namespace qxrun {

// What a replay is made of: the recorded bars of the main series, the first bar formed from ticks
// and the ticks of each bar from there on.
struct ReplayPlan {
  std::vector<QXBar> Bars;
  size_t Start = 0;
  std::vector<std::vector<Tick>> Ticks;  // Ticks[i]: the ticks of bar Start + i
  bool Synthesized = true;               // the ticks were made from the bars
};

// The market side of a replay (the paper broker), told of every tick before the newest bar is
// evaluated on it.
class ReplayMarket {
 public:
  virtual ~ReplayMarket() = default;
  // The last tick an earlier run of the same replay took in (0: none): the replay goes on after
  // it without evaluating the ticks up to it again.
  virtual int64_t ResumeAfter() = 0;
  // Tick `sequence` (1 for the first tick replayed) with the quote it makes.
  virtual void OnTick(int64_t sequence, const Tick& tick, const Quill::ITickDeepLevel& quote,
                      int32_t tradingDay) = 0;
  // The replay has taken in its last tick.
  virtual void OnEnd(int64_t lastSequence) = 0;
};

// Waits between ticks: a real-time replay sleeps, a fast one does not.
class Pacer {
 public:
  virtual ~Pacer() = default;
  virtual void Wait(int64_t fromMillis, int64_t toMillis) = 0;
};

// Sleeps (to - from) / speed, at most two seconds: a night between sessions does not stall.
class SleepingPacer : public Pacer {
 public:
  explicit SleepingPacer(double speed) : speed_(speed) {}
  void Wait(int64_t fromMillis, int64_t toMillis) override;

 private:
  double speed_;
};

struct ReplayCounts {
  int64_t Ticks = 0;         // ticks taken in
  int64_t Evaluations = 0;   // evaluations of the newest bar
  int64_t SkippedTicks = 0;  // taken in by an earlier run
};

// Runs the replay on `live`, the main series the instance sees (it grows by one bar at each new
// bar's first tick). `feed` follows the history bars and the ticks; `market` and `pacer` may be
// null. REQUIRES: instance built over `live`; plan.Start <= plan.Bars.size().
ReplayCounts RunReplay(const ReplayPlan& plan, std::vector<QXBar>& live, HostInstance& instance,
                       QuoteFeed& feed, ReplayMarket* market, Pacer* pacer);

// The plan of a replay: bars before `start` are history; the ticks come from `ticks` (grouped by
// AssignTicks) or are made from the bars along `kind`.
ReplayPlan MakePlan(std::vector<QXBar> bars, size_t start, const std::vector<Tick>* ticks,
                    TickPathKind kind, const std::filesystem::path& tickFile);

}  // namespace qxrun

#endif  // QXRUN_REPLAY_REPLAY_LOOP_H_
